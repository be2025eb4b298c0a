// Writes the seeds of head_file: small heads as SOFA files, in the current folder.
#include <cmath>

#include "tests/support/sofa_file.h"

namespace {

// A click that fades, later and softer at the far ear, from three directions.
zoq::tables::Head small_head() {
    zoq::tables::Head head;
    head.rateHz = 32000.0;
    for (const double azimuth : {0.0, 90.0, 270.0}) {
        head.directions.push_back({azimuth, 0.0});
        auto& ears = head.responses.emplace_back();
        for (const bool right : {false, true}) {
            const bool far = azimuth == (right ? 90.0 : 270.0);
            zoq::tables::Signal& ear = ears[right ? 1 : 0];
            for (size_t n = 0; n < 64; ++n) {
                const double late = static_cast<double>(n) - (far ? 24.0 : 2.0);
                ear.push_back(late < 0.0 ? 0.0 : (far ? 0.3 : 1.0) * std::pow(-0.5, late));
            }
        }
    }
    return head;
}

}  // namespace

int main() {
    sofa::Content content{small_head()};
    sofa::write("plain", content);
    content.without = "Data.Delay";
    content.title = std::string(300, 'x') + "\n*/";
    sofa::write("no_delay", content);
    content.without = "Data.IR";
    sofa::write("no_responses", content);
    content = {small_head()};
    content.compressed = true;
    sofa::write("compressed", content);
}
