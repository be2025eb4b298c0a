#include "tools/zoq/measure/tones.h"

#include <algorithm>
#include <cmath>

namespace zoq {

double db(double ratio) {
    return 20.0 * std::log10(ratio);
}

double amplitude_of_db(double level) {
    return std::pow(10.0, level / 20.0);
}

int16_t quantised(double value) {
    return static_cast<int16_t>(std::lround(std::clamp(32768.0 * value, -32767.0, 32767.0)));
}

PeriodicTone::PeriodicTone(double nearHz) : period_(static_cast<int>(std::lround(kEngineRate / nearHz))) {}

double PeriodicTone::hz() const {
    return double{kEngineRate} / period_;
}

void PeriodicTone::append(Signal& signal, double levelDb, size_t frames) const {
    const double amplitude = amplitude_of_db(levelDb);
    for (size_t i = 0; i < frames; ++i) {
        // Half a sample off the zero crossing: periods of a few samples come close to their amplitude so.
        const double phase = static_cast<double>(signal.size() % static_cast<size_t>(period_)) + 0.5;
        signal.push_back(quantised(amplitude * std::sin(2.0 * M_PI * phase / period_)));
    }
}

std::vector<double> PeriodicTone::envelope(const std::vector<double>& x) const {
    const auto period = static_cast<size_t>(period_);
    std::vector<std::complex<double>> turned(period);
    for (size_t i = 0; i < period; ++i) {
        turned[i] = std::polar(2.0 / period_, -2.0 * M_PI * static_cast<double>(i) / period_);
    }
    std::vector<double> result(x.size(), 0.0);
    std::complex<double> sum = 0.0;
    for (size_t i = 0; i < x.size(); ++i) {
        const std::complex<double> turn = turned[i % period];
        sum += x[i] * turn;
        if (i >= period) {
            sum -= x[i - period] * turn;
        }
        if (i + 1 >= period) {
            result[i - (period - 1) / 2] = std::abs(sum);
        }
    }
    return result;
}

}  // namespace zoq
