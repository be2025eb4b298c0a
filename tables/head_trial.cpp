// libmysofa breaks down over some damaged files and goes on for hours over others, so a child's is the first that it
// reads. What is made of the file is left to the parent, where a fault of ours shows.
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "tables/head_file.h"

namespace zoq::tables {

namespace {

// An interruption ends the child even if its parent only takes note of it.
void obey(int signal) {
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
        ::signal(signal, SIG_DFL);
    }
}

[[noreturn]] void try_to_open(const std::string& path, rlim_t seconds) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        obey(signal);
    }
    const rlimit time = {seconds, seconds}, core = {0, 0};
    setrlimit(RLIMIT_CPU, &time);
    setrlimit(RLIMIT_CORE, &core);
    try {
        try_head_file(path);
    } catch (...) {  // the parent will say why
    }
    _exit(0);
}

}  // namespace

Head load_head(const std::string& path, unsigned seconds) {
    const pid_t child = fork();
    if (child < 0) {
        throw HeadError("cannot read " + path + ": no process can be started for it");
    }
    if (child == 0) {
        try_to_open(path, seconds);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            throw HeadError("cannot read " + path + ": the process that reads it is lost");
        }
        kill(child, SIGKILL);
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw HeadError(path +
                        " is damaged, libmysofa comes to no end with it; export it again as "
                        "SimpleFreeFieldHRIR");
    }
    return read_head(path);
}

}  // namespace zoq::tables
