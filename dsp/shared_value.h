// Settings that one thread writes while another reads them.
//
// The records stay plain 32-bit words, as hosts know them; every access from the two sides goes through
// these, so that a value is read whole and no more is promised: settings of one string may arrive one by one.
// The compilers' own operations, because the C++ libraries of many Android toolchains lack std::atomic_ref.
#pragma once

#include <cstddef>
#include <type_traits>

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

// A whole record of floats, word by word.
template <typename Record>
void store_shared_floats(Record& record, const Record& contents) {
    static_assert(std::is_trivially_copyable_v<Record> && sizeof(Record) % sizeof(float) == 0);
    for (size_t i = 0; i < sizeof(Record) / sizeof(float); ++i) {
        store_shared(reinterpret_cast<float*>(&record)[i], reinterpret_cast<const float*>(&contents)[i]);
    }
}

}  // namespace android
