// What the audio thread asks of the system while it plays: one uncontended lock per block, no other lock, no memory,
// and not one system call; and how much stack it takes. Clocks and other locks the library does not even import.
#include <gtest/gtest.h>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstring>
#include <functional>

#include "tests/host/engine.h"
#include "tests/library/interposed_calls.h"

using engine::Pcm;
using interposed::calls;
using interposed::counting;

namespace {

constexpr size_t kStack = size_t{256} << 10;
constexpr size_t kStatedStack =
    96 << 10;  // in docs/reliability.md, well below the 128 KiB that hosts are told to give

// What a child process reports about its audio thread.
struct Report {
    bool trapped;  // whether system calls could be forbidden here at all
    int blocks, systemCalls, firstSystemCall;
    interposed::Calls calls;
    int wrongLocks;  // blocks that did not lock and unlock glock_ZOQ once and nothing else
    size_t stack;
};

Report* report;  // shared with the parent
std::function<void()> job;
std::atomic<int> given, done;
unsigned char* stack;

void note_system_call(int, siginfo_t* info, void*) {
    if (report->systemCalls++ == 0) {
        report->firstSystemCall = info->si_syscall;
    }
}

// From here on every system call of this thread raises a signal instead; only the handler's return passes.
bool forbid_system_calls() {
    sock_filter filter[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_rt_sigreturn, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP),
    };
    const sock_fprog program{static_cast<unsigned short>(std::size(filter)), filter};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program, 0, 0) == 0;
}

constexpr unsigned char kPaint = 0xA5;

// Bytes below the address that something has written since they were painted.
size_t stack_used_below(const unsigned char* frame) {
    const unsigned char* touched =
        std::find_if(stack, stack + kStack, [](unsigned char c) { return c != kPaint; });
    return static_cast<size_t>(frame - std::min(touched, frame));
}

void call_what_is_forbidden() {
    ::operator delete(::operator new(100));
    static pthread_once_t once = PTHREAD_ONCE_INIT;
    pthread_once(&once, [] {});
    pthread_mutex_lock(&android::glock_ZOQ);
    pthread_mutex_unlock(&android::glock_ZOQ);
}

// Waits for jobs without a system call, and never ends: ending would take some.
void* audio_thread(void*) {
    call_what_is_forbidden();  // the first time takes system calls of its own
    auto* frame = static_cast<unsigned char*>(__builtin_frame_address(0)) - 1024;
    for (volatile unsigned char* byte = stack; byte < frame; ++byte) {
        *byte = kPaint;
    }
    report->trapped = forbid_system_calls();
    for (int next = 1;; ++next) {
        while (given != next) {
        }
        job();
        report->stack = stack_used_below(frame);
        done = next;
    }
}

void on_audio_thread(std::function<void()> work) {
    job = std::move(work);
    const int next = ++given;
    while (done != next) {
        sched_yield();
    }
}

void start_audio_thread() {
    struct sigaction action = {};
    action.sa_sigaction = note_system_call;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSYS, &action, nullptr);
    stack = static_cast<unsigned char*>(
        mmap(nullptr, kStack, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_t thread;
    if (pthread_attr_setstack(&attributes, stack, kStack) != 0 ||
        pthread_create(&thread, &attributes, audio_thread, nullptr) != 0) {
        std::abort();
    }
    on_audio_thread([] {});
}

// Plays a block on the audio thread and adds what it called to the report.
void play(Pcm& block, int sampleRate = 48000, int channels = 2) {
    on_audio_thread([&] {
        calls = {};
        counting = true;
        ZOQ_OUTPROC_PLAY_SAMPLES(block.data(), static_cast<int>(2 * block.size()), sampleRate, channels);
        counting = false;
        const bool right =
            calls.mutexLocks == 1 && calls.mutexUnlocks == 1 && calls.lockedMutex == &android::glock_ZOQ;
        report->wrongLocks += right ? 0 : 1;
        report->calls.allocations += calls.allocations;
        report->calls.frees += calls.frees;
        report->calls.otherLocks += calls.otherLocks;
        ++report->blocks;
    });
}

// Settings, volumes, hostile values, routes, the switch, block sizes, rates and channels change between blocks.
void play_everything() {
    const char* const settings[] = {
        "HIFIPARA=STEREOWIDEN_Enable=true;CompressionGain=70;VB_boostlin=50;DS_stereoWidth=80",
        "EQ_1khzgain=6;Headphone_EQ_62hzgain=-6;DEN_centspeechgain=60;HP_SurroundWidth=90",
        "DS_stereoWidth=0;EQ_trebleBoost=15",
        "output_device=8",
        "HP_SurroundWidth=10;Headphone_CompressionGain=80",
        "EQ_62hzgain=nan;Headphone_EQ_62hzgain=1e38",
        "EQ_62hzgain=3;Headphone_EQ_62hzgain=3",
        "HIFIPARA=STEREOWIDEN_Enable=false",
        "HIFIPARA=STEREOWIDEN_Enable=true",
        "output_device=2",
        "DS_stereoWidth=30"};
    const struct {
        int values, sampleRate, channels;
    } streams[] = {{1024, 48000, 2},  {960, 48000, 2},  {882, 44100, 2},
                   {36864, 48000, 2}, {1024, 48000, 1}, {3072, 48000, 6}};
    engine::fresh_engine();
    Pcm warm = engine::noise(1, 1024);
    for (int n = 0; n < 20; ++n) {
        engine::played(warm);
    }
    for (const auto& stream : streams) {
        for (const char* pairs : settings) {
            engine::set(pairs);
            android::ZOQ_update_volume(stream.values % 31, AUDIO_STREAM_MUSIC);
            const int blocks = std::clamp(24 * 1024 / stream.values, 3, 24);
            for (int n = 0; n < blocks; ++n) {
                Pcm block =
                    n % 3 == 2 ? Pcm(size_t(stream.values)) : engine::noise(uint32_t(n), stream.values);
                play(block, stream.sampleRate, stream.channels);
            }
        }
    }
}

// Runs the work in a process of its own, whose audio thread may not be ended in an orderly way.
Report reported(void (*work)()) {
    void* shared = mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    report = new (shared) Report{};
    const pid_t child = fork();
    if (child == 0) {
        start_audio_thread();
        work();
        _exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    const Report result = *report;
    munmap(shared, sizeof(Report));
    return result;
}

TEST(Realtime, ForbiddenCallsAreSeen) {
    const Report seen = reported([] {
        on_audio_thread([] {
            counting = true;
            call_what_is_forbidden();
            counting = false;
            report->calls = calls;
            volatile unsigned char large[50000];
            large[0] = 1;
            report->blocks = large[0];
            getppid();
            sched_yield();
        });
    });
    EXPECT_EQ(seen.calls.allocations, 1);
    EXPECT_EQ(seen.calls.frees, 1);
    EXPECT_EQ(seen.calls.otherLocks, 1);
    EXPECT_EQ(seen.calls.mutexLocks, 1);
    EXPECT_EQ(seen.calls.mutexUnlocks, 1);
    EXPECT_EQ(seen.calls.lockedMutex, &android::glock_ZOQ);
    EXPECT_GE(seen.stack, 48000u);
    if (!seen.trapped) {
        GTEST_SKIP() << "no seccomp here";
    }
    EXPECT_EQ(seen.systemCalls, 2);
    EXPECT_EQ(seen.firstSystemCall, SYS_getppid);
}

TEST(Realtime, AWarmBlockTakesOneLockAndNothingElse) {
    const Report seen = reported(play_everything);
    EXPECT_GT(seen.blocks, 1000);
    EXPECT_EQ(seen.wrongLocks, 0);
    EXPECT_EQ(seen.calls.otherLocks, 0);
    EXPECT_EQ(seen.calls.allocations, 0);
    EXPECT_EQ(seen.calls.frees, 0);
    EXPECT_LE(seen.stack, kStatedStack);
    std::printf("%d blocks, %zu bytes of stack\n", seen.blocks, seen.stack);
    if (!seen.trapped) {
        GTEST_SKIP() << "no seccomp here, so system calls went unseen";
    }
    EXPECT_EQ(seen.systemCalls, 0) << "the first was number " << seen.firstSystemCall;
}

// The audio thread may wait for the lock that a string is applied under: the heap's lock must not stand behind it.
TEST(Realtime, AStringIsTakenApartAheadOfTheLock) {
    engine::fresh_engine();
    const android::String8 pairs(
        "HIFIPARA=STEREOWIDEN_Enable=true;CompressionGain=70;EQ_1khzgain=6;output_device=8");
    calls = {};
    counting = true;
    ZOQ_PARAMS_SET(pairs);
    counting = false;
    EXPECT_GT(calls.allocations, 0);
    EXPECT_EQ(calls.heapCallsLocked, 0);
    EXPECT_EQ(calls.mutexLocks, 1);
    EXPECT_EQ(calls.mutexUnlocks, 1);
    EXPECT_EQ(calls.lockedMutex, &android::glock_ZOQ);
}

}  // namespace
