// Settings that one thread writes while another reads them.
//
// The records stay plain 32-bit words, as hosts know them; every access from the two sides goes through
// these, so that a value is read whole and no more is promised: settings of one string may arrive one by one.
// The compilers' own operations, because the C++ libraries of many Android toolchains lack std::atomic_ref.
#pragma once

namespace android {

template <typename Word>
Word load_shared(const Word& word) {
    static_assert(sizeof(Word) == 4);
    Word value;
    __atomic_load(&word, &value, __ATOMIC_RELAXED);
    return value;
}

template <typename Word>
void store_shared(Word& word, Word value) {
    static_assert(sizeof(Word) == 4);
    __atomic_store(&word, &value, __ATOMIC_RELAXED);
}

}  // namespace android
