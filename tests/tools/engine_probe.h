// The engine's settings as they stand, compared with what the tools predict.
#pragma once

#include <bit>
#include <cstdint>
#include <string>

#include "host/configuration.h"
#include "host/engine_state.h"
#include "tools/zoq/tuning/prediction.h"

namespace zoq {

// An initialisation that reads a given text instead of the file.
inline void start_engine(const std::string& file) {
    android::validate_state();
    android::apply_defaults();
    android::apply_configuration_text(file.data(), file.size());
}

inline bool same_float(float a, float b) {
    return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b);
}

// The first row whose stored value or derived field differs in a bit, -1 for none.
inline int engine_difference(const Prediction& prediction) {
    for (int row = 0; row < android::kSettings; ++row) {
        const android::Setting& setting = android::settings()[row];
        bool same = true;
        switch (setting.kind) {
            case android::Setting::Kind::kSwitch:
                same = prediction[row].integer == android::b_parameterMEM.stereoWidenEnable;
                break;
            case android::Setting::Kind::kDevice:
                same = prediction[row].integer == android::gCurOutputDevice;
                break;
            case android::Setting::Kind::kVolume:
                same = prediction[row].integer == android::b_parameterMEM.volumeIndexSwitch;
                break;
            case android::Setting::Kind::kNumber:
                same = same_float(prediction[row].number, *setting.stored) &&
                       prediction[row].field.has_value() == (setting.derived != nullptr) &&
                       (setting.derived == nullptr || same_float(*prediction[row].field, *setting.derived));
                break;
        }
        if (!same) {
            return row;
        }
    }
    return -1;
}

}  // namespace zoq
