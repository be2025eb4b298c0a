#include "tools/zoq/tuning/eq_text.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <sstream>

#include "tools/zoq/failure.h"
#include "tools/zoq/tuning/eq_words.h"
#include "tools/zoq/tuning/key_names.h"

namespace zoq {

namespace {

constexpr double kDefaultShelfSlope =
    0.9;  // of shelves with neither Q nor slope, as room-correction programs do
constexpr double kSteepestSlopeDb = 12.0;  // dB per octave of a second-order shelf of slope 1
constexpr double kButterworthQ = 0.70710678118654752;
constexpr double kNotchQ = 30.0;
constexpr double kMostGainDb = 100.0;

struct FilterLine {
    std::string type;
    std::optional<double> hz, gainDb, q, octaves, slopeDb;
};

bool is_shelf(const FilterLine& filter) {
    return one_of(filter.type, {"ls", "lsc", "lsq", "hs", "hsc", "hsq"});
}

void read_property(EqWords& words, FilterLine& filter) {
    const std::string name = words.take();
    if (name == "fc") {
        filter.hz = words.frequency("Fc");
    } else if (name == "gain") {
        filter.gainDb = words.level("Gain");
    } else if (name == "q") {
        filter.q = words.level("Q");
    } else if (name == "bw" && words.take_if("oct")) {
        filter.octaves = words.level("BW Oct");
    } else {
        throw Failure(shown(name) + " is not understood in a filter" +
                      (name == "bw" ? " without 'Oct'" : ""));
    }
}

void check(const FilterLine& filter) {
    if (!filter.hz) {
        throw Failure("the filter has no Fc");
    }
    if (!(*filter.hz > 0.0 && *filter.hz < kEqSampleRate / 2.0)) {
        throw Failure("Fc must lie between 0 and 24000 Hz");
    }
    for (const std::optional<double>& width : {filter.q, filter.octaves, filter.slopeDb}) {
        if (width && !(*width > 0.0)) {
            throw Failure("Q, bandwidth and slope must be above 0");
        }
    }
    if (filter.gainDb && std::fabs(*filter.gainDb) > kMostGainDb) {
        throw Failure("Gain must lie between -100 and 100 dB");
    }
}

// A shelf with neither Q nor bandwidth is given by its slope.
EqSection sloped_shelf(const FilterLine& filter, EqShape shape) {
    const double slope = filter.slopeDb ? *filter.slopeDb / kSteepestSlopeDb : kDefaultShelfSlope;
    double hz = *filter.hz;
    if (one_of(filter.type, {"ls", "hs"})) {
        // The corner lies half the rise away from the middle.
        const double away = std::pow(10.0, std::fabs(*filter.gainDb) / 80.0 / slope);
        hz = std::min(shape == EqShape::kLowShelf ? hz * away : hz / away, 0.499 * kEqSampleRate);
    }
    return design_section(shape, hz, *filter.gainDb, alpha_of_slope(hz, *filter.gainDb, slope));
}

EqSection with_width(const FilterLine& filter, EqShape shape, std::optional<double> defaultQ) {
    if (!filter.q && !filter.octaves && !defaultQ) {
        throw Failure("the filter has no Q");
    }
    const double alpha = filter.octaves ? alpha_of_bandwidth(*filter.hz, *filter.octaves)
                                        : alpha_of_q(*filter.hz, filter.q ? *filter.q : *defaultQ);
    return design_section(shape, *filter.hz, filter.gainDb.value_or(0.0), alpha);
}

EqSection section_of(const FilterLine& filter) {
    check(filter);
    const bool peak = one_of(filter.type, {"pk", "peq", "modal"});
    if ((peak || is_shelf(filter)) && !filter.gainDb) {
        throw Failure("the filter has no Gain");
    }
    if (peak) {
        return with_width(filter, EqShape::kPeak, std::nullopt);
    }
    if (is_shelf(filter)) {
        const EqShape shape = filter.type[0] == 'l' ? EqShape::kLowShelf : EqShape::kHighShelf;
        return filter.q || filter.octaves ? with_width(filter, shape, std::nullopt)
                                          : sloped_shelf(filter, shape);
    }
    if (one_of(filter.type, {"lp", "lpq"})) {
        return with_width(filter, EqShape::kLowPass, kButterworthQ);
    }
    if (one_of(filter.type, {"hp", "hpq"})) {
        return with_width(filter, EqShape::kHighPass, kButterworthQ);
    }
    if (filter.type == "bp") {
        return with_width(filter, EqShape::kBandPass, kButterworthQ);
    }
    if (one_of(filter.type, {"no", "notch"})) {
        return with_width(filter, EqShape::kNotch, kNotchQ);
    }
    throw Failure(shown(filter.type) + " is no known filter type");
}

class EqReader {
  public:
    explicit EqReader(const std::string& name) : name_(name) {}

    EqTarget read(std::string_view text) {
        std::istringstream stream{std::string(text)};
        for (std::string line; std::getline(stream, line);) {
            ++line_;
            try {
                read_line(plain_line(line));
            } catch (const Failure& failure) {
                throw Failure(here() + failure.what());
            }
        }
        if (!sawCurve_) {
            throw Failure(name_ + ": no 'Filter' and no 'GraphicEQ' line in it");
        }
        return std::move(target_);
    }

  private:
    std::string here() const { return name_ + ": line " + std::to_string(line_) + ": "; }

    void read_line(const std::string& line) {
        if (line.empty() || line.front() == '#') {
            return;
        }
        const size_t colon = line.find(':');
        if (colon == std::string::npos) {
            pass_over(line);
        } else {
            read_command(line, lowered(plain_line(line.substr(0, colon))), line.substr(colon + 1));
        }
    }

    void read_command(const std::string& line, const std::string& command, const std::string& rest) {
        EqWords words(rest);
        if (command == "preamp") {
            target_.preampDb += words.level("Preamp");
            words.expect_end();
        } else if (command == "graphiceq") {
            sawCurve_ = true;
            read_graph(rest);
        } else if (command.substr(0, 6) == "filter" &&
                   command.find_first_not_of(" 0123456789", 6) == std::string::npos) {
            sawCurve_ = true;
            read_filter(words);
        } else if (command == "channel" && !words.take_if("all")) {
            throw Failure("one curve serves both channels: give one channel's lines, without 'Channel'");
        } else if (one_of(command, {"include", "convolution", "copy", "delay", "if", "elseif", "eval"})) {
            throw Failure(shown(line) + " is more than a curve and cannot be followed");
        } else {
            pass_over(line);
        }
    }

    void pass_over(const std::string& line) {
        target_.remarks.push_back(here() + shown(line) + " is passed over");
    }

    void read_graph(const std::string& rest) {
        std::vector<GraphicPoint> graph;
        std::istringstream points{rest};
        for (std::string point; std::getline(points, point, ';');) {
            EqWords words(point);
            if (words.done()) {
                continue;
            }
            const double hz = words.frequency("a point"), db = words.level("a frequency");
            words.expect_end();
            if (!(hz > 0.0) || (!graph.empty() && hz <= graph.back().hz)) {
                throw Failure(shown(plain_line(point)) + ": frequencies must be above 0 and ascend");
            }
            if (std::fabs(db) > kMostGainDb) {
                throw Failure(shown(plain_line(point)) + ": levels must lie between -100 and 100 dB");
            }
            graph.push_back({hz, db});
        }
        if (graph.empty()) {
            throw Failure("the graphic curve has no points");
        }
        target_.graphs.push_back(std::move(graph));
    }

    void read_filter(EqWords& words) {
        if (words.take_if("off") || (words.take_if("on") && words.done()) || words.done() ||
            words.take_if("none")) {
            return;
        }
        FilterLine filter;
        filter.type = words.take();
        if (words.at_number()) {
            filter.slopeDb = words.level("a slope");
        }
        while (!words.done()) {
            read_property(words, filter);
        }
        if (filter.type == "ap") {
            target_.remarks.push_back(here() + "an all-pass changes no level and is passed over");
        } else {
            target_.sections.push_back(section_of(filter));
        }
    }

    const std::string& name_;
    int line_ = 0;
    bool sawCurve_ = false;
    EqTarget target_;
};

double graph_db(const std::vector<GraphicPoint>& graph, double hz) {
    const auto above = std::upper_bound(graph.begin(), graph.end(), hz,
                                        [](double f, const GraphicPoint& point) { return f < point.hz; });
    if (above == graph.begin() || above == graph.end()) {
        return above == graph.begin() ? graph.front().db : graph.back().db;
    }
    const GraphicPoint& a = above[-1];
    const double share = std::log(hz / a.hz) / std::log(above->hz / a.hz);
    return a.db + share * (above->db - a.db);
}

}  // namespace

double EqTarget::db(double hz) const {
    double sum = 0.0;
    for (const EqSection& section : sections) {
        sum += section_db(section, hz);
    }
    for (const std::vector<GraphicPoint>& graph : graphs) {
        sum += graph_db(graph, hz);
    }
    return sum;
}

EqTarget read_eq_text(std::string_view text, const std::string& name) {
    return EqReader(name).read(text);
}

}  // namespace zoq
