#include "tools/zoq/gnuplot.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <filesystem>

#include "tools/zoq/failure.h"
#include "tools/zoq/interruption.h"
#include "tools/zoq/output_file.h"

namespace zoq {

namespace {

// Starts gnuplot without the user's own start-up files.
pid_t start(int script, int picture, int messages) {
    char name[] = "gnuplot", defaults[] = "-d", input[] = "-";
    char* const arguments[] = {name, defaults, input, nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, script, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, picture, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, messages, STDERR_FILENO);
    pid_t child = 0;
    const int error = posix_spawnp(&child, name, &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error == ENOENT) {
        throw Failure("cannot draw: gnuplot is not installed (Debian's package gnuplot-nox)");
    }
    if (error != 0) {
        throw system_failure("cannot start", "gnuplot", error);
    }
    return child;
}

int wait_for(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        if (interrupted()) {
            kill(child, SIGTERM);
        }
    }
    throw_if_interrupted();
    return status;
}

// gnuplot doesn't notice what it fails to write: it writes into a pipe, and this program into the file.
struct Pipe {
    Pipe() {
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw system_failure("cannot make", "a pipe", errno);
        }
        out = Descriptor(ends[0]);
        in = Descriptor(ends[1]);
    }
    Descriptor out{-1}, in{-1};
};

std::string first_line(int file) {
    char text[200];
    const ssize_t length = pread(file, text, sizeof text, 0);
    const std::string all(text, length > 0 ? static_cast<size_t>(length) : 0);
    const size_t start = all.find_first_not_of(" \n");
    return start == std::string::npos ? "" : all.substr(start, all.find('\n', start) - start);
}

}  // namespace

bool is_picture_path(const std::string& path) {
    const std::string ending = std::filesystem::path(path).extension();
    return ending == ".svg" || ending == ".png";
}

std::string gnuplot_text(const std::string& text) {
    std::string result = "'";
    for (const char letter : text) {
        const bool ends_line = letter == '\n' || letter == '\r';
        result += letter == '\'' ? "''" : ends_line ? " " : std::string(1, letter);
    }
    return result + "'";
}

std::string terminal(const std::string& path, int width, int height) {
    const bool vector = std::filesystem::path(path).extension() == ".svg";
    return "set terminal " + std::string(vector ? "svg" : "pngcairo") + " size " + std::to_string(width) +
           "," + std::to_string(height) + " font 'sans,13' background 'white'\n";
}

void draw(const std::string& script, const std::string& path) {
    OutputFile picture(path);
    const Descriptor input = memory_file(), messages = memory_file();
    if (const int error = write_fully(input.get(), script.data(), script.size())) {
        throw system_failure("cannot keep", "a script in memory", error);
    }
    lseek(input.get(), 0, SEEK_SET);
    Pipe pipe;
    const pid_t child = start(input.get(), pipe.in.get(), messages.get());
    pipe.in = Descriptor(-1);  // so that the child's end is the picture's
    Descriptor drawing(-1);
    try {
        drawing = spool(pipe.out.get(), "gnuplot's picture");
    } catch (...) {
        kill(child, SIGTERM);
        waitpid(child, nullptr, 0);
        throw;
    }
    const int status = wait_for(child);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw Failure("cannot draw " + picture.name() + ": gnuplot failed: " + first_line(messages.get()));
    }
    copy_all(drawing.get(), picture.fd(), picture.name());
    picture.commit();
}

void draw_with_gnuplot(const std::string& script, int width, int height, const std::string& path) {
    draw(terminal(path, width, height) + "set termoption noenhanced\n" + script, path);
}

}  // namespace zoq
