// Stand-in for the platform's SortedVector and key_value_pair_t: unique items kept in ascending order.
//
// Storage comes from the C library, so that a library without exceptions needs no C++ runtime for it. Running
// out of memory leaves the items as they were.
#pragma once

#include <sys/types.h>
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include <utils/Errors.h>

namespace android {

template <typename KEY, typename VALUE>
struct key_value_pair_t {
    KEY key;
    VALUE value;

    bool operator<(const key_value_pair_t& other) const { return key < other.key; }
};

template <typename TYPE>
class SortedVector {
  public:
    SortedVector() = default;
    SortedVector(const SortedVector& other) {
        for (size_t i = 0; i < other.size_; ++i) {
            add(other.items_[i]);
        }
    }
    SortedVector& operator=(SortedVector other) {
        std::swap(items_, other.items_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
        return *this;
    }
    ~SortedVector() {
        std::destroy_n(items_, size_);
        std::free(items_);
    }

    size_t size() const { return size_; }
    const TYPE& itemAt(size_t index) const { return items_[index]; }
    TYPE& editItemAt(size_t index) { return items_[index]; }

    // Position of the item equal to this one, or -1.
    ssize_t indexOf(const TYPE& item) const {
        const size_t at = lower_bound(item);
        return at < size_ && !(item < items_[at]) ? static_cast<ssize_t>(at) : -1;
    }

    // Inserts the item in order, or replaces the one equal to it; returns its position, or NO_MEMORY.
    ssize_t add(const TYPE& item) {
        const size_t at = lower_bound(item);
        if (at < size_ && !(item < items_[at])) {
            items_[at] = item;
        } else if (size_ == capacity_ && !grow()) {
            return NO_MEMORY;
        } else {
            ::new (items_ + size_) TYPE(item);
            std::rotate(items_ + at, items_ + size_, items_ + size_ + 1);
            ++size_;
        }
        return static_cast<ssize_t>(at);
    }

    void removeItemsAt(size_t index) {
        std::move(items_ + index + 1, items_ + size_, items_ + index);
        std::destroy_at(items_ + --size_);
    }

  private:
    size_t lower_bound(const TYPE& item) const {
        return static_cast<size_t>(std::lower_bound(items_, items_ + size_, item) - items_);
    }

    bool grow() {
        const size_t capacity = capacity_ > 0 ? 2 * capacity_ : 8;
        auto* items = static_cast<TYPE*>(std::malloc(capacity * sizeof(TYPE)));
        if (items == nullptr) {
            return false;
        }
        std::uninitialized_move_n(items_, size_, items);
        std::destroy_n(items_, size_);
        std::free(items_);
        items_ = items;
        capacity_ = capacity;
        return true;
    }

    TYPE* items_ = nullptr;
    size_t size_ = 0, capacity_ = 0;
};

}  // namespace android
