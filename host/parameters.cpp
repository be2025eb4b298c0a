// The parameter-string entry points. Control threads.
#include "audio_parameter.h"
#include "host/engine_state.h"
#include "host/settings.h"

using android::AudioParameter;
using android::Setting;
using android::String8;

void ZOQ_PARAMS_SET(const String8& keyValuePairs) {
    const AudioParameter pairs(keyValuePairs);
    pthread_mutex_lock(&android::glock_ZOQ);
    for (int i = 0; i < android::kSettings; ++i) {
        const Setting& setting = android::settings()[i];
        String8 value;
        if (setting.stringKey != nullptr &&
            pairs.get(String8(setting.stringKey), value) == android::NO_ERROR) {
            android::apply_setting(setting, value.string());
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
