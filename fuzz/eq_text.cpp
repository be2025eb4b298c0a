// Equalizer texts of other programs: read or refused, and what was read has a level at every frequency.
#include <cmath>
#include <string_view>

#include "fuzz/require.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/tuning/eq_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        const zoq::EqTarget target =
            zoq::read_eq_text(std::string_view(reinterpret_cast<const char*>(data), size), "eq.txt");
        for (double hz = 20.0; hz <= 20000.0; hz *= 2.0) {
            fuzz::require(!std::isnan(target.db(hz)), "a curve without a level");
        }
    } catch (const zoq::Failure& failure) {
        fuzz::require(failure.what()[0] != '\0', "a refusal without a word");
    }
    return 0;
}
