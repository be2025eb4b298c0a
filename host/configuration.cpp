#include "host/configuration.h"

#include <sys/stat.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "dsp/shared_value.h"
#include "host/engine_state.h"
#include "host/settings.h"

namespace android {

namespace {

constexpr float kVirtualBassCutoffHz = 80.0f;
constexpr int32_t kVolumeThreshold = 15;

// Cuts the next token out of the text, which it changes; null at the end.
char* next_token(char*& rest) {
    rest += std::strspn(rest, kConfigurationSeparators);
    if (*rest == '\0') {
        return nullptr;
    }
    char* token = rest;
    rest += std::strcspn(rest, kConfigurationSeparators);
    if (*rest != '\0') {
        *rest++ = '\0';
    }
    return token;
}

const Setting* find_setting(const char* fileKey) {
    const Setting* end = settings() + kSettings;
    const Setting* found = std::find_if(settings(), end, [fileKey](const Setting& setting) {
        return setting.fileKey != nullptr && std::strcmp(setting.fileKey, fileKey) == 0;
    });
    return found != end ? found : nullptr;
}

void apply_tokens(char* text) {
    char* rest = text;
    while (const char* token = next_token(rest)) {
        const Setting* setting = find_setting(token);
        const char* value = setting != nullptr ? next_token(rest) : nullptr;
        if (value != nullptr) {
            apply_setting(*setting, value);
        }
    }
}

// A directory would fail to read; a device or a pipe might never end.
bool is_special_file(const char* path) {
    struct stat status;
    return stat(path, &status) == 0 && !S_ISREG(status.st_mode);
}

}  // namespace

void apply_defaults() {
    stereoWidening_initialization(kVirtualBassCutoffHz, &b_parameterDEN, &b_parameterTWS, &b_parameterEQ,
                                  &b_parameterDRC, &b_parameterVB, &b_parameterX2B, &b_parameterGEQ);
    store_shared(b_parameterDEN.centerSpeechGain, 1.0f);
    b_parameterDEN.baseGain = 1.0f;
    b_parameterDEN.stereoOutput = 0.0f;
    store_shared(b_parameterTWS.stereoWidth, 0.5f);
    store_shared(b_parameterX2B.surroundWidth, 0.7f);
    store_shared(b_parameterVB.boostLin, 2.5f);
    store_shared(b_parameterEQ.trebleGain, 0.0f);
    std::fill_n(b_parameterGEQ.bandGainDb, kGeqBands, 0.0f);
    store_shared(b_parameterMEM.volumeIndex, kVolumeThreshold);
    store_shared(b_parameterMEM.volumeIndexSwitch, kVolumeThreshold);
    stereoWidening_frame_initialize();
}

void apply_configuration_text(const char* text, size_t length) {
    const size_t bytes = text != nullptr ? strnlen(text, std::min(length, kConfigurationMaxBytes)) : 0;
    char* copy = static_cast<char*>(std::malloc(bytes + 1));
    if (copy == nullptr) {
        return;
    }
    std::copy_n(text, bytes, copy);
    copy[bytes] = '\0';
    apply_tokens(copy);
    std::free(copy);
}

bool apply_configuration_file(const char* path) {
    if (is_special_file(path)) {
        return false;
    }
    FILE* file = std::fopen(path, "rb");
    if (file == nullptr) {
        return false;
    }
    char* text = static_cast<char*>(std::malloc(kConfigurationMaxBytes + 1));
    const bool room = text != nullptr;
    if (room) {
        text[std::fread(text, 1, kConfigurationMaxBytes, file)] = '\0';
        apply_tokens(text);
        std::free(text);
    }
    std::fclose(file);
    return room;
}

void widening_initilization() {
    apply_defaults();
    apply_configuration_file(kConfigurationPath);
}

}  // namespace android
