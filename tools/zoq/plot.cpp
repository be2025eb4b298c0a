#include "tools/zoq/plot.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <sstream>

#include "tools/zoq/descriptor.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/output_file.h"

extern char** environ;

namespace zoq {

namespace {

bool ends_with(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// In a gnuplot text between single quotation marks a quotation mark is written twice.
std::string gnuplot_text(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        result += c == '\'' ? "''" : std::string(1, c);
    }
    return result + "'";
}

// The picture goes to gnuplot's standard output.
std::string script_of(const Plot& plot, bool svg) {
    std::ostringstream script;
    script << "set terminal " << (svg ? "svg size 900,500" : "pngcairo size 900,500") << " noenhanced\n"
           << "set title " << gnuplot_text(plot.title) << "\nset xlabel 'Hz'\nset ylabel "
           << gnuplot_text(plot.yLabel) << "\nset logscale x\nset grid\nset xrange [" << plot.hz.front()
           << ":" << plot.hz.back() << "]\n"
           << "set xtics (20,50,100,200,500,'1k' 1000,'2k' 2000,'5k' 5000,'10k' 10000,'20k' 20000)\n";
    for (size_t c = 0; c < plot.curves.size(); ++c) {
        script << (c == 0 ? "plot" : ",") << " '-' using 1:2 with lines linewidth 2 title "
               << gnuplot_text(plot.curves[c].title);
    }
    script << "\n";
    for (const PlotCurve& curve : plot.curves) {
        for (size_t i = 0; i < plot.hz.size(); ++i) {
            script << plot.hz[i] << " " << curve.y[i] << "\n";
        }
        script << "e\n";
    }
    return script.str();
}

// Runs gnuplot with the script as its input; returns its exit code, 127 when it isn't installed.
int run_gnuplot(int script, int picture) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, script, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, picture, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", 1, 0);
    char name[] = "gnuplot";
    char* arguments[] = {name, nullptr};
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

void draw(const Plot& plot, const std::string& path) {
    OutputFile picture(path);
    const Descriptor script = memory_file();
    const std::string text = script_of(plot, ends_with(path, ".svg"));
    const int error = write_fully(script.get(), text.data(), text.size());
    if (error != 0 || lseek(script.get(), 0, SEEK_SET) != 0) {
        throw Failure("cannot draw " + picture.name() + ": no memory for the data");
    }
    const int code = run_gnuplot(script.get(), picture.fd());
    if (code == 127) {
        throw Failure("cannot draw " + picture.name() + ": gnuplot is not installed");
    }
    if (code != 0) {
        throw Failure("cannot draw " + picture.name() + ": gnuplot ended with code " + std::to_string(code));
    }
    picture.commit();
}

}  // namespace zoq
