#include "audio_parameter.h"

#include <android/log.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/locale_free.h"

namespace android {

namespace {

// Tokens are stored in the order of their keys, so that a text of very many keys takes no time that grows with their
// square; equal keys in the order in which they stand, so that the last one wins.
struct Token {
    const char* key;
    const char* value;  // null without "="

    bool operator<(const Token& other) const {
        const int order = std::strcmp(key, other.key);
        return order != 0 ? order < 0 : key < other.key;
    }
};

// At most; empty tokens count.
size_t token_count(const char* text) {
    size_t count = 1;
    for (; *text != '\0'; ++text) {
        count += *text == ';' ? 1 : 0;
    }
    return count;
}

// Cuts the text up in place; returns the end of the tokens.
Token* split(char* text, Token* tokens) {
    char* rest = nullptr;
    for (char* token = strtok_r(text, ";", &rest); token != nullptr; token = strtok_r(nullptr, ";", &rest)) {
        char* value = std::strchr(token, '=');
        if (value != nullptr) {
            *value++ = '\0';
        }
        *tokens++ = {token, value};
    }
    return tokens;
}

}  // namespace

const char* AudioParameter::keyRouting = "routing";
const char* AudioParameter::keySamplingRate = "sampling_rate";
const char* AudioParameter::keyFormat = "format";
const char* AudioParameter::keyChannels = "channels";
const char* AudioParameter::keyFrameCount = "frame_count";
const char* AudioParameter::keyInputSource = "input_source";
const char* AudioParameter::keyScreenState = "screen_state";
const char* AudioParameter::keyOutputDevice = "output_device";
const char* AudioParameter::keyFm = "fm";
const char* AudioParameter::keyFmSpeaker = "fm_speaker";

bool AudioParameter::Key::operator<(const Key& other) const {
    return std::strcmp(string(), other.string()) < 0;
}

AudioParameter::~AudioParameter() = default;

AudioParameter::AudioParameter() = default;

AudioParameter::AudioParameter(const String8& text) : keyValuePairs(text) {
    char* copy = strdup(text.string());
    const auto tokens = static_cast<Token*>(std::malloc(token_count(text.string()) * sizeof(Token)));
    if (copy != nullptr && tokens != nullptr) {
        Token* end = split(copy, tokens);
        std::sort(tokens, end);
        for (const Token* token = tokens; token != end; ++token) {
            parameters.add(Pair{Key(token->key), String8(token->value)});
        }
    }
    std::free(tokens);
    std::free(copy);
}

String8 AudioParameter::toString() const {
    size_t length = 1;
    for (size_t i = 0; i < parameters.size(); ++i) {
        length += parameters.itemAt(i).key.length() + parameters.itemAt(i).value.length() + 2;
    }
    char* text = static_cast<char*>(std::malloc(length));
    if (text == nullptr) {
        return String8();
    }
    char* end = text;
    for (size_t i = 0; i < parameters.size(); ++i) {
        end = stpcpy(end, i > 0 ? ";" : "");
        end = stpcpy(end, parameters.itemAt(i).key.string());
        end = stpcpy(end, "=");
        end = stpcpy(end, parameters.itemAt(i).value.string());
    }
    *end = '\0';
    const String8 result(text);
    std::free(text);
    return result;
}

status_t AudioParameter::add(const String8& key, const String8& value) {
    const bool existed = has(key);
    parameters.add(Pair{Key(key), value});
    return existed ? ALREADY_EXISTS : NO_ERROR;
}

status_t AudioParameter::addInt(const String8& key, int value) {
    char text[12];
    return std::snprintf(text, sizeof text, "%d", value) < 1 ? BAD_VALUE : add(key, String8(text));
}

status_t AudioParameter::addInt64(const String8& key, long long value) {
    char text[24];
    return std::snprintf(text, sizeof text, "%lld", value) < 1 ? BAD_VALUE : add(key, String8(text));
}

status_t AudioParameter::addFloat(const String8& key, float value) {
    char text[23];
    return format_float(text, sizeof text, value, 10) < 1 ? BAD_VALUE : add(key, String8(text));
}

status_t AudioParameter::remove(const String8& key) {
    if (!has(key)) {
        return BAD_VALUE;
    }
    parameters.removeItemsAt(static_cast<size_t>(parameters.indexOf(Pair{Key(key), String8()})));
    return NO_ERROR;
}

status_t AudioParameter::get(const String8& key, String8& value) const {
    if (!has(key)) {
        return BAD_VALUE;
    }
    value = value_of(key);
    return NO_ERROR;
}

status_t AudioParameter::getInt(const String8& key, int& value) const {
    value = 0;
    if (!has(key)) {
        return BAD_VALUE;
    }
    bool parsed = false;
    value = parse_int(value_of(key).string(), &parsed);
    return parsed ? NO_ERROR : INVALID_OPERATION;
}

status_t AudioParameter::getFloat(const String8& key, float& value) const {
    value = 0.0f;
    if (!has(key)) {
        return BAD_VALUE;
    }
    bool parsed = false;
    value = parse_float(value_of(key).string(), &parsed);
    return parsed ? NO_ERROR : INVALID_OPERATION;
}

status_t AudioParameter::getAt(size_t index, String8& key, String8& value) const {
    if (index >= parameters.size()) {
        return BAD_VALUE;
    }
    key = parameters.itemAt(index).key;
    value = parameters.itemAt(index).value;
    return NO_ERROR;
}

bool AudioParameter::has(const String8& key) const {
    return parameters.indexOf(Pair{Key(key), String8()}) >= 0;
}

const String8& AudioParameter::value_of(const String8& key) const {
    const ssize_t i = parameters.indexOf(Pair{Key(key), String8()});
    if (i < 0) {
        __android_log_assert("i<0", "AudioParameter", "%s: key not found", __PRETTY_FUNCTION__);
    }
    return parameters.itemAt(static_cast<size_t>(i)).value;
}

}  // namespace android
