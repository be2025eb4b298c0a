#include "tools/zoq/simulate/report.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/zoq/formatted.h"

namespace zoq {

namespace {

using nlohmann::ordered_json;

// Neighbouring blocks that differ in nothing that is worth a line.
bool alike(const PlayedBlock& a, const PlayedBlock& b) {
    return a.state == b.state && a.latency.total() == b.latency.total() && a.rate == b.rate &&
           a.device == b.device && a.volume == b.volume && a.fullDb == b.fullDb &&
           (a.frames == b.frames || a.state == BlockState::kUntouched);
}

struct SimulationFacts {
    std::vector<double> underruns;
    int mostWaiting = 0;  // sample frames in the output queue
    size_t strays = 0;    // blocks that the documentation predicts otherwise
    int measured = -1;    // delay of the last click
    int expected = -1;
};

SimulationFacts facts_of(const Simulation& simulation) {
    SimulationFacts facts;
    for (const PlayedBlock& block : simulation.blocks) {
        if (block.state == BlockState::kUnderrun) {
            facts.underruns.push_back(block.seconds);
        }
        if (block.state != BlockState::kUntouched) {  // what lay there before is dropped
            facts.mostWaiting = std::max(facts.mostWaiting, block.outFrames);
        }
        facts.strays += block.asPredicted ? 0 : 1;
    }
    if (!simulation.clicks.empty()) {
        facts.measured = simulation.clicks.back().measured;
        facts.expected = simulation.clicks.back().expected.back();
    }
    return facts;
}

std::string line_of(const PlayedBlock& block) {
    return formatted("%9.4f %5d %6d %6s %-10s %5d %8d %7d %3.0f %% %3d %2d\n", block.seconds, block.frames,
                     block.rate, formatted("0x%llx", static_cast<long long>(block.device)).c_str(),
                     state_name(block.state), block.latency.total(), block.inFrames, block.outFrames,
                     block.mix / 51.2, block.volume, block.fullDb);
}

std::string lines_of(const Simulation& simulation) {
    std::string text = "  seconds block   rate device state      delay received waiting   wet vol dB\n";
    const auto& blocks = simulation.blocks;
    auto event = simulation.events.begin();
    for (size_t i = 0; i < blocks.size(); ++i) {
        bool told = i > 0 && alike(blocks[i - 1], blocks[i]);
        for (; event != simulation.events.end() && event->seconds <= blocks[i].seconds; ++event) {
            text += formatted("%9.4f host: %s\n", event->seconds, words_of(*event).c_str());
            told = false;
        }
        text += told ? "" : line_of(blocks[i]);
    }
    return text;
}

std::string clicks_of(const Simulation& simulation) {
    std::string text = "\nclicks   seconds  expected  measured   (delay in sample frames)\n";
    const auto& clicks = simulation.clicks;
    for (size_t i = 0; i < clicks.size(); ++i) {
        if (i > 0 && clicks[i - 1].expected == clicks[i].expected &&
            clicks[i - 1].measured == clicks[i].measured) {
            continue;
        }
        std::string expected = std::to_string(clicks[i].expected.front());
        if (clicks[i].expected.size() > 1) {
            expected += "/" + std::to_string(clicks[i].expected.back());
        }
        text += formatted("%16.4f %9s  %s\n", clicks[i].seconds, expected.c_str(),
                          clicks[i].measured < 0 ? "    lost" : formatted("%8d", clicks[i].measured).c_str());
    }
    return text;
}

ordered_json delay_of(const Latency& latency) {
    return {{"queue", latency.queue},
            {"chain", latency.chain},
            {"widening", latency.widening},
            {"total", latency.total()}};
}

}  // namespace

std::string words_of(const HostEvent& event) {
    return event.key == "init" ? event.key : event.key + "=" + event.value;
}

std::string text_report(const SimulationOptions& options, const Simulation& simulation) {
    const SimulationFacts facts = facts_of(simulation);
    std::string text = formatted("%.3f s of playback, %zu blocks; a line for every event and change\n\n",
                                 options.seconds, simulation.blocks.size());
    text += lines_of(simulation) + clicks_of(simulation);
    text += facts.underruns.empty() ? "\nunderruns: none\n"
                                    : formatted("\nunderruns: %zu, the first at %.4f s\n",
                                                facts.underruns.size(), facts.underruns.front());
    text += formatted("most waiting: %d sample frames\n", facts.mostWaiting);
    const size_t late = options.events.size() - simulation.events.size();
    text += late > 0 ? formatted("events behind the end: %zu\n", late) : "";
    text += facts.strays == 0 ? std::string("every block behaved as documented\n")
                              : formatted("%zu blocks behaved otherwise than documented\n", facts.strays);
    return text;
}

std::string json_report(const SimulationOptions& options, const Simulation& simulation) {
    const SimulationFacts facts = facts_of(simulation);
    ordered_json json = {{"seconds", options.seconds},
                         {"underruns", facts.underruns.size()},
                         {"underrunTimes", facts.underruns},
                         {"mostWaiting", facts.mostWaiting},
                         {"blocksAsDocumented", facts.strays == 0},
                         {"expectedDelay", facts.expected},
                         {"measuredDelay", facts.measured}};
    for (const HostEvent& event : simulation.events) {
        json["events"].push_back({{"seconds", event.seconds}, {"key", event.key}, {"value", event.value}});
    }
    for (const SimulatedClick& click : simulation.clicks) {
        json["clicks"].push_back(
            {{"seconds", click.seconds}, {"expected", click.expected}, {"measured", click.measured}});
    }
    for (const PlayedBlock& block : simulation.blocks) {
        json["blocks"].push_back({{"seconds", block.seconds},
                                  {"frames", block.frames},
                                  {"rate", block.rate},
                                  {"device", block.device},
                                  {"state", state_name(block.state)},
                                  {"crossfade", block.mix / 5120.0},
                                  {"received", block.inFrames},
                                  {"waiting", block.outFrames},
                                  {"volume", block.volume},
                                  {"fullCompressionDb", block.fullDb},
                                  {"delay", delay_of(block.latency)}});
    }
    return json.dump(2) + "\n";
}

std::string text_report(const Scan& scan) {
    std::string text = formatted("%zu of the block sizes from 1 to %d sample frames never underrun:\n",
                                 scan.neverShort.size(), scan.sizes);
    for (size_t i = 0; i < scan.neverShort.size(); ++i) {
        text += formatted("%s%d", i == 0 ? "" : i % 16 == 0 ? "\n" : " ", scan.neverShort[i]);
    }
    return text + "\nEvery other size comes back unprocessed once after each change of the stream.\n";
}

std::string json_report(const Scan& scan) {
    return ordered_json{{"sizes", scan.sizes}, {"neverUnderrun", scan.neverShort}}.dump(2) + "\n";
}

}  // namespace zoq
