// Stand-in for the platform's String8: an owned, NUL-terminated byte string.
//
// Control threads only: construction, setTo and append allocate. Running out of memory leaves the text as it
// was.
#pragma once

#include <cstddef>
#include <utility>

namespace android {

class String8 {
  public:
    String8();
    String8(const char* text);  // a null pointer gives the empty text
    String8(const String8& other);
    String8(String8&& other) noexcept
        : text_(std::exchange(other.text_, nullptr)), length_(std::exchange(other.length_, size_t{0})) {}
    ~String8();

    String8& operator=(const String8& other);
    String8& operator=(String8&& other) noexcept {
        std::swap(text_, other.text_);
        std::swap(length_, other.length_);
        return *this;
    }
    String8& operator=(const char* text);

    void setTo(const String8& other);
    void setTo(const char* text);
    void append(const String8& other);
    void append(const char* text);

    const char* string() const;  // never null; valid until the next change
    size_t length() const;       // bytes before the terminating NUL

  private:
    void assign(const char* head, size_t headLength, const char* rest, size_t restLength);

    char* text_;  // null while empty
    size_t length_;
};
static_assert(sizeof(String8) <= 64);

}  // namespace android
