#include "modules/den/den.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <limits>

#include "tests/support/dft.h"
#include "tests/support/kernel_levels.h"
#include "tests/support/signals.h"

using namespace android;

namespace {

constexpr size_t kFrame = kFrameSamples, kHop = kHopSamples;

struct Setting {
    float speech, base, wide, stereo;
};

// Has a curve with a positive constant, where pans jump from -0.05 to 0.05 between left and right.
constexpr float kJumpingWide = 3.61f;
constexpr int kJumpingColumn = 90;

// The factory's bands with pan curves of the test's own: u + s (u - u^3) pushes outward the more, the higher
// the column.
parameterDEN test_record() {
    parameterDEN record{};
    factory_contents(&record);
    for (int column = 1; column <= kDenCurveColumns; ++column) {
        const float s = 0.01f * static_cast<float>(column);
        const float curve[] = {-s, 0.0f, 1.0f + s, column == kJumpingColumn ? 0.05f : -0.02f * s};
        for (int row = 0; row < 4; ++row) {
            record.wideCurve[row][column - 1] = curve[row];
        }
    }
    return record;
}

const parameterDEN kRecord = test_record();

void enhance(std::vector<float>& io, const Setting& s) {
    DialogueEnhancementWide(io.data(), kRecord.smoothFactor, s.speech, s.base, s.wide, s.stereo,
                            &kRecord.wideCurve[0][0], kRecord.bandEnd, kRecord.bandStart);
}

// What the module is to do, in double precision, in terms of magnitudes and with transforms from the
// definition.
class Model {
  public:
    std::vector<double> enhance(const std::vector<float>& io, const Setting& s) {
        const bool unity = s.speech == 1.0f && s.base == 1.0f, plain = unity && s.wide == 0.0f;
        std::vector<double> out(io.begin(), io.end());
        if (plain && s.stereo == 1.0f) {
            std::transform(out.begin(), out.end(), out.begin(), [](double x) { return x / 2.0; });
            return out;
        }
        hops_.push_front(hops_.back());
        hops_.pop_back();
        l_ = spectrum_of(out, 0);
        r_ = spectrum_of(out, 1);
        c_.assign(dft::kBins, 0.0);
        if (s.wide > 0.0f) {
            widen(
                static_cast<size_t>(std::clamp(std::floor(25.0 * static_cast<double>(s.wide)), 1.0, 100.0)));
        }
        if (!unity || s.stereo != 1.0f) {
            extract(!plain);
        }
        if (s.speech > 1.0f) {
            boost(static_cast<double>(s.speech), static_cast<double>(s.base));
        }
        const auto left = dft::frame_of(l_), right = dft::frame_of(r_), centre = dft::frame_of(c_);
        for (size_t n = 0; n < kFrame; ++n) {
            const double w = window(n), c = centre[n] * w, fold = s.stereo != 0.0f ? c : 0.0;
            out[n] = (plain ? 0.5 * out[n] - c : left[n] * w) + fold;
            out[kFrame + n] = (plain ? 0.5 * out[kFrame + n] - c : right[n] * w) + fold;
            out[2 * kFrame + n] = c - fold;
        }
        return out;
    }

  private:
    struct Hop {
        std::array<double, 33> centre{}, side{};
    };

    static double window(size_t n) { return std::sin(std::numbers::pi * static_cast<double>(n) / 1024.0); }

    static dft::HalfSpectrum spectrum_of(const std::vector<double>& io, size_t channel) {
        std::vector<double> x(io.data() + channel * kFrame, io.data() + (channel + 1) * kFrame);
        for (size_t n = 0; n < kFrame; ++n) {
            x[n] *= window(n);
        }
        return dft::half_spectrum(std::span<const double>(x));
    }

    // Level in the right channel, and with -p in the left.
    static double pan_law(double p) {
        const double x = 0.5 * (p + 1.0);
        return std::clamp(-0.8338 * x * x + 1.8762 * x - 0.0235, 0.0, 1.0);
    }

    void widen(size_t column) {
        const auto curve = [column](int row) {
            return static_cast<double>(kRecord.wideCurve[row][column - 1]);
        };
        for (size_t k = 31; k <= 255; ++k) {
            const double l = std::abs(l_[k]), r = std::abs(r_[k]);
            const double p = (1.0 - 2.0 * l * r / (l * l + r * r + 1e-15)) * double(r > l   ? 1
                                                                                    : r < l ? -1
                                                                                            : 0);
            const double u = std::abs(p);
            const double moved =
                curve(0) * std::pow(u, 3) + curve(1) * std::pow(u, 2) + curve(2) * u + curve(3);
            const double q = std::copysign(std::clamp(moved, 0.0, 1.0), p > 0.0 ? 1.0 : -1.0);
            l_[k] *= pan_law(-q) / (pan_law(-p) + 1e-15);
            r_[k] *= pan_law(q) / (pan_law(p) + 1e-15);
        }
    }

    template <typename Body>
    static void for_bins(size_t band, Body body) {
        for (auto k = static_cast<size_t>(kRecord.bandStart[band]); k <= size_t(kRecord.bandEnd[band]); ++k) {
            body(k - 1);
        }
    }

    void extract(bool subtract) {
        for (size_t j = 0; j < 34; ++j) {
            dft::Complex side, mid;
            for_bins(j, [&](size_t k) { side += l_[k] - r_[k], mid += l_[k] + r_[k]; });
            const double a = static_cast<double>(kRecord.smoothFactor);
            side_[j] = a * side_[j] + (1.0 - a) * std::norm(side);
            mid_[j] = a * mid_[j] + (1.0 - a) * std::norm(mid);
            const double gain = std::max(0.0, 0.5 - 0.5 * std::sqrt(side_[j] / (mid_[j] + 1e-4)));
            for_bins(j, [&](size_t k) {
                c_[k] = side_[j] > mid_[j] ? 0.0 : gain * (l_[k] + r_[k]);
                l_[k] -= subtract ? c_[k] : 0.0;
                r_[k] -= subtract ? c_[k] : 0.0;
            });
        }
    }

    void boost(double speech, double base) {
        hops_[0] = Hop{};
        for (size_t j = 0; j < 33; ++j) {
            double centre = 0.0, side = 0.0;
            for_bins(j, [&](size_t k) {
                hops_[0].centre[j] += std::abs(c_[k]);
                hops_[0].side[j] += std::abs(l_[k] - r_[k]);
                centre += std::norm(c_[k]);
                side += std::norm(l_[k] - r_[k]);
            });
            centreEnergy_[j] += 0.2 * (centre - centreEnergy_[j]);
            sideEnergy_[j] += 0.2 * (side - sideEnergy_[j]);
        }
        double centreMoves = 0.0, sideMoves = 0.0;
        for (size_t j = 3; j <= 30; ++j) {
            const auto& h = hops_;
            centreMoves += std::pow(h[0].centre[j] + h[1].centre[j] - h[2].centre[j] - h[3].centre[j], 2);
            sideMoves += std::pow(h[0].side[j] + h[1].side[j] - h[2].side[j] - h[3].side[j], 2);
        }
        const double x = centreMoves > 20.0 ? 4.0 * centreMoves / (centreMoves + sideMoves) - 2.0 : -2.0;
        activity_ += (x < activity_ ? 0.02 : 0.3) * (x - activity_);
        for (size_t j = 0; j < 33; ++j) {
            const double share = std::sqrt(centreEnergy_[j] / (centreEnergy_[j] + sideEnergy_[j] + 1e-4));
            const double gain = base + std::clamp(activity_, 0.0, 1.0) * (speech - 1.0) * share;
            for_bins(j, [&](size_t k) { c_[k] *= gain, l_[k] *= gain, r_[k] *= gain; });
        }
    }

    dft::HalfSpectrum l_, r_, c_;
    std::array<double, 34> side_{}, mid_{}, centreEnergy_{}, sideEnergy_{};
    std::deque<Hop> hops_ = std::deque<Hop>(4);
    double activity_ = 0.0;
};

using Stereo = std::array<std::vector<float>, 2>;

// Block 2 holds what only the bypass may read.
std::vector<float> frame_of(const Stereo& x, size_t hop) {
    std::vector<float> io(3 * kFrame, 0.25f);
    std::copy_n(x[0].data() + hop * kHop, kFrame, io.data());
    std::copy_n(x[1].data() + hop * kHop, kFrame, io.data() + kFrame);
    return io;
}

std::vector<float> mixed(float a, const std::vector<float>& x, float b, const std::vector<float>& y) {
    std::vector<float> sum(x.size());
    for (size_t n = 0; n < x.size(); ++n) {
        sum[n] = a * x[n] + b * y[n];
    }
    return sum;
}

// Speech near the middle, noise around it, a beeping left, a clicking right and silent stretches.
Stereo programme(size_t samples, float speechPeak = 4.0f, float noisePeak = 0.05f) {
    const auto speech = signals::speech_like(5, samples, speechPeak),
               beep = signals::sine(3000.0, samples, 0.2f);
    Stereo x{mixed(0.9f, speech, noisePeak, signals::noise(6, samples)),
             mixed(0.8f, speech, noisePeak, signals::noise(7, samples))};
    for (size_t n = 0; n < samples; ++n) {
        x[0][n] += n / 8000 % 2 == 1 ? beep[n] : 0.0f;
        x[1][n] += n % 3001 == 0 ? 0.7f : 0.0f;
        if (n / 4096 % 5 == 3) {
            x[0][n] = x[1][n] = 0.0f;
        }
    }
    return x;
}

// Five hops with each setting. The transforms round at 4e-7 of a frame's peak, here near 1, and gains
// reach 3.
void expect_equals_model(const Stereo& x, std::span<const Setting> settings) {
    Model model;
    bdiff_sm_not_empty_init();
    for (size_t hop = 0; hop < 5 * settings.size(); ++hop) {
        std::vector<float> io = frame_of(x, hop);
        const std::vector<double> expected = model.enhance(io, settings[hop / 5]);
        enhance(io, settings[hop / 5]);
        for (size_t i = 0; i < io.size(); ++i) {
            ASSERT_NEAR(io[i], expected[i], 2e-6) << "hop " << hop << " sample " << i;
        }
    }
}

}  // namespace

TEST(Den, EqualsTheModelWhileSettingsChange) {
    const Setting settings[] = {
        {2.0f, 1.0f, 0.0f, 0.0f},  {2.0f, 1.0f, 3.0f, 0.0f},  {1.0f, 1.0f, 0.0f, 0.0f},
        {1.0f, 1.0f, 2.0f, 1.0f},  {3.0f, 0.5f, 3.99f, 1.0f}, {1.0f, 1.0f, 0.0f, 1.0f},
        {1.5f, 1.0f, 0.0f, 1.0f},  {1.0f, 1.0f, 0.0f, 0.5f},  {0.5f, 2.0f, 0.0f, 0.0f},
        {1.0f, 0.7f, 1.0f, 1.0f},  {1.0f, 1.0f, -1.0f, 0.0f}, {2.0f, 1.0f, 7.0f, 0.0f},
        {1.0f, 1.0f, 0.01f, 0.0f}, {2.0f, 1.0f, 0.04f, 2.0f}};
    const size_t samples = (5 * std::size(settings) + 1) * kHop;
    expect_equals_model(programme(samples), settings);
    expect_equals_model(programme(samples, 1.0f, 0.4f), settings);
}

TEST(Den, EqualsTheModelWhileSpeechIsGivenUp) {
    const std::vector<Setting> settings(10, {2.0f, 1.0f, 0.0f, 0.0f});
    std::vector<float> x = signals::speech_like(3, 51 * kHop, 4.0f);
    std::copy_n(signals::sine(1000.0, 45 * kHop, 0.2f).begin(), 45 * kHop, x.begin() + 6 * kHop);
    expect_equals_model({x, x}, settings);
}

// The impulse at the window's peak has equal powers exactly; the one at its start is windowed away. A source in the
// middle is moved only by a curve with a positive constant, and then to the left.
TEST(Den, EqualsTheModelWhereBinsAreEquallyLoud) {
    const Setting settings[] = {{1.0f, 1.0f, 1.0f, 1.0f}, {1.0f, 1.0f, kJumpingWide, 1.0f}};
    std::vector<float> impulses(11 * kHop, 0.0f);
    for (size_t n = 0; n < impulses.size(); n += kHop) {
        impulses[n] = 1.0f;
    }
    expect_equals_model({impulses, impulses}, settings);
}

// A first impulse at the window's peak fluctuates by 975 h^2: the sum of the squared widths of bands 3 to 30.
TEST(Den, CentresTooQuietToJudgeAreNotBoosted) {
    const auto gain_at = [](double fluctuation) {
        const auto height = static_cast<float>(std::sqrt(fluctuation / 975.0));
        const std::vector<float> impulse = signals::impulse(kHop, kFrame, height);
        std::vector<float> io = frame_of({impulse, impulse}, 0);
        bdiff_sm_not_empty_init();
        enhance(io, {2.0f, 1.0f, 0.0f, 1.0f});
        return io[kHop] / height;
    };
    EXPECT_NEAR(gain_at(19.9), 1.0, 1e-6);
    EXPECT_GT(gain_at(20.1), 1.15);
}

TEST(Den, HostileArgumentsStayInsideTheBuffersAndAResetClearsThem) {
    const float nan = std::numeric_limits<float>::quiet_NaN(),
                infinity = std::numeric_limits<float>::infinity();
    const Stereo x = programme(4 * kHop);
    const Setting setting{2.0f, 1.0f, 2.0f, 0.0f};
    bdiff_sm_not_empty_init();
    std::vector<float> fresh = frame_of(x, 0), again = fresh;
    enhance(fresh, setting);

    const float edges[] = {nan, infinity, -infinity, 1e9f, -1e9f, 0.0f, 600.0f, 513.0f, 1.0f};
    for (float start : edges) {
        for (float end : edges) {
            for (float wide : {nan, infinity, -infinity, 1e9f, 1e-30f}) {
                const std::vector<float> starts(kDenBands, start), ends(kDenBands, end);
                std::vector<float> io = frame_of(x, 1);
                io[100] = wide;
                io.push_back(42.0f);
                DialogueEnhancementWide(io.data(), 0.8f, 2.0f, 1.0f, wide, 0.0f, &kRecord.wideCurve[0][0],
                                        ends.data(), starts.data());
                ASSERT_EQ(io.back(), 42.0f);
            }
        }
    }
    bdiff_sm_not_empty_init();
    enhance(again, setting);
    EXPECT_EQ(again, fresh);
}

// Two bins each to 2 kHz, then near a sixth of an octave; the last takes the rest.
TEST(Den, FactoryBandsCoverAllBinsOnceAndWidenEvenly) {
    float last = 0.0f;
    for (int j = 0; j < kDenBands; ++j) {
        const float end = kRecord.bandEnd[j];
        EXPECT_EQ(kRecord.bandStart[j], last + 1.0f) << j;
        EXPECT_EQ(kRecord.bandWidth[j], end - last) << j;
        if (j < 21) {
            EXPECT_EQ(end, last + 2.0f) << j;
        } else if (j < kDenBands - 1) {
            EXPECT_NEAR(std::log2(end / last), 1.0 / 6.0, 0.03) << j;
        }
        last = end;
    }
    EXPECT_EQ(last, 513.0f);
}

// Bands of some width from some bin on, each `gap` bins behind (or, below 0, over) the one before it.
parameterDEN banded_record(int first, int width, int gap) {
    parameterDEN record = kRecord;
    for (int j = 0; j < kDenBands; ++j) {
        record.bandStart[j] = static_cast<float>(first + j * (width + gap));
        record.bandEnd[j] = record.bandStart[j] + static_cast<float>(width - 1);
    }
    return record;
}

// Hop after hop with ever other settings; signed zeros, a pair without sides and one without left among them.
std::vector<float> restless_run(const parameterDEN& record, float level) {
    const Setting settings[] = {{2.0f, 1.0f, 2.0f, 0.0f}, {1.0f, 1.0f, 0.0f, 0.0f}, {1.0f, 1.0f, 0.0f, 1.0f},
                                {3.0f, 0.5f, 4.0f, 1.0f}, {1.0f, 1.0f, 3.0f, 0.5f}, {2.0f, 1.0f, 0.0f, 0.0f},
                                {1.5f, 2.0f, -1.0f, 0.0f}};
    const Stereo x = programme(24 * kHop);
    std::vector<float> all;
    bdiff_sm_not_empty_init();
    for (size_t hop = 0; hop < 22; ++hop) {
        const Setting& s = settings[hop % 7];
        std::vector<float> io = frame_of(x, hop);
        for (size_t n = 0; n < kFrame; ++n) {
            io[n] = hop % 9 == 8 ? -0.0f : io[n] * level;
            io[kFrame + n] = hop % 5 == 4 ? io[n] : io[kFrame + n] * level;
        }
        DialogueEnhancementWide(io.data(), hop % 11 == 10 ? 1.5f : record.smoothFactor, s.speech, s.base,
                                s.wide, s.stereo, &record.wideCurve[0][0], record.bandEnd, record.bandStart);
        all.insert(all.end(), io.begin(), io.end());
    }
    return all;
}

TEST(Den, EveryLevelGivesTheSameBits) {
    const parameterDEN records[] = {
        kRecord,  // then: 1 bin each; up to the last bin; gaps; overlaps; none; backward
        banded_record(1, 1, 0),
        banded_record(4, 15, 0),
        banded_record(2, 3, 2),
        banded_record(1, 9, -4),
        banded_record(9, 0, 0),
        banded_record(400, 5, -9)};
    for (const parameterDEN& record : records) {
        for (const float level : {1.0f, 1e-12f, 1e14f, 1e30f}) {
            kernels::expect_same_bits([&] { return restless_run(record, level); });
        }
    }
    bdiff_sm_not_empty_init();
}
