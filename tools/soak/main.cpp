// zoq-soak: hours of random settings, devices, volumes and blocks through both routes, what comes out looked at.
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tools/soak/episode.h"

namespace {

constexpr double kRate = 48000.0;
constexpr int64_t kEpisode = int64_t{10} * 60 * 48000;  // sample frames; short enough to be repeated soon

int print_usage(int code) {
    std::fputs(
        "Usage: zoq-soak [--hours H] [--seed N]\n"
        "Plays H hours of audio (24) through the engine as fast as it goes, in episodes of ten minutes with "
        "the seeds\n"
        "N (1), N + 1, ...: random settings, legal and hostile, devices, volumes, signals and block sizes. "
        "Looks at\n"
        "the sound and the host's books after every block and compares the sound behind hostile settings "
        "with a "
        "fresh\n"
        "engine's. An episode that fails is played a second time; how to repeat the fault is told.\n"
        "Exit code: 0 when everything held, 1 when something did not, 2 for wrong usage.\n",
        code == 0 ? stdout : stderr);
    return code;
}

double seconds_since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void add(soak::Totals& sum, const soak::Totals& part) {
    sum.blocks += part.blocks;
    sum.values += part.values;
    sum.sampleFrames += part.sampleFrames;
    sum.processed[0] += part.processed[0];
    sum.processed[1] += part.processed[1];
    sum.strings += part.strings;
    sum.hostilePhases += part.hostilePhases;
    sum.resets += part.resets;
    sum.recoveries += part.recoveries;
    sum.initialisations += part.initialisations;
}

double hours(int64_t sampleFrames) {
    return static_cast<double>(sampleFrames) / kRate / 3600.0;
}

void print_totals(const soak::Totals& t, double seconds) {
    std::printf("%.2f h of audio in %.0f s, %.0f times as fast as it plays\n", hours(t.sampleFrames), seconds,
                hours(t.sampleFrames) * 3600.0 / seconds);
    std::printf("processed: loudspeaker %.2f h, headphones %.2f h; the rest settled or was switched off\n",
                hours(t.processed[0]), hours(t.processed[1]));
    std::printf("%" PRId64 " blocks, %" PRId64 " samples looked at, %" PRId64 " strings, %" PRId64
                " initialisations\n",
                t.blocks, t.values, t.strings, t.initialisations);
    std::printf("%" PRId64 " times hostile settings, %" PRId64 " resets of memories, %" PRId64
                " recoveries compared\n",
                t.hostilePhases, t.resets, t.recoveries);
}

// Tells of a fault and how to repeat it: by its episode alone, or by all that was played.
void report(uint64_t seed, const soak::Outcome& first, int64_t sampleFrames, uint64_t firstSeed,
            double wanted) {
    std::printf("FAULT in the episode with seed %" PRIu64 " at sample frame %" PRId64 ": %s\n%s\n", seed,
                first.sampleFrame, first.fault.c_str(), first.circumstances.c_str());
    const soak::Outcome again = soak::play_episode(seed, sampleFrames);
    const bool same = again.fault == first.fault && again.sampleFrame == first.sampleFrame;
    std::printf("played a second time: %s\n",
                same ? "the same again" : "not the same, so what was played before matters");
    std::printf("to repeat: zoq-soak --seed %" PRIu64 " --hours %.17g\n", same ? seed : firstSeed,
                same ? hours(sampleFrames) : wanted);
}

int soak_for(double wanted, uint64_t firstSeed) {
    const auto start = std::chrono::steady_clock::now();
    const auto total = static_cast<int64_t>(wanted * 3600.0 * kRate);
    soak::Totals totals;
    for (uint64_t seed = firstSeed; totals.sampleFrames < total; ++seed) {
        const int64_t length = std::min(kEpisode, total - totals.sampleFrames);
        const soak::Outcome outcome = soak::play_episode(seed, length);
        add(totals, outcome.totals);
        if (!outcome.fault.empty()) {
            report(seed, outcome, length, firstSeed, wanted);
            return 1;
        }
        std::printf("seed %" PRIu64 ": %.2f of %.2f h, %.0f s\n", seed, hours(totals.sampleFrames), wanted,
                    seconds_since(start));
        std::fflush(stdout);
    }
    print_totals(totals, seconds_since(start));
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    double wanted = 24.0;
    uint64_t seed = 1;
    for (int i = 1; i < argc; i += 2) {
        char* end = nullptr;
        if (std::strcmp(argv[i], "--help") == 0) {
            return print_usage(0);
        }
        const char* value = i + 1 < argc ? argv[i + 1] : "";
        if (std::strcmp(argv[i], "--hours") == 0) {
            wanted = std::strtod(value, &end);
        } else if (std::strcmp(argv[i], "--seed") == 0) {
            seed = std::strtoull(value, &end, 10);
        }
        if (end == nullptr || end == value || *end != '\0' || !(wanted > 0.0 && wanted <= 100000.0)) {
            return print_usage(2);
        }
    }
    return soak_for(wanted, seed);
}
