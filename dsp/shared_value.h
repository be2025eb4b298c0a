// Settings that one thread writes while another reads them.
//
// The records stay plain 32-bit words, as hosts know them; every access from the two sides goes through
// these, so that a value is read whole and no more is promised: settings of one string may arrive one by one.
#pragma once

#include <atomic>

namespace android {

template <typename Word>
Word load_shared(const Word& word) {
    static_assert(sizeof(Word) == 4);
    return std::atomic_ref<Word>(const_cast<Word&>(word)).load(std::memory_order_relaxed);
}

template <typename Word>
void store_shared(Word& word, Word value) {
    static_assert(sizeof(Word) == 4);
    std::atomic_ref<Word>(word).store(value, std::memory_order_relaxed);
}

}  // namespace android
