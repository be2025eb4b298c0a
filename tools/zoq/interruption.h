// Signals: the ones that end a command are noticed between two blocks, so that half-written files are
// removed.
#pragma once

namespace zoq {

// Thrown by throw_if_interrupted().
struct Interrupted {
    int signal;
};

// SIGINT, SIGTERM and SIGHUP are remembered, unless the caller had them ignored. A closed pipe and a file
// size limit become plain write errors.
void watch_signals();

bool interrupted();
void throw_if_interrupted();

// Ends the process the way the signal would have, so that shells and scripts see what happened.
[[noreturn]] void end_by_signal(int signal);

}  // namespace zoq
