// Configuration texts, applied as the initialisation applies its file, then heard, then applied once more.
#include "fuzz/engine.h"

using namespace android;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::start();
    const std::vector<char> text(data, data + size);  // without a NUL behind it
    apply_configuration_text(text.data(), text.size());
    ZOQ_PARAMS_SET(String8("HIFIPARA=STEREOWIDEN_Enable=true"));
    fuzz::listen();
    apply_configuration_text(text.data(), text.size());
    ZOQ_OUTPROC_PLAY_INIT();
    fuzz::listen();
    return 0;
}
