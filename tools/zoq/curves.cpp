#include "tools/zoq/curves.h"

#include <kiss_fftr.h>
#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <iomanip>
#include <new>
#include <sstream>

#include "tools/zoq/engine_session.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/output_file.h"

namespace zoq {

namespace {

constexpr double kLowestHz = 20.0;
constexpr double kBandsPerOctave = 6.0;
constexpr size_t kMaxColumns = 1500;  // of the outline, as many as a picture shows

double band_edge_hz(int edge) {
    return kLowestHz * std::exp2(edge / kBandsPerOctave);
}

// The extremes of outline[first .. end).
Curve::Span extremes(const std::vector<Curve::Span>& outline, size_t first, size_t end) {
    Curve::Span span = {0.0f, 0.0f};
    for (size_t i = first; i < std::min(end, outline.size()); ++i) {
        span.low = std::min(span.low, outline[i].low);
        span.high = std::max(span.high, outline[i].high);
    }
    return span;
}

}  // namespace

void Curve::Closer::operator()(kiss_fftr_state* state) const {
    kiss_fftr_free(state);
}

Curve::Curve() : transform_(kiss_fftr_alloc(kTransform, 0, nullptr, nullptr)), power_(kTransform / 2 + 1) {
    if (!transform_) {
        throw std::bad_alloc();
    }
    for (int i = 0; i < kTransform; ++i) {
        window_.push_back(static_cast<float>(0.5 - 0.5 * std::cos(2.0 * M_PI * i / kTransform)));
    }
}

double Curve::band_hz(int band) {
    return band_edge_hz(band) * std::exp2(0.5 / kBandsPerOctave);
}

void Curve::add(const int16_t* stereo, int frames) {
    for (int i = 0; i < frames; ++i, stereo += 2) {
        add_to_outline(stereo);
        for (int side = 0; side < 2; ++side) {
            history_[side].push_back(static_cast<float>(stereo[side]) / 32768.0f);
        }
        if (history_[0].size() == kTransform) {
            add_transforms();
        }
    }
}

void Curve::add_to_outline(const int16_t* frame) {
    if (frames_++ % kSpanFrames == 0) {
        outline_.push_back({0.0f, 0.0f});
    }
    for (int side = 0; side < 2; ++side) {
        const float value = static_cast<float>(frame[side]) / 32768.0f;
        outline_.back().low = std::min(outline_.back().low, value);
        outline_.back().high = std::max(outline_.back().high, value);
    }
}

// Half overlapped, so that every sample counts alike.
void Curve::add_transforms() {
    std::vector<float> windowed(kTransform);
    std::vector<kiss_fft_cpx> bins(power_.size());
    for (std::vector<float>& history : history_) {
        std::transform(history.begin(), history.end(), window_.begin(), windowed.begin(),
                       std::multiplies<>());
        kiss_fftr(transform_.get(), windowed.data(), bins.data());
        for (size_t k = 0; k < bins.size(); ++k) {
            power_[k] += std::norm(
                std::complex<double>(static_cast<double>(bins[k].r), static_cast<double>(bins[k].i)));
        }
        history.erase(history.begin(), history.begin() + kTransform / 2);
    }
    ++transforms_;
}

std::vector<double> Curve::spectrum() const {
    // A sine at full scale on both channels: 2 x (N/2 x mean window)^2 at its bin, 1.5 times that with the
    // Hann window's side bins.
    const double fullScale = 2.0 * 1.5 * std::pow(kTransform / 4.0, 2.0) * static_cast<double>(transforms_);
    const double binHz = double{kEngineRate} / kTransform;
    std::vector<double> levels;
    for (int band = 0; band < kBands; ++band) {
        const double low = band_edge_hz(band) / binHz + 0.5;
        const double high = band_edge_hz(band + 1) / binHz + 0.5;
        double power = 0.0;
        // Bin k holds k .. k+1 on this scale; bands narrower than a bin take their share of it.
        for (auto k = static_cast<size_t>(low); k < power_.size() && static_cast<double>(k) < high; ++k) {
            const auto left = static_cast<double>(k);
            power += power_[k] * (std::min(high, left + 1.0) - std::max(low, left));
        }
        levels.push_back(std::max(kFloorDb, 10.0 * std::log10(power / fullScale)));
    }
    return levels;
}

namespace {

void print_outlines(std::ostream& table, const std::vector<Curve::Span>& before,
                    const std::vector<Curve::Span>& after) {
    table << "# seconds, before low, before high, after low, after high\n";
    const size_t spans = std::max(before.size(), after.size());
    const size_t step = std::max<size_t>(1, (spans + kMaxColumns - 1) / kMaxColumns);
    for (size_t i = 0; i < spans; i += step) {
        const Curve::Span in = extremes(before, i, i + step);
        const Curve::Span out = extremes(after, i, i + step);
        table << static_cast<double>(i) / 100.0 << ' ' << in.low << ' ' << in.high << ' ' << out.low << ' '
              << out.high << '\n';
    }
}

void print_spectra(std::ostream& table, const std::vector<double>& before, const std::vector<double>& after) {
    table << "# Hz, before dB, after dB\n";
    for (int band = 0; band < Curve::kBands; ++band) {
        const auto i = static_cast<size_t>(band);
        table << Curve::band_hz(band) << ' ' << before[i] << ' ' << after[i] << '\n';
    }
}

}  // namespace

void write_curves(const std::string& path, const Curve& before, const Curve& after) {
    std::ostringstream table;
    table << std::fixed << std::setprecision(4);
    print_outlines(table, before.outline(), after.outline());
    table << "\n\n";
    print_spectra(table, before.spectrum(), after.spectrum());

    const std::string text = table.str();
    OutputFile file(path);
    if (const int error = write_fully(file.fd(), text.data(), text.size())) {
        throw system_failure("cannot write", file.name(), error);
    }
    file.commit();
}

}  // namespace zoq
