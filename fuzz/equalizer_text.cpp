// Equalizer texts: refused with a message, or read as a curve that is finite and fitted by gains the engine takes.
#include <cmath>
#include <sstream>
#include <string>

#include "fuzz/require.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/tuning/config_write.h"
#include "tools/zoq/tuning/eq_text.h"
#include "tools/zoq/tuning/reports.h"

namespace {

void check_fit(const zoq::EqFit& fit) {
    for (const double gain : fit.gainDb) {
        require(std::fabs(gain) <= fit.limitDb + 0.005, "gains keep to the limit");
    }
    require(std::isfinite(fit.rmsDb) && std::isfinite(fit.worstDb) && std::isfinite(fit.levelDb),
            "the fit's figures are finite");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    zoq::EqTarget target;
    try {
        target = zoq::read_eq_text(text, "text");
    } catch (const zoq::Failure&) {
        return 0;
    }
    for (double hz = 10.0; hz < 24000.0; hz *= 1.3) {
        require(std::isfinite(target.db(hz)), "a curve that was accepted is finite");
    }
    const zoq::EqFit fit = zoq::fit_bands([&target](double hz) { return target.db(hz); }, {});
    check_fit(fit);
    std::ostringstream out;
    zoq::print_fit(out, fit, target.preampDb);
    zoq::Settings settings;
    zoq::add_gains(settings, fit.gainDb, zoq::EqRoute::kBoth);
    zoq::checked_text(settings, zoq::Dialect::kFile);  // throws unless it is clean
    return 0;
}
