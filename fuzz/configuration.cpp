// Configuration text in the engine: nothing behind a NUL byte or the limit counts, one separator is as good as
// another, a file reads as its text does.
#include <sys/mman.h>
#include <unistd.h>
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/require.h"
#include "host/configuration.h"
#include "host/settings.h"
#include "zoq2processing.h"

namespace {

using Values = std::vector<uint32_t>;  // bits

Values values() {
    Values all = {static_cast<uint32_t>(android::b_parameterMEM.stereoWidenEnable),
                  static_cast<uint32_t>(android::b_parameterMEM.volumeIndexSwitch),
                  static_cast<uint32_t>(android::gCurOutputDevice)};
    for (int row = 0; row < android::kSettings; ++row) {
        const android::Setting& setting = android::settings()[row];
        for (const float* value : {setting.stored, setting.derived}) {
            all.push_back(value != nullptr ? std::bit_cast<uint32_t>(*value) : 0);
        }
    }
    return all;
}

void forget() {
    for (int row = 0; row < android::kSettings; ++row) {
        const android::Setting& setting = android::settings()[row];
        if (setting.stored != nullptr) {
            android::apply_setting(setting, "1");
        }
    }
    android::b_parameterMEM.volumeIndexSwitch = 15;
}

// From a copy without a byte to spare, so that reading past the end is seen.
Values applied(std::string_view text) {
    forget();
    const std::unique_ptr<char[]> copy(new char[text.size()]);
    std::memcpy(copy.get(), text.data(), text.size());
    android::apply_configuration_text(copy.get(), text.size());
    return values();
}

Values applied_as_file(std::string_view text) {
    forget();
    const int file = memfd_create("zoq", 0);
    require(file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()),
            "there is a file to read");
    require(android::apply_configuration_file(("/proc/self/fd/" + std::to_string(file)).c_str()),
            "the file is read");
    close(file);
    return values();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    // Rarely reached by chance: a text across the limit, its first bytes far in front of the others.
    if (size > 2 && data[0] == 0xFF) {
        text.insert(1 + data[1] % (size - 1), android::kConfigurationMaxBytes - data[2] * size / 256, ' ');
    }
    const Values whole = applied(text);
    std::string read = text.substr(0, android::kConfigurationMaxBytes);
    read.resize(std::min(read.find('\0'), read.size()));
    require(applied(read) == whole, "what lies behind the end does not count");
    require(applied_as_file(text) == whole, "a file reads as its text does");
    for (char& c : read) {
        c = std::strchr(android::kConfigurationSeparators, c) != nullptr ? ' ' : c;
    }
    require(applied(read) == whole, "separators are alike");
    return 0;
}
