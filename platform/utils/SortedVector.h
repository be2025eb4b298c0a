// Stand-in for the platform's SortedVector and key_value_pair_t: unique items kept in ascending order.
#pragma once

#include <sys/types.h>
#include <cstddef>
#include <vector>

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
    size_t size() const { return items_.size(); }
    const TYPE& itemAt(size_t index) const { return items_[index]; }
    TYPE& editItemAt(size_t index) { return items_[index]; }

    // Position of the item equal to this one, or -1.
    ssize_t indexOf(const TYPE& item) const {
        const size_t at = lower_bound(item);
        return at < items_.size() && !(item < items_[at]) ? static_cast<ssize_t>(at) : -1;
    }

    // Inserts the item in order, or replaces the one equal to it; returns its position.
    ssize_t add(const TYPE& item) {
        const size_t at = lower_bound(item);
        if (at < items_.size() && !(item < items_[at])) {
            items_[at] = item;
        } else {
            items_.insert(items_.begin() + static_cast<ptrdiff_t>(at), item);
        }
        return static_cast<ssize_t>(at);
    }

    void removeItemsAt(size_t index) { items_.erase(items_.begin() + static_cast<ptrdiff_t>(index)); }

  private:
    size_t lower_bound(const TYPE& item) const {
        size_t low = 0, high = items_.size();
        while (low < high) {
            const size_t middle = low + (high - low) / 2;
            if (items_[middle] < item) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        return low;
    }

    std::vector<TYPE> items_;
};

}  // namespace android
