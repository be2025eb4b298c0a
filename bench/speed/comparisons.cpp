#include "bench/speed/comparisons.h"

#include <algorithm>
#include <limits>

#include "bench/speed/work.h"

namespace bench {

namespace {

using android::KernelLevel;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

constexpr Comparison kComparisons[] = {
    {"1024-point transform",
     "FFTW3f held to the same set",
     kTransform,
     kFftw,
     Reference::kSameLevel,
     {1.35, 1.3, 1.3}},
    {"1024-point transform", "FFTW3f as it chooses", kTransform, kFftw, Reference::kWidest, {0, 0, 1.0}},
    {"1024-point transform", "KissFFT", kTransform, kKissfft, Reference::kScalar, {}},
    {"nine equalizer bands, stereo",
     "section by section",
     kEqualizer,
     kEqualizer,
     Reference::kScalar,
     {0.145, 0.105, 0.09}},
    {"binaural stage, 3 channels",
     "zita-convolver, 6 paths",
     kBinaural,
     kConvolver,
     Reference::kScalar,
     {0.75, 0.48, 0.41}},
    {"binaural stage, 3 channels",
     "the same in its vector mode",
     kBinaural,
     kVectorConvolver,
     Reference::kScalar,
     {0.75, 0.48, 0.41}},
    {"whole hop, loudspeaker",
     "the scalar forms",
     kLoudspeaker,
     kLoudspeaker,
     Reference::kScalar,
     {0.35, 0.23, 0.20}},
    {"whole hop, headphones",
     "the scalar forms",
     kHeadphones,
     kHeadphones,
     Reference::kScalar,
     {0.29, 0.18, 0.155}},
    {"grid logarithms and powers", "the C library's", kCurves, kCurves, Reference::kScalar, {0, 0.30, 0.18}},
    {"logarithms alone", "the C library's", kLogarithms, kLogarithms, Reference::kScalar, {0, 0.30, 0.18}},
    {"powers alone", "the C library's", kPowers, kPowers, Reference::kScalar, {0, 0.30, 0.18}},
    {"silence after it, loudspeaker",
     "music",
     kLoudspeakerSilence,
     kLoudspeaker,
     Reference::kSameLevel,
     {1.05, 1.05, 1.05}},
    {"silence after it, headphones",
     "music",
     kHeadphonesSilence,
     kHeadphones,
     Reference::kSameLevel,
     {1.05, 1.05, 1.05}},
};

// A library that has nothing of its own for a level takes what it has for the one below: no like with like.
bool has_own_set(const FftwSets& sets, KernelLevel level) {
    const auto at = static_cast<size_t>(level);
    return at < sets.size() && sets[at] != sets[at - 1];
}

}  // namespace

std::span<const Comparison> comparisons() {
    return kComparisons;
}

const char* name_of(KernelLevel level) {
    static constexpr const char* kNames[] = {"scalar", "4 lanes", "8 lanes", "16 lanes"};
    return kNames[static_cast<int>(level)];
}

std::vector<std::string> names(const Speed& speed) {
    std::vector<std::string> result;
    for (const Candidate& candidate : speed.candidates) {
        if (std::find(result.begin(), result.end(), candidate.name) == result.end()) {
            result.push_back(candidate.name);
        }
    }
    return result;
}

double microseconds(const Speed& speed, const std::string& name, KernelLevel level) {
    double least = std::numeric_limits<double>::infinity();
    for (const Candidate& candidate : speed.candidates) {
        if (candidate.name == name && candidate.level == level) {
            least = std::min(least, candidate.microseconds);
        }
    }
    return least < std::numeric_limits<double>::infinity() ? least : kNone;
}

double ratio(const Speed& speed, const Comparison& row, KernelLevel level) {
    const bool ofLevel = row.level == Reference::kSameLevel;
    if (ofLevel && row.reference == kFftw && !has_own_set(speed.fftwSets, level)) {
        return kNone;
    }
    const KernelLevel widest = levels().back();
    const KernelLevel other = ofLevel                           ? level
                              : row.level == Reference::kWidest ? widest
                                                                : KernelLevel::kScalar;
    return microseconds(speed, row.subject, level) / microseconds(speed, row.reference, other);
}

double most(const Speed& speed, const Comparison& row, KernelLevel level) {
    // The mark beside what FFTW chooses is set for Debian's package, which has no codelets of 16 lanes.
    if (row.level == Reference::kWidest && has_own_set(speed.fftwSets, KernelLevel::kLanes16)) {
        return 0.0;
    }
    return row.most[static_cast<size_t>(level) - 1];
}

}  // namespace bench
