// SOFA files: refused with a message, or read as a head whose every value can be worked with.
#include <sys/mman.h>
#include <unistd.h>
#include <cmath>
#include <cstdint>
#include <string>

#include "fuzz/require.h"
#include "tables/head_file.h"

namespace {

using namespace zoq::tables;

void check_head(const Head& head) {
    const size_t length = head.responses.front()[kLeftEar].size();
    for (const auto& ears : head.responses) {
        require(ears[kLeftEar].size() == length && ears[kRightEar].size() == length,
                "responses are of one length");
    }
    require(nearest(head, {90.0, 0.0}) < head.directions.size(), "some direction is nearest");
    const std::complex<double> response = response_at(head, 0, kLeftEar, 1000.0);
    require(std::isfinite(std::abs(response)), "responses are finite");
    for (const std::string& credit : head.credits) {
        require(credit.find_first_of("\n\r\\") == std::string::npos, "a credit is one line of a comment");
    }
}

}  // namespace

// libmysofa loses memory over files that it refuses.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libmysofa\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const int file = memfd_create("head", 0);
    require(ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == static_cast<ssize_t>(size),
            "there is a file to read");
    try {
        check_head(load_head("/proc/self/fd/" + std::to_string(file), 1));
    } catch (const HeadError&) {
        return 0;
    }
    return 0;
}
