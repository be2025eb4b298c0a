// The engine's speed at every level of its kernels beside its peers', in one run; scripts/bench builds and calls this.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <string>

#include "bench/speed/comparisons.h"
#include "bench/speed/peers.h"
#include "bench/speed/reports.h"
#include "bench/speed/work.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/gnuplot.h"

namespace {

struct Wishes {
    int turns = 60;
    bool quick = false;
    bool json = false;
    std::string picture;
};

bench::Speed measured(const Wishes& wishes) {
    constexpr int kTries = 4;
    bench::Speed speed;
    speed.turns = wishes.quick ? 1 : wishes.turns;
    bench::stay_on_this_core();
    bench::append_work(speed.candidates);
    speed.fftwSets = bench::append_peers(speed.candidates, wishes.quick ? 1 : kTries);
    bench::run(speed.candidates, speed.turns);
    return speed;
}

void report(const Wishes& wishes) {
    const bench::Speed speed = measured(wishes);
    const bench::Machine machine = bench::this_machine();
    std::fputs((wishes.json ? bench::json_report : bench::text_report)(speed, machine).c_str(), stdout);
    if (!wishes.picture.empty()) {
        bench::draw(speed, machine, wishes.picture);
    }
}

int run(int argc, char** argv) {
    Wishes wishes;
    CLI::App app("Measures the engine's kernels at every level beside FFTW, KissFFT and zita-convolver.",
                 "speed_bench");
    app.add_option("--turns", wishes.turns, "Batches of each candidate, of which the fastest counts")
        ->check(CLI::Range(1, 100000))
        ->capture_default_str();
    app.add_flag("--quick", wishes.quick, "One turn and FFTW's plans unmeasured: figures that mean nothing");
    app.add_flag("--json", wishes.json, "Print data instead of tables");
    app.add_option("--picture", wishes.picture, "Draw the modules' times into this file, .svg or .png")
        ->check([](const std::string& path) {
            return zoq::is_picture_path(path) ? "" : "a picture's name ends in .svg or .png";
        });
    try {
        app.parse(argc, argv);
        report(wishes);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? zoq::kExitOk : zoq::kExitUsage;
    }
    return zoq::kExitOk;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "speed_bench: %s\n", error.what());
        return zoq::kExitFailure;
    }
}
