// The checker of configuration texts against the engine itself, and its repair.
#include <string>

#include "fuzz/engine.h"
#include "tests/tools/settings_probe.h"
#include "tools/zoq/tuning/config_check.h"
#include "tools/zoq/tuning/config_fix.h"
#include "tools/zoq/tuning/reports.h"

using namespace zoq;

namespace {

void start_over() {
    android::b_parameterMEM = {};
    android::gCurOutputDevice = AUDIO_DEVICE_OUT_SPEAKER;
}

void check_as_file(const std::string& text) {
    const CheckResult result = check_file(text);
    start_over();
    start_engine(text);
    fuzz::require(bool(engine_holds(result.now)), "the prediction of a file");
    start_engine(text);
    fuzz::require(bool(engine_holds(result.afterNextStart)), "the prediction of the next start");
    const std::string fixed = settings_text(meant_by_file(text).settings, Dialect::kFile);
    fuzz::require(check_file(fixed).exit_code() == 0, "a repaired file with something to warn of");
    fuzz::require(settings_text(meant_by_file(fixed).settings, Dialect::kFile) == fixed,
                  "a repair of a repair");
}

void check_as_string(const std::string& text) {
    const CheckResult result = check_parameter_string(text);
    start_over();
    start_engine("");
    ZOQ_PARAMS_SET(android::String8(text.c_str()));
    fuzz::require(bool(engine_holds(result.now)), "the prediction of a parameter string");
    const std::string fixed = settings_text(meant_by_parameter_string(text).settings, Dialect::kString);
    fuzz::require(check_parameter_string(fixed).exit_code() == 0,
                  "a repaired string with something to warn of");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    check_as_file(text);
    check_as_string(text.substr(0, text.find('\0')));
    return 0;
}
