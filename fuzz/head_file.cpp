// Measured heads in SOFA files. The library that reads them is not ours and not instrumented; what it lets through must
// not break what comes behind it.
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <string>

#include "fuzz/require.h"
#include "tables/head_file.h"

// What that library leaks on damaged files is its own.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libmysofa\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const int file = memfd_create("head", MFD_CLOEXEC);
    fuzz::require(file >= 0 && write(file, data, size) == static_cast<ssize_t>(size), "a file in memory");
    try {
        const zoq::tables::Head head = zoq::tables::load_head("/proc/self/fd/" + std::to_string(file));
        fuzz::require(head.directions.size() == head.responses.size(), "directions without responses");
        for (const auto& ears : head.responses) {
            fuzz::require(ears[0].size() == ears[1].size(), "ears of two lengths");
        }
    } catch (const zoq::tables::HeadError& error) {
        fuzz::require(error.what()[0] != '\0', "a refusal without a word");
    }
    close(file);
    return 0;
}
