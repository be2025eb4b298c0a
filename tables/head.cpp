#include "tables/head.h"

#include <mysofa.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <memory>
#include <numbers>

namespace zoq::tables {

namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
constexpr double kLowestRateHz = 32000.0, kHighestRateHz = 192000.0;
constexpr unsigned kShortestResponse = 32, kLongestResponse = 16384;
constexpr double kLongestDelay = 4096.0;  // samples, beyond the shortest of the file

using Point = std::array<double, 3>;

Point unit(const Direction& direction) {
    const double azimuth = direction.azimuth * kDegree, elevation = direction.elevation * kDegree;
    return {std::cos(elevation) * std::cos(azimuth), std::cos(elevation) * std::sin(azimuth),
            std::sin(elevation)};
}

double dot(const Point& a, const Point& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

struct Freed {
    void operator()(MYSOFA_HRTF* file) const { mysofa_free(file); }
};
using File = std::unique_ptr<MYSOFA_HRTF, Freed>;

std::string attribute(const File& file, const char* name) {
    std::string key(name);
    const char* value = mysofa_getAttribute(file->attributes, key.data());
    return value ? value : "";
}

void require(bool good, const std::string& problem) {
    if (!good) {
        throw HeadError(problem);
    }
}

File open(const std::string& path) {
    require(std::ifstream(path).good(),
            "cannot read " + path +
                (path == kDefaultHeadFile ? "; it comes with Debian's package libmysofa1"
                                          : "; name an existing SOFA file that you may read"));
    int error = MYSOFA_OK;
    File file(mysofa_load(path.c_str(), &error));
    require(file != nullptr, path + " is not a SOFA file that libmysofa can read (its error " +
                                 std::to_string(error) + "); export it again as SimpleFreeFieldHRIR");
    return file;
}

void require_layout(const File& file, const std::string& path) {
    const std::string convention = attribute(file, "SOFAConventions");
    require(convention == "SimpleFreeFieldHRIR",
            path + " holds the convention '" + convention + "'; a head's responses have SimpleFreeFieldHRIR");
    require(attribute(file, "DataType") == "FIR",
            path + " holds data of type '" + attribute(file, "DataType") + "'; impulse responses have FIR");
    require(file->R == 2, path + " has " + std::to_string(file->R) + " receivers; a head has two ears");
    require(file->N >= kShortestResponse && file->N <= kLongestResponse,
            path + " has responses of " + std::to_string(file->N) + " samples; " +
                std::to_string(kShortestResponse) + " to " + std::to_string(kLongestResponse) +
                " are usable");
    const size_t pairs = size_t(file->M) * file->R;
    require(file->M > 0 && file->DataIR.values && file->DataIR.elements >= pairs * file->N &&
                file->SourcePosition.values && file->SourcePosition.elements >= size_t(file->M) * 3 &&
                file->DataSamplingRate.values && file->DataSamplingRate.elements >= 1,
            path + " is incomplete: responses, source positions or sampling rate are missing");
}

// Delay of a pair beyond the shortest of the file, in whole samples; files store one per ear or one per
// response.
class Delays {
  public:
    Delays(const File& file, const std::string& path) : array(file->DataDelay), ears(file->R) {
        const size_t pairs = size_t(file->M) * file->R;
        count = !array.values ? 0 : array.elements >= pairs ? pairs : array.elements >= ears ? ears : 0;
        if (count == 0) {
            return;
        }
        require(
            std::all_of(array.values, array.values + count, [](float value) { return std::isfinite(value); }),
            path + " holds delays that are not finite; write them again");
        const auto [low, high] = std::minmax_element(array.values, array.values + count);
        shortest = double(*low);
        require(
            double(*high) - shortest <= kLongestDelay,
            path + " has delays that differ by more than " + std::to_string(int(kLongestDelay)) + " samples");
    }
    size_t of(size_t pair) const {
        return count == 0 ? 0 : size_t(std::lround(double(array.values[pair % count]) - shortest));
    }
    size_t longest() const {
        size_t most = 0;
        for (size_t pair = 0; pair < count; ++pair) {
            most = std::max(most, of(pair));
        }
        return most;
    }

  private:
    const MYSOFA_ARRAY& array;
    size_t ears, count = 0;
    double shortest = 0.0;
};

void copy_measurements(const File& file, const Delays& delays, Head& head) {
    const size_t length = file->N + delays.longest();
    for (size_t m = 0; m < file->M; ++m) {
        const float* position = file->SourcePosition.values + 3 * m;
        head.directions.push_back({double(position[0]), double(position[1])});
        auto& ears = head.responses.emplace_back();
        for (size_t ear = 0; ear < 2; ++ear) {
            const size_t pair = 2 * m + ear;
            const float* samples = file->DataIR.values + pair * file->N;
            ears[ear].assign(length, 0.0);
            std::copy(samples, samples + file->N, ears[ear].begin() + std::ptrdiff_t(delays.of(pair)));
        }
    }
}

bool finite(const Signal& x) {
    return std::all_of(x.begin(), x.end(), [](double value) { return std::isfinite(value); });
}

// Sounds from the left must be louder at the left ear; some exporters swap the ears or run azimuth clockwise.
void require_left_first(const Head& head) {
    double near = 0.0, far = 0.0;
    for (size_t m = 0; m < head.directions.size(); ++m) {
        const double side = std::sin(head.directions[m].azimuth * kDegree);
        if (std::fabs(side) > 0.5 && std::fabs(head.directions[m].elevation) < 45.0) {
            near += energy(head.responses[m][side > 0 ? kLeftEar : kRightEar]);
            far += energy(head.responses[m][side > 0 ? kRightEar : kLeftEar]);
        }
    }
    require(near >= far,
            "the head's ears are exchanged: sounds from the left are louder at the second receiver; "
            "put the left ear first and let azimuth run anticlockwise");
}

}  // namespace

Head load_head(const std::string& path) {
    const File file = open(path);
    require_layout(file, path);
    mysofa_tospherical(file.get());
    Head head;
    head.rateHz = double(file->DataSamplingRate.values[0]);
    copy_measurements(file, Delays(file, path), head);
    try {
        require_sound(head);
    } catch (const HeadError& error) {
        throw HeadError(path + ": " + error.what());
    }
    return head;
}

void require_sound(const Head& head) {
    require(head.rateHz >= kLowestRateHz && head.rateHz <= kHighestRateHz,
            "the head's sampling rate is " + std::to_string(head.rateHz) +
                " Hz; 32000 to 192000 are usable, resample the set");
    require(!head.directions.empty() && head.directions.size() == head.responses.size(),
            "the head has no measurements");
    for (size_t m = 0; m < head.directions.size(); ++m) {
        const std::string where = "the head's measurement " + std::to_string(m + 1);
        require(std::isfinite(head.directions[m].azimuth) && std::isfinite(head.directions[m].elevation),
                where + " has no finite direction; remove it or measure it again");
        for (const Signal& response : head.responses[m]) {
            require(finite(response),
                    where + " holds values that are not finite; remove it or measure it again");
            require(energy(response) > 0.0, where + " is silent; remove it or measure it again");
        }
    }
    require_left_first(head);
}

double angle(const Direction& a, const Direction& b) {
    return std::acos(std::clamp(dot(unit(a), unit(b)), -1.0, 1.0)) / kDegree;
}

// Of two equally near the first counts: without the margin, rounding would choose, on each machine anew.
size_t nearest(const Head& head, const Direction& wanted) {
    constexpr double kMargin = 1e-9;
    const Point towards = unit(wanted);
    size_t best = 0;
    double closest = -2.0;
    for (size_t m = 0; m < head.directions.size(); ++m) {
        if (const double cosine = dot(unit(head.directions[m]), towards); cosine > closest + kMargin) {
            closest = cosine;
            best = m;
        }
    }
    return best;
}

std::complex<double> response_at(const Head& head, size_t measurement, Ear ear, double hz) {
    const std::complex<double> step = std::polar(1.0, -2.0 * std::numbers::pi * hz / head.rateHz);
    std::complex<double> sum = 0.0;
    const Signal& x = head.responses[measurement][ear];
    for (size_t i = x.size(); i-- > 0;) {
        sum = sum * step + x[i];
    }
    return sum;
}

}  // namespace zoq::tables
