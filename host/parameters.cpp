// The parameter-string entry points. Control threads.
#include "audio_parameter.h"
#include "host/engine_state.h"
#include "host/settings.h"

using android::AudioParameter;
using android::Setting;
using android::String8;

void ZOQ_PARAMS_SET(const String8& keyValuePairs) {
    // Taken apart ahead of the lock, for which the audio thread may wait.
    const AudioParameter pairs(keyValuePairs);
    String8 values[android::kSettings];
    bool given[android::kSettings] = {};
    for (int i = 0; i < android::kSettings; ++i) {
        const char* key = android::settings()[i].stringKey;
        given[i] = key != nullptr && pairs.get(String8(key), values[i]) == android::NO_ERROR;
    }
    pthread_mutex_lock(&android::glock_ZOQ);
    for (int i = 0; i < android::kSettings; ++i) {
        if (given[i]) {
            android::apply_setting(android::settings()[i], values[i].string());
        }
    }
    pthread_mutex_unlock(&android::glock_ZOQ);
}

String8 ZOQ_PARAMS_GET(const String8& keys) {
    const AudioParameter request(keys);
    AudioParameter reply;
    for (int i = 0; i < android::kSettings; ++i) {
        const Setting& setting = android::settings()[i];
        String8 ignored;
        if (setting.stringKey == nullptr || setting.kind == Setting::Kind::kDevice ||
            request.get(String8(setting.stringKey), ignored) != android::NO_ERROR) {
            continue;
        }
        char value[32] = {};
        android::format_setting(setting, value, sizeof value);
        reply.add(String8(setting.stringKey), String8(value));
    }
    return reply.toString();
}
