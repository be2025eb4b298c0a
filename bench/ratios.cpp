#include "bench/ratios.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>

namespace bench {

namespace {

constexpr double kHopSeconds = 512.0 / 48000.0;

// Keeps each benchmark's minimum over the repetitions, in order of first appearance.
class MinimumReporter : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context& context) override {
        PrintBasicContext(&GetErrorStream(), context);
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.iterations == 0) {
                continue;
            }
            const std::string name = run.run_name.function_name;
            const double seconds = run.cpu_accumulated_time / static_cast<double>(run.iterations);
            const auto [entry, isNew] = minimum_.try_emplace(name, seconds);
            entry->second = std::min(entry->second, seconds);
            if (isNew) {
                order_.push_back(name);
            }
        }
    }

    void print(const std::vector<Ratio>& ratios) const {
        std::printf("%-44s %12s %16s\n", "benchmark (minimum of repetitions)", "time", "x real time");
        for (const std::string& name : order_) {
            const double seconds = minimum_.at(name);
            std::printf("%-44s %9.2f us", name.c_str(), seconds * 1e6);
            if (name.find("hop") != std::string::npos) {
                std::printf(" %16.0f", kHopSeconds / seconds);
            }
            std::printf("\n");
        }
        for (const Ratio& ratio : ratios) {
            if (minimum_.count(ratio.subject) != 0 && minimum_.count(ratio.against) != 0) {
                std::printf("%s / %s = %.3f\n", ratio.subject.c_str(), ratio.against.c_str(),
                            minimum_.at(ratio.subject) / minimum_.at(ratio.against));
            }
        }
    }

  private:
    std::map<std::string, double> minimum_;
    std::vector<std::string> order_;
};

}  // namespace

int run(int argc, char** argv, const std::vector<Ratio>& ratios) {
    std::vector<std::string> words = {argv[0], "--benchmark_repetitions=5",
                                      "--benchmark_enable_random_interleaving=true",
                                      "--benchmark_min_time=0.1"};
    words.insert(words.end(), argv + 1, argv + argc);
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 2;
    }
    MinimumReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.print(ratios);
    return 0;
}

}  // namespace bench
