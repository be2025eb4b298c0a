#include "tools/zoq/interruption.h"

#include <signal.h>
#include <unistd.h>

namespace zoq {

namespace {

volatile sig_atomic_t received = 0;

void remember(int signal) {
    received = signal;
}

void watch(int signal) {
    struct sigaction before = {};
    if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_IGN) {
        return;
    }
    struct sigaction action = {};
    action.sa_handler = remember;  // without SA_RESTART: a read that waits for input ends too
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

}  // namespace

void watch_signals() {
    watch(SIGINT);
    watch(SIGTERM);
    watch(SIGHUP);
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
}

bool interrupted() {
    return received != 0;
}

void throw_if_interrupted() {
    if (interrupted()) {
        throw Interrupted{received};
    }
}

void end_by_signal(int signal) {
    ::signal(signal, SIG_DFL);
    raise(signal);
    _exit(128 + signal);
}

}  // namespace zoq
