#include "tools/soak/recovery.h"

#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <cstring>

#include "host/configuration.h"
#include "host/engine_state.h"
#include "host/settings.h"

namespace soak {

using namespace android;

namespace {

constexpr int kHealed = 2 * 48000;        // sample frames
constexpr double kMostDifference = 1e-4;  // of the power: -40 dB

// Beyond its range, on a route that uses it; a compression of 117 % at a low volume is what 100 % are at a high one.
bool is_hostile(const Setting& setting, bool headphones) {
    if (setting.kind != Setting::Kind::kNumber) {
        return false;
    }
    const bool both = setting.stored == &b_parameterMEM.denCentSpeechGain;
    const bool used = both || (setting.stringKey[0] == 'H') == headphones;
    const bool band = std::strstr(setting.stringKey, "hzgain") != nullptr;
    return used &&
           !(*setting.stored >= (band ? -200.0f : -100.0f) && *setting.stored <= (band ? 24.0f : 117.0f));
}

}  // namespace

void Recovery::begin(const Phase& phase) {
    const bool headphones = (gCurOutputDevice & kHeadphoneDevices) != 0;
    const bool hostile =
        std::any_of(settings(), settings() + kSettings,
                    [headphones](const Setting& setting) { return is_hostile(setting, headphones); });
    before_ = hostile && phase.recovers ? std::make_unique<parameterMEM>(b_parameterMEM) : nullptr;
    healed_ = size_t{kHealed} * static_cast<size_t>(phase.stream.channels);
    heard_.clear();
}

void Recovery::hear(const GuardedBlock& block) {
    heard_.insert(heard_.end(), block.data(), block.data() + block.size());
}

bool Recovery::sounds_like(const Recovery& other) const {
    double power = 0.0, error = 0.0;
    for (size_t i = healed_; i < heard_.size() && heard_.size() == other.heard_.size(); ++i) {
        const double expected = other.heard_[i], difference = heard_[i] - expected;
        power += expected * expected;
        error += difference * difference;
    }
    return power > 0.0 && error <= kMostDifference * power;
}

std::string Recovery::fault(const std::function<void(Recovery& again)>& play) const {
    const pid_t child = fork();
    if (child == 0) {
        b_parameterMEM = *before_;
        apply_defaults();
        Recovery again;
        play(again);
        _exit(sounds_like(again) ? 0 : 1);
    }
    int status = -1;
    const bool ended = child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status);
    return !ended                     ? "the phase could not be played again"
           : WEXITSTATUS(status) != 0 ? "two seconds behind hostile settings it sounds otherwise than afresh"
                                      : "";
}

}  // namespace soak
