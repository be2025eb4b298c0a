#include "utils/String8.h"

#include <cstdlib>
#include <cstring>

namespace android {

String8::String8() : text_(nullptr), length_(0) {}

String8::String8(const char* text) : String8() {
    setTo(text);
}

String8::String8(const String8& other) : String8() {
    setTo(other);
}

String8::~String8() {
    std::free(text_);
}

// setTo looks after assignment to itself.  NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
String8& String8::operator=(const String8& other) {
    setTo(other);
    return *this;
}

String8& String8::operator=(const char* text) {
    setTo(text);
    return *this;
}

void String8::setTo(const String8& other) {
    if (this != &other) {
        assign(other.string(), other.length_, "", 0);
    }
}

void String8::setTo(const char* text) {
    assign(text, text != nullptr ? std::strlen(text) : 0, "", 0);
}

void String8::append(const String8& other) {
    assign(string(), length_, other.string(), other.length_);
}

void String8::append(const char* text) {
    assign(string(), length_, text, text != nullptr ? std::strlen(text) : 0);
}

const char* String8::string() const {
    return text_ != nullptr ? text_ : "";
}

size_t String8::length() const {
    return length_;
}

// The new text is built before the old one goes, so both pieces may lie in it.
void String8::assign(const char* head, size_t headLength, const char* rest, size_t restLength) {
    const size_t length = headLength + restLength;
    char* text = nullptr;
    if (length > 0) {
        text = static_cast<char*>(std::malloc(length + 1));
        if (text == nullptr) {
            return;
        }
        if (headLength > 0) {
            std::memcpy(text, head, headLength);
        }
        if (restLength > 0) {
            std::memcpy(text + headLength, rest, restLength);
        }
        text[length] = '\0';
    }
    std::free(text_);
    text_ = text;
    length_ = length;
}

}  // namespace android
