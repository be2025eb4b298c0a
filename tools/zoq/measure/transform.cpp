#include "tools/zoq/measure/transform.h"

#include <fftw3.h>
#include <algorithm>
#include <memory>
#include <new>

namespace zoq {

namespace {

struct Closer {
    void operator()(fftw_plan_s* plan) const { fftw_destroy_plan(plan); }
};
using Plan = std::unique_ptr<fftw_plan_s, Closer>;

// C's complex numbers and C++'s have the same layout.
fftw_complex* raw(Spectrum& spectrum) {
    return reinterpret_cast<fftw_complex*>(spectrum.data());
}

void execute(fftw_plan made) {
    const Plan plan(made);
    if (!plan) {
        throw std::bad_alloc();
    }
    fftw_execute(plan.get());
}

}  // namespace

Spectrum spectrum_of(const std::vector<double>& signal, size_t length) {
    std::vector<double> padded(length, 0.0);
    std::copy_n(signal.begin(), std::min(length, signal.size()), padded.begin());
    Spectrum spectrum(length / 2 + 1);
    execute(fftw_plan_dft_r2c_1d(static_cast<int>(length), padded.data(), raw(spectrum), FFTW_ESTIMATE));
    return spectrum;
}

std::vector<double> signal_of(Spectrum spectrum, size_t length) {
    std::vector<double> signal(length);
    execute(fftw_plan_dft_c2r_1d(static_cast<int>(length), raw(spectrum), signal.data(), FFTW_ESTIMATE));
    for (double& value : signal) {
        value /= static_cast<double>(length);
    }
    return signal;
}

}  // namespace zoq
