#include "tools/zoq/gnuplot.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>

#include "tools/zoq/descriptor.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/output_file.h"

extern char** environ;

namespace zoq {

namespace {

bool ends_with(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Returns gnuplot's exit code, 127 when it isn't installed.
int run(int script, int picture) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, script, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, picture, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", 1, 0);
    char name[] = "gnuplot", defaults[] = "--default-settings";  // not the user's own
    char* arguments[] = {name, defaults, nullptr};
    pid_t child = 0;
    const int error = posix_spawnp(&child, name, &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        return 127;
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

}  // namespace

bool is_picture_path(const std::string& path) {
    return ends_with(path, ".svg") || ends_with(path, ".png");
}

std::string gnuplot_text(const std::string& text) {
    std::string result = "'";
    for (const char letter : text) {
        const bool ends_line = letter == '\n' || letter == '\r';
        result += letter == '\'' ? "''" : ends_line ? " " : std::string(1, letter);
    }
    return result + "'";
}

void draw_with_gnuplot(const std::string& script, int width, int height, const std::string& path) {
    OutputFile picture(path);
    const std::string text = std::string("set terminal ") + (ends_with(path, ".svg") ? "svg" : "pngcairo") +
                             " size " + std::to_string(width) + "," + std::to_string(height) +
                             " font 'sans,11' background 'white' noenhanced\n" + script;
    const Descriptor file = memory_file();
    const int error = write_fully(file.get(), text.data(), text.size());
    if (error != 0 || lseek(file.get(), 0, SEEK_SET) != 0) {
        throw Failure("cannot draw " + picture.name() + ": no memory for the data");
    }
    const int code = run(file.get(), picture.fd());
    if (code != 0) {
        throw Failure("cannot draw " + picture.name() +
                      (code == 127 ? ": gnuplot is not installed" : ": gnuplot failed"));
    }
    picture.commit();
}

}  // namespace zoq
