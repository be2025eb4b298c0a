// Parameter strings: set and asked for as they come, then heard.
#include <cstring>
#include <string>

#include "audio_parameter.h"
#include "fuzz/engine.h"

using namespace android;

namespace {

// A store keeps what it prints: reading its own text back changes nothing more.
void check_store(const String8& text) {
    const AudioParameter first(text);
    const String8 once = first.toString();
    const String8 twice = AudioParameter(once).toString();
    fuzz::require(std::strcmp(once.string(), twice.string()) == 0,
                  "a store that reads its own text otherwise");
    String8 key, value, found;
    for (size_t i = 0; first.getAt(i, key, value) == NO_ERROR; ++i) {
        fuzz::require(first.get(key, found) == NO_ERROR && std::strcmp(found.string(), value.string()) == 0,
                      "a pair that its key does not find");
        int integer = 0;
        float number = 0.0f;
        first.getInt(key, integer);
        first.getFloat(key, number);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const String8 text(bytes.c_str());
    check_store(text);
    fuzz::start();
    ZOQ_PARAMS_SET(text);
    ZOQ_PARAMS_SET(String8("HIFIPARA=STEREOWIDEN_Enable=true"));
    const String8 answer = ZOQ_PARAMS_GET(text);
    ZOQ_PARAMS_SET(answer);
    fuzz::listen();
    return 0;
}
