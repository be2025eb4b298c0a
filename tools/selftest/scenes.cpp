#include "tools/selftest/scenes.h"

#include "zoq2processing.h"

namespace selftest {

namespace {

constexpr int kMaxBlockFrames = 1024;
constexpr int kSampleRate = 48000;

// White, from the position alone.
int32_t noise(uint32_t position, int32_t peak) {
    uint32_t x = position * 2654435761u + 0x9E3779B9u;
    x ^= x >> 16;
    x *= 0x85EBCA6Bu;
    x ^= x >> 13;
    x *= 0xC2B2AE35u;
    x ^= x >> 16;
    return static_cast<int32_t>(x >> 8) / (0x1000000 / (2 * peak)) - peak;
}

// A triangle of a whole number of Hz, from -peak to peak.
int32_t triangle(int32_t sampleFrame, int32_t hz, int32_t peak) {
    const auto phase = static_cast<int32_t>(int64_t{sampleFrame} * hz % kSampleRate);
    const int32_t rising = phase < kSampleRate / 2 ? phase : kSampleRate - phase;
    return static_cast<int32_t>(int64_t{rising} * 4 * peak / kSampleRate) - peak;
}

// A chord that beats between the channels, a kick every half second and a quiet hiss.
void music(int i, int16_t* pair) {
    const int32_t beat = i % 24000;
    const int32_t kick = beat < 6000 ? triangle(beat, 55, 9000) * (6000 - beat) / 6000 : 0;
    for (int c = 0; c < 2; ++c) {
        const int32_t chord =
            triangle(i, 220, 2500) + triangle(i, 277 + c, 2500) + triangle(i, 3301 + 7 * c, 1200);
        pair[c] = static_cast<int16_t>(chord + kick + noise(static_cast<uint32_t>(2 * i + c), 300));
    }
}

// Syllables of noise in the middle, eight a second, over a steady tone at the sides.
void speech(int i, int16_t* pair) {
    const int32_t inSyllable = i % 6000;
    const int32_t envelope = inSyllable < 1500 ? inSyllable : inSyllable < 3000 ? 3000 - inSyllable : 0;
    const int32_t voice = noise(static_cast<uint32_t>(i / 3), 12000) * envelope / 1500;
    const int32_t side = triangle(i, 180, 800);
    pair[0] = static_cast<int16_t>(voice + side);
    pair[1] = static_cast<int16_t>(voice - side);
}

void impulses(int i, int16_t* pair) {
    pair[0] = i % 4801 == 7 ? int16_t{32767} : int16_t{0};
    pair[1] = i % 7001 == 99 ? int16_t{-32768} : int16_t{0};
}

void full_scale(int i, int16_t* pair) {
    pair[0] = i / 50 % 2 == 0 ? int16_t{32767} : int16_t{-32768};
    pair[1] = i / 37 % 2 == 0 ? int16_t{32767} : int16_t{-32768};
}

// Music, then silence while everything decays.
void silence_after_music(int i, int16_t* pair) {
    pair[0] = pair[1] = 0;
    if (i < 24000) {
        music(i, pair);
    }
}

constexpr char kNeutral[] =
    "HIFIPARA=STEREOWIDEN_Enable=true;CompressionGain=0;Headphone_CompressionGain=0;VB_boostlin=0;"
    "EQ_trebleBoost=0;DS_stereoWidth=0;HP_SurroundWidth=0;DEN_centspeechgain=0;EQ_62hzgain=0;EQ_125hzgain=0;"
    "EQ_250hzgain=0;EQ_500hzgain=0;EQ_1khzgain=0;EQ_2khzgain=0;EQ_4khzgain=0;EQ_8khzgain=0;EQ_16khzgain=0;"
    "Headphone_EQ_62hzgain=0;Headphone_EQ_125hzgain=0;Headphone_EQ_250hzgain=0;Headphone_EQ_500hzgain=0;"
    "Headphone_EQ_1khzgain=0;Headphone_EQ_2khzgain=0;Headphone_EQ_4khzgain=0;Headphone_EQ_8khzgain=0;"
    "Headphone_EQ_16khzgain=0";
constexpr char kTypical[] =
    "HIFIPARA=STEREOWIDEN_Enable=true;CompressionGain=70;Headphone_CompressionGain=60;VB_boostlin=50;"
    "EQ_trebleBoost=15;DS_stereoWidth=80;HP_SurroundWidth=90;DEN_centspeechgain=50;EQ_62hzgain=3;EQ_"
    "125hzgain=2;"
    "EQ_500hzgain=-1.5;EQ_4khzgain=1;EQ_16khzgain=2.5;Headphone_EQ_62hzgain=2;Headphone_EQ_1khzgain=-2;"
    "Headphone_EQ_8khzgain=3";
constexpr char kExtreme[] =
    "HIFIPARA=STEREOWIDEN_Enable=true;CompressionGain=100;Headphone_CompressionGain=100;VB_boostlin=100;"
    "EQ_trebleBoost=100;DS_stereoWidth=100;HP_SurroundWidth=100;DEN_centspeechgain=100;EQ_62hzgain=12;"
    "EQ_125hzgain=-12;EQ_250hzgain=12;EQ_500hzgain=-12;EQ_1khzgain=12;EQ_2khzgain=-12;EQ_4khzgain=12;"
    "EQ_8khzgain=-12;EQ_16khzgain=12;Headphone_EQ_62hzgain=-12;Headphone_EQ_125hzgain=12;"
    "Headphone_EQ_250hzgain=-12;Headphone_EQ_500hzgain=12;Headphone_EQ_1khzgain=-12;Headphone_EQ_2khzgain=12;"
    "Headphone_EQ_4khzgain=-12;Headphone_EQ_8khzgain=12;Headphone_EQ_16khzgain=-12";
constexpr char kOn[] = "HIFIPARA=STEREOWIDEN_Enable=true";
constexpr char kOff[] = "HIFIPARA=STEREOWIDEN_Enable=false";
constexpr char kSpeaker[] = "output_device=2";
constexpr char kHeadphone[] = "output_device=8";

constexpr Change kSpeakerDefault[] = {
    {0, kNeutral}, {0, kOn}, {0, kSpeaker}, {0, "DS_stereoWidth=50;VB_boostlin=50"}, {0, nullptr}};
constexpr Change kSpeakerNeutral[] = {{0, kNeutral}, {0, kSpeaker}, {0, nullptr}};
constexpr Change kSpeakerTypical[] = {{0, kNeutral}, {0, kTypical}, {0, kSpeaker}, {0, nullptr}};
constexpr Change kSpeakerExtreme[] = {{0, kExtreme}, {0, kSpeaker}, {0, nullptr}};
constexpr Change kSpeakerVolumes[] = {
    {0, kTypical}, {0, "CompressionGain=100"}, {50, "", 20}, {100, "", 12}, {0, nullptr}};
constexpr Change kHeadphoneDefault[] = {
    {0, kNeutral}, {0, kOn}, {0, kHeadphone}, {0, "HP_SurroundWidth=70"}, {0, nullptr}};
constexpr Change kHeadphoneNeutral[] = {{0, kNeutral}, {0, kHeadphone}, {0, nullptr}};
constexpr Change kHeadphoneTypical[] = {{0, kNeutral}, {0, kTypical}, {0, kHeadphone}, {0, nullptr}};
constexpr Change kHeadphoneExtreme[] = {{0, kExtreme}, {0, kHeadphone}, {0, nullptr}};
constexpr Change kChangingSettings[] = {{0, kNeutral},   {0, kTypical},
                                        {0, kSpeaker},   {40, "DS_stereoWidth=30"},
                                        {55, kExtreme},  {70, kOff},
                                        {85, kOn},       {100, "EQ_1khzgain=0;VB_boostlin=0"},
                                        {115, kNeutral}, {130, kHeadphone},
                                        {160, kExtreme}, {175, "HP_SurroundWidth=10"},
                                        {190, kTypical}, {200, "HP_SurroundWidth=85;DEN_centspeechgain=0"},
                                        {0, nullptr}};

void feed(uint64_t& hash, const int16_t* samples, int count) {
    constexpr uint64_t kPrime = 0x100000001B3u;
    for (int i = 0; i < count; ++i) {
        const uint32_t bits = static_cast<uint16_t>(samples[i]);
        hash = (hash ^ (bits & 0xFFu)) * kPrime;
        hash = (hash ^ (bits >> 8)) * kPrime;
    }
}

// As after loading, whatever was played before and whatever the device's configuration file says.
void start_afresh() {
    android::b_parameterMEM = {};
    android::gCurOutputDevice = AUDIO_DEVICE_OUT_SPEAKER;
    ZOQ_OUTPROC_PLAY_INIT();
    android::b_parameterMEM.volumeIndexSwitch = 15;
}

}  // namespace

const Scene kScenes[] = {
    {"speaker music default", music, 512, 141, kSpeakerDefault, 0x7d1042f5b02dd522u},
    {"speaker music neutral", music, 512, 141, kSpeakerNeutral, 0x6d8ce850c06482e8u},
    {"speaker music typical", music, 512, 141, kSpeakerTypical, 0x62e9787a35b6dbcau},
    {"speaker music extreme", music, 512, 141, kSpeakerExtreme, 0x69541670211e0f5au},
    {"speaker speech typical", speech, 512, 141, kSpeakerTypical, 0xc66e29d58d79686eu},
    {"speaker speech extreme", speech, 512, 141, kSpeakerExtreme, 0xbd17eef07dbfa43du},
    {"speaker impulses default", impulses, 512, 141, kSpeakerDefault, 0xf914d0ee3cadaa4au},
    {"speaker impulses typical", impulses, 512, 141, kSpeakerTypical, 0x1e8d63b9487c829au},
    {"speaker full scale neutral", full_scale, 512, 141, kSpeakerNeutral, 0x055c4eb8d44ddf91u},
    {"speaker full scale extreme", full_scale, 512, 141, kSpeakerExtreme, 0x3cc157277ede2dafu},
    {"speaker silence after music extreme", silence_after_music, 512, 141, kSpeakerExtreme,
     0x0a756a4f13500d4eu},
    {"speaker music, volumes changing", music, 512, 141, kSpeakerVolumes, 0xe8b47df2d702fa1du},
    {"headphone music default", music, 512, 141, kHeadphoneDefault, 0xb67ea59bb0f54b73u},
    {"headphone music neutral", music, 512, 141, kHeadphoneNeutral, 0x028c06d854c1984eu},
    {"headphone music typical", music, 512, 141, kHeadphoneTypical, 0xb48c47cc036f4201u},
    {"headphone music extreme", music, 512, 141, kHeadphoneExtreme, 0x74602c04e67a8e2cu},
    {"headphone speech typical", speech, 512, 141, kHeadphoneTypical, 0xe27265ccaeae31a4u},
    {"headphone speech extreme", speech, 512, 141, kHeadphoneExtreme, 0x85b8cee0449b913cu},
    {"headphone impulses default", impulses, 512, 141, kHeadphoneDefault, 0x366f8860c5c970dfu},
    {"headphone impulses typical", impulses, 512, 141, kHeadphoneTypical, 0x5879ca2bd07dfacfu},
    {"headphone full scale neutral", full_scale, 512, 141, kHeadphoneNeutral, 0x1e7748f5b4ac79ccu},
    {"headphone full scale extreme", full_scale, 512, 141, kHeadphoneExtreme, 0x0de7ea7ba6fa41c7u},
    {"headphone silence after music extreme", silence_after_music, 512, 141, kHeadphoneExtreme,
     0xf559f144b41ccc9fu},
    {"settings and routes changing", music, 512, 282, kChangingSettings, 0xd7c7ce86b43e6ba9u},
    {"speech, settings and routes changing", speech, 512, 282, kChangingSettings, 0x87b724bca7f028c2u},
    {"blocks of 10 ms", music, 480, 200, kSpeakerTypical, 0x5416cc45f8d383d2u},
    {"blocks that run the queue dry", music, 441, 200, kHeadphoneTypical, 0xdbf6c632196973acu},
};
const int kSceneCount = sizeof kScenes / sizeof kScenes[0];

uint64_t play(const Scene& scene) {
    static int16_t block[2 * kMaxBlockFrames];
    uint64_t hash = 0xCBF29CE484222325u;
    start_afresh();
    const Change* change = scene.changes;
    int sampleFrame = 0;
    for (int b = 0; b < scene.blocks; ++b) {
        for (; change->settings != nullptr && change->block <= b; ++change) {
            ZOQ_PARAMS_SET(android::String8(change->settings));
            if (change->volume > 0) {
                android::ZOQ_update_volume(change->volume, AUDIO_STREAM_MUSIC);
            }
        }
        for (int i = 0; i < scene.blockFrames; ++i) {
            scene.signal(sampleFrame++, block + 2 * i);
        }
        ZOQ_OUTPROC_PLAY_SAMPLES(block, scene.blockFrames * 4, kSampleRate, 2);
        feed(hash, block, 2 * scene.blockFrames);
    }
    return hash;
}

}  // namespace selftest
