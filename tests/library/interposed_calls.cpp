#include "tests/library/interposed_calls.h"

#include <dlfcn.h>
#include <pthread.h>
#include <cerrno>
#include <cstddef>

namespace interposed {
thread_local bool counting = false;
thread_local Calls calls;
}  // namespace interposed

using interposed::calls;
using interposed::counting;

namespace {

// The C library's own function behind one of the names defined here.
template <typename Function>
Function* next(Function*& known, const char* name) {
    if (known == nullptr) {
        known = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
    }
    return known;
}

void note(int& count) {
    count += counting ? 1 : 0;
}

void note_heap_call(int& count) {
    note(count);
    calls.heapCallsLocked += counting && calls.mutexLocks > calls.mutexUnlocks ? 1 : 0;
}

}  // namespace

extern "C" {

void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
void __libc_free(void*);

void* malloc(size_t size) noexcept {
    note_heap_call(calls.allocations);
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size) noexcept {
    note_heap_call(calls.allocations);
    return __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) noexcept {
    note_heap_call(calls.allocations);
    return __libc_realloc(block, size);
}

void* aligned_alloc(size_t alignment, size_t size) noexcept {
    note_heap_call(calls.allocations);
    return __libc_memalign(alignment, size);
}

void* memalign(size_t alignment, size_t size) noexcept {
    return aligned_alloc(alignment, size);
}

int posix_memalign(void** block, size_t alignment, size_t size) noexcept {
    *block = aligned_alloc(alignment, size);
    return *block != nullptr ? 0 : ENOMEM;
}

void free(void* block) noexcept {
    note_heap_call(calls.frees);
    __libc_free(block);
}

int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    static int (*known)(pthread_mutex_t*);
    note(calls.mutexLocks);
    calls.lockedMutex = counting ? mutex : calls.lockedMutex;
    return next(known, "pthread_mutex_lock")(mutex);
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
    static int (*known)(pthread_mutex_t*);
    note(calls.mutexUnlocks);
    return next(known, "pthread_mutex_unlock")(mutex);
}

int pthread_once(pthread_once_t* once, void (*initialise)()) {
    static int (*known)(pthread_once_t*, void (*)());
    note(calls.otherLocks);
    return next(known, "pthread_once")(once, initialise);
}

}  // extern "C"
