// The words of one line of an equalizer text.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

namespace zoq {

std::string lowered(std::string text);
bool one_of(const std::string& word, std::initializer_list<const char*> list);

// White space around a line gone, typographic minus signs and no-break spaces made plain.
std::string plain_line(std::string line);

// Reads a line word by word, in lower case. Throws Failure without a place where a word isn't what it should be.
class EqWords {
  public:
    explicit EqWords(const std::string& text);

    bool done() const { return next_ == words_.size(); }
    const std::string& peek() const { return words_[next_]; }  // not when done
    std::string take() { return words_[next_++]; }             // not when done
    bool take_if(const char* word);
    bool at_number() const;

    // The next word as a number with its unit, which may be glued to it: Hz and kHz, or dB, or none. A comma in front
    // of three figures groups the thousands of a frequency; any other is a decimal point.
    double frequency(const std::string& what) { return number(what, true); }
    double level(const std::string& what) { return number(what, false); }

    void expect_end() const;

  private:
    double number(const std::string& what, bool frequency);

    std::vector<std::string> words_;
    size_t next_ = 0;
};

}  // namespace zoq
