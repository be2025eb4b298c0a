#include "tools/zoq/tuning/setting_docs.h"

#include <array>
#include <charconv>

namespace zoq {

namespace {

constexpr Range kPercent{0.0f, 100.0f};
constexpr Range kBandDb{-24.0f, 24.0f};

constexpr SettingDoc percent(const char* key, float fallback, ChainValue chain, const char* meaning) {
    return {key, "%", kPercent, fallback, std::nullopt, 0.0f, false, chain, Effect::kNextFrame, meaning};
}

constexpr SettingDoc unchecked_percent(const char* key, ChainValue chain, const char* meaning) {
    return {key, "%", std::nullopt, 0.0f, kPercent, 0.0f, false, chain, Effect::kNextFrame, meaning};
}

constexpr SettingDoc band(const char* key, const char* meaning) {
    return {key,
            "dB",
            std::nullopt,
            0.0f,
            kBandDb,
            0.0f,
            false,
            ChainValue{"bandGainDb", 1.0, 0.0, {}, ""},
            Effect::kNextFrame,
            meaning};
}

constexpr std::array<SettingDoc, android::kSettings> kDocs = {{
    {"HIFIPARA", "", std::nullopt, 0.0f, std::nullopt, 0.0f, false, std::nullopt, Effect::kFade,
     "processing on (STEREOWIDEN_Enable=true) or off (STEREOWIDEN_Enable=false)"},
    {"output_device", "mask", std::nullopt, 0.0f, std::nullopt, 2.0f, false, std::nullopt, Effect::kNextBlock,
     "output-device bits, decimal: any of 4, 8, 128, 256 selects the headphone route"},
    percent("CompressionGain", 70.0f,
            {"compression gain in dB", 0.18, 0.0, {}, "0.21 x above the volume threshold"},
            "loudness of the loudspeaker: share of its full compression of 18 dB, or 21 dB when loud"),
    unchecked_percent("Headphone_CompressionGain", {"compression gain in dB", 0.2, 0.0, {}, ""},
                      "loudness on headphones: share of the full compression of 20 dB"),
    percent("VB_boostlin", 25.0f, {"boostLin", 0.05, 0.0, 2.5f, "0 gives -1, which switches it off"},
            "virtual bass on the loudspeaker"),
    percent("EQ_trebleBoost", 15.0f, {"trebleGain", 0.02, 0.0, 0.0f, ""}, "treble on the loudspeaker"),
    percent("DS_stereoWidth", 80.0f, {"stereoWidth", 0.01, 0.0, 0.5f, "0 folds both channels to mono"},
            "stereo width on the loudspeaker; above 50 panned sources are spread as well"),
    unchecked_percent(
        "HP_SurroundWidth", {"surroundWidth", 0.01, 0.0, 0.7f, ""},
        "surround width on headphones; below 20 the room fades out, above 80 it widens further"),
    percent("DEN_centspeechgain", 100.0f, {"centerSpeechGain", 0.02, 1.0, 1.0f, ""},
            "boost of voices in the centre, on both routes"),
    band("EQ_62hzgain", "loudspeaker equalizer, 62.5 Hz"),
    band("EQ_125hzgain", "loudspeaker equalizer, 125 Hz"),
    band("EQ_250hzgain", "loudspeaker equalizer, 250 Hz"),
    band("EQ_500hzgain", "loudspeaker equalizer, 500 Hz"),
    band("EQ_1khzgain", "loudspeaker equalizer, 1 kHz"),
    band("EQ_2khzgain", "loudspeaker equalizer, 2 kHz"),
    band("EQ_4khzgain", "loudspeaker equalizer, 4 kHz"),
    band("EQ_8khzgain", "loudspeaker equalizer, 8 kHz"),
    band("EQ_16khzgain", "loudspeaker equalizer, 16 kHz"),
    band("Headphone_EQ_62hzgain", "headphone equalizer, 62.5 Hz"),
    band("Headphone_EQ_125hzgain", "headphone equalizer, 125 Hz"),
    band("Headphone_EQ_250hzgain", "headphone equalizer, 250 Hz"),
    band("Headphone_EQ_500hzgain", "headphone equalizer, 500 Hz"),
    band("Headphone_EQ_1khzgain", "headphone equalizer, 1 kHz"),
    band("Headphone_EQ_2khzgain", "headphone equalizer, 2 kHz"),
    band("Headphone_EQ_4khzgain", "headphone equalizer, 4 kHz"),
    band("Headphone_EQ_8khzgain", "headphone equalizer, 8 kHz"),
    band("Headphone_EQ_16khzgain", "headphone equalizer, 16 kHz"),
    {"volume_index_switch", "", std::nullopt, 0.0f, std::nullopt, 15.0f, true, std::nullopt,
     Effect::kNextFrame,
     "volume index above which the loudspeaker's full compression is 21 dB instead of 18"},
}};

std::string shortest(double value) {
    char buffer[32];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

}  // namespace

const SettingDoc& setting_doc(int row) {
    return kDocs[static_cast<size_t>(row)];
}

const char* effect_name(Effect effect) {
    switch (effect) {
        case Effect::kFade:
            return "fade";
        case Effect::kNextBlock:
            return "block";
        case Effect::kNextFrame:
            break;
    }
    return "frame";
}

const char* effect_explanation(Effect effect) {
    switch (effect) {
        case Effect::kFade:
            return "at once, with a crossfade over 5120 sample frames (107 ms at 48 kHz)";
        case Effect::kNextBlock:
            return "at the next block; a change of route passes 6000 sample frames untouched, then fades in";
        case Effect::kNextFrame:
            break;
    }
    return "from the next frame of 512 sample frames on (10.7 ms at 48 kHz), without a crossfade";
}

std::string derivation(const SettingDoc& doc) {
    if (!doc.chain) {
        return "";
    }
    std::string text = std::string(doc.chain->field) + " = ";
    text += doc.chain->slope == 1.0 ? "x" : shortest(doc.chain->slope) + " x";
    return doc.chain->offset == 0.0 ? text : text + " + " + shortest(doc.chain->offset);
}

std::string number_text(float value) {
    char buffer[64];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

}  // namespace zoq
