// Sines of whole periods: making them, and reading their amplitude.
#pragma once

#include <complex>
#include <vector>

#include "tools/zoq/measure/rig.h"

namespace zoq {

double db(double ratio);               // minus infinity for 0
double amplitude_of_db(double level);  // 1 for 0 dB

// The nearest value of 16 bits; 1.0 becomes 32767.
int16_t quantised(double value);

// A sine whose period is a whole number of samples.
class PeriodicTone {
  public:
    explicit PeriodicTone(double nearHz);

    int period() const { return period_; }  // samples
    double hz() const;

    // Appends the samples that follow what the signal holds, as though it had been the same sine from its beginning.
    void append(Signal& signal, double levelDb, size_t frames) const;

    // The amplitude around each sample of x, from one period: elements closer than that to either end are 0.
    std::vector<double> envelope(const std::vector<double>& x) const;

  private:
    int period_;
};

}  // namespace zoq
