#include "tools/soak/schedule.h"

#include <cstring>

#include "host/settings.h"

namespace soak {

namespace {

constexpr int kRate = 48000;
constexpr int64_t kRecovery =
    int64_t{4} * kRate;  // long enough to be compared after the two seconds of healing

constexpr const char* kHostileValues[] = {
    "nan",   "inf",  "-inf", "1e38", "-1e38", "1e20", "1e9",  "-1e9", "1e6",  "-1e4", "1000", "-1000", "500",
    "1e-42", "-0.0", "x",    "1e99", "-1e99", "300",  "-300", "200",  "-150", "101",  "48",   "25"};

bool is_band(const android::Setting& setting) {
    return setting.stringKey != nullptr && std::strstr(setting.stringKey, "hzgain") != nullptr;
}

std::string legal_value(const android::Setting& setting, Temper temper, Random& random) {
    if (setting.kind == android::Setting::Kind::kVolume) {
        return std::to_string(random.between(0, 30));
    }
    if (!is_band(setting)) {
        return std::to_string(random.between(0, 100));
    }
    const int most = temper == Temper::kModest ? 6 : 24;
    return random.chance(40) ? "0" : std::to_string(random.between(-most, most));
}

}  // namespace

Stream Schedule::any_stream() {
    constexpr int kUsual[] = {64,  128, 192, 240,  256,  300,  441,  480,
                              512, 882, 960, 1024, 1920, 2048, 4096, 18432};
    constexpr int kRates[] = {48000, 48000, 48000, 44100, 8000, 96000};
    Stream stream = {random_.chance(80) ? random_.pick(kUsual) : random_.between(1, 5000), 2,
                     random_.pick(kRates)};
    if (random_.chance(10)) {
        stream.channels = random_.between(1, 6);
        stream.sampleFrames = std::min(stream.sampleFrames, 36864 / stream.channels);
    }
    return stream;
}

// After hostile settings every key gets a modest value, so that nothing hostile is left.
void Schedule::choose_settings(Phase& phase) {
    const int share = phase.temper == Temper::kHostile ? 8 : phase.temper == Temper::kModest ? 100 : 50;
    for (int k = 0; k < android::kSettings; ++k) {
        const android::Setting& setting = android::settings()[k];
        const bool number = setting.kind == android::Setting::Kind::kNumber;
        if ((!number && setting.kind != android::Setting::Kind::kVolume) || !random_.chance(share)) {
            continue;
        }
        const std::string value = phase.temper == Temper::kHostile
                                      ? random_.pick(kHostileValues)
                                      : legal_value(setting, phase.temper, random_);
        if (setting.stringKey == nullptr || random_.chance(30)) {
            phase.text += std::string(setting.fileKey) + " " + value + "\n";
        } else {
            phase.strings.push_back(std::string(setting.stringKey) + "=" + value);
        }
    }
}

Phase Schedule::next() {
    constexpr int kDevices[] = {2, 2, 8, 4, 128, 256, 1, 0, -1, 0x18E};
    Phase phase{};
    phase.temper = recovering_          ? Temper::kModest
                   : random_.chance(35) ? Temper::kHostile
                   : random_.chance(50) ? Temper::kLegal
                                        : Temper::kModest;
    if (!recovering_) {
        stream_ = random_.chance(30) ? any_stream() : stream_;
        device_ = random_.chance(25) ? random_.pick(kDevices) : device_;
        phase.initialise = random_.chance(4);
        phase.badBlocks = random_.chance(5);
    }
    phase.recovers = recovering_;
    switch_ = recovering_ || random_.chance(85) ? "true" : "false";
    phase.stream = stream_;
    phase.volume = random_.between(0, 30);
    phase.signal = recovering_ ? Signal::kMusic
                               : static_cast<Signal>(random_.below(static_cast<uint32_t>(Signal::kCount)));
    phase.sampleFrames = recovering_                        ? kRecovery
                         : phase.signal == Signal::kSilence ? kRecovery
                                                            : random_.between(kRate / 20, 2 * kRate);
    choose_settings(phase);
    phase.strings.push_back("output_device=" + std::to_string(device_));
    phase.strings.push_back("HIFIPARA=STEREOWIDEN_Enable=" + switch_);
    recovering_ = phase.temper == Temper::kHostile;
    return phase;
}

}  // namespace soak
