// Parameter strings through the entry points and the store of pairs: a second reading of the pairs agrees, and an
// answer sets what it tells.
#include <cmath>
#include <cstdint>
#include <map>
#include <string>

#include "audio_parameter.h"
#include "fuzz/require.h"
#include "host/settings.h"
#include "zoq2processing.h"

namespace {

using android::AudioParameter;
using android::String8;

std::map<std::string, std::string> pairs_of(const std::string& text) {
    std::map<std::string, std::string> pairs;
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find(';', start), text.size());
        const std::string piece = text.substr(start, end - start);
        if (!piece.empty()) {
            const size_t equals = std::min(piece.find('='), piece.size());
            pairs[piece.substr(0, equals)] = piece.substr(std::min(equals + 1, piece.size()));
        }
        start = end + 1;
    }
    return pairs;
}

void check_pairs(const std::string& text) {
    const AudioParameter store{String8(text.c_str())};
    std::string joined;
    size_t i = 0;
    for (const auto& [key, value] : pairs_of(text)) {
        String8 k, v;
        require(store.getAt(i++, k, v) == android::NO_ERROR && k.string() == key && v.string() == value,
                "the store holds this pair here");
        int integer = 0;
        float number = 0.0f;
        store.getInt(k, integer);
        store.getFloat(k, number);
        joined.append(joined.empty() && i == 1 ? "" : ";").append(key).append("=").append(value);
    }
    String8 k, v;
    require(store.getAt(i, k, v) != android::NO_ERROR, "the store holds no more pairs");
    require(store.toString().string() == joined, "the store's text joins its pairs");
}

std::string all_keys() {
    std::string keys;
    for (int row = 0; row < android::kSettings; ++row) {
        const char* key = android::settings()[row].stringKey;
        keys += key != nullptr ? std::string(key) + ";" : "";
    }
    return keys;
}

// Answers have six decimals and at most 31 characters: from 1e23 on their digits are cut.
bool answers_are_whole() {
    for (int row = 0; row < android::kSettings; ++row) {
        const android::Setting& setting = android::settings()[row];
        if (setting.kind == android::Setting::Kind::kNumber && std::fabs(*setting.stored) > 1e22f) {
            return false;
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string kKeys = all_keys();
    std::string text(reinterpret_cast<const char*>(data), size);
    text.resize(std::min(text.find('\0'), text.size()));
    check_pairs(text);
    ZOQ_PARAMS_SET(String8(text.c_str()));
    ZOQ_PARAMS_GET(String8(text.c_str()));
    const String8 answer = ZOQ_PARAMS_GET(String8(kKeys.c_str()));
    if (answers_are_whole()) {
        ZOQ_PARAMS_SET(answer);
        require(ZOQ_PARAMS_GET(String8(kKeys.c_str())).string() == std::string(answer.string()),
                "an answer sets what it tells");
    }
    return 0;
}
