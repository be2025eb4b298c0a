// Calls that have no place on an audio thread, counted while the calling thread has counting switched on: the
// program defines the functions itself, so the library's calls arrive here first.
#pragma once

namespace interposed {

struct Calls {
    int allocations, frees;        // malloc and its relatives, whatever operator new is built on
    int heapCallsLocked;           // of both together, those made with a mutex held
    int mutexLocks, mutexUnlocks;  // pthread_mutex_lock and _unlock
    const void* lockedMutex;       // the last one
    int otherLocks;                // pthread_once; the library knows no more (tests/library/hardening.sh)
};

extern thread_local bool counting;
extern thread_local Calls calls;

}  // namespace interposed
