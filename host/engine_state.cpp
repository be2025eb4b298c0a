#include "host/engine_state.h"

#include <algorithm>

#include "dsp/shared_value.h"

namespace android {

parameterDEN b_parameterDEN;
parameterTWS b_parameterTWS;
parameterEQ b_parameterEQ;
parameterDRC b_parameterDRC;
parameterVB b_parameterVB;
parameterX2B b_parameterX2B;
parameterGEQ b_parameterGEQ;
parameterMEM b_parameterMEM;

pthread_mutex_t glock_ZOQ;
const char* zoq_switch = "HIFIPARA";
int32_t gCurOutputDevice = AUDIO_DEVICE_OUT_SPEAKER;

namespace {

// Initialises the lock at load and destroys it at unload.
struct LockLife {
    LockLife() { pthread_mutex_init(&glock_ZOQ, nullptr); }
    ~LockLife() { pthread_mutex_destroy(&glock_ZOQ); }
    LockLife(const LockLife&) = delete;
    LockLife& operator=(const LockLife&) = delete;
};
const LockLife lockLife;

void validate_flag(int32_t& flag) {
    if (static_cast<uint32_t>(load_shared(flag)) > 1) {
        store_shared(flag, 0);
    }
}

void validate_range(float& value, float lo, float hi, float fallback) {
    if (parameter_out_of_range(load_shared(value), lo, hi) != 0) {
        store_shared(value, fallback);
    }
}

void validate_range(int32_t& value, float lo, float hi, int32_t fallback) {
    if (parameter_out_of_range(static_cast<float>(value), lo, hi) != 0) {
        value = fallback;
    }
}

}  // namespace

int parameter_out_of_range(float value, float lo, float hi) {
    return value < lo || value > hi ? 1 : 0;
}

void validate_state() {
    parameterMEM& mem = b_parameterMEM;
    validate_flag(mem.stereoWidenEnable);
    validate_flag(mem.headphoneMode);
    validate_range(mem.compressionGain, 0.0f, 100.0f, 70.0f);
    validate_range(mem.vbBoostlin, 0.0f, 100.0f, 25.0f);
    validate_range(mem.eqTrebleBoost, 0.0f, 100.0f, 15.0f);
    validate_range(mem.dsStereoWidth, 0.0f, 100.0f, 80.0f);
    validate_range(mem.denCentSpeechGain, 0.0f, 100.0f, 100.0f);
    validate_range(mem.sampleRate, 7999.9f, 48000.1f, 48000);
    validate_range(mem.settleCountdown, -0.1f, 32768.1f, 0);
}

void reset_rings(int32_t outFill) {
    parameterMEM& mem = b_parameterMEM;
    std::fill_n(mem.inRing, kRingValues, int16_t{0});
    mem.inFill = 0;
    std::fill_n(mem.outRing, kRingValues, int16_t{0});
    mem.outFill = outFill;
    mem.mixRamp = 0;
}

}  // namespace android
