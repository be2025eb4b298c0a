#include "tools/zoq/tuning/prediction.h"

#include "tools/zoq/tuning/config_text.h"
#include "tools/zoq/tuning/setting_docs.h"

namespace zoq {

namespace {

using Kind = android::Setting::Kind;

constexpr char kOn[] = "STEREOWIDEN_Enable=true";
constexpr char kOff[] = "STEREOWIDEN_Enable=false";

Kind kind(int row) {
    return android::settings()[row].kind;
}

}  // namespace

Prediction::Prediction() {
    for (int row = 0; row < android::kSettings; ++row) {
        PredictedValue& value = values_[static_cast<size_t>(row)];
        const SettingDoc& doc = setting_doc(row);
        if (integral(row)) {
            value.integer = doc.resetAtStart ? 0 : static_cast<int32_t>(doc.initial);
        } else {
            value.number = doc.initial;
        }
        if (doc.chain && doc.chain->initial) {
            value.field = 0.0f;
        }
    }
}

bool Prediction::integral(int row) const {
    return kind(row) != Kind::kNumber;
}

void Prediction::initialise() {
    for (int row = 0; row < android::kSettings; ++row) {
        PredictedValue& value = values_[static_cast<size_t>(row)];
        const SettingDoc& doc = setting_doc(row);
        if (doc.validity && !doc.validity->holds(value.number)) {
            value.number = doc.fallback;
        }
        if (doc.resetAtStart) {
            value.integer = static_cast<int32_t>(doc.initial);
        }
        if (value.field) {
            value.field = doc.chain->initial;
        }
    }
}

void Prediction::apply(int row, const std::string& text) {
    PredictedValue& value = values_[static_cast<size_t>(row)];
    switch (kind(row)) {
        case Kind::kSwitch:
            value.integer = text == kOn ? 1 : text == kOff ? 0 : value.integer;
            break;
        case Kind::kDevice:
        case Kind::kVolume:
            value.integer = read_integer(text).value;
            break;
        case Kind::kNumber:
            value.number = static_cast<float>(read_number(text).value);
            if (value.field) {
                value.field = android::settings()[row].derive(value.number);
            }
            break;
    }
}

std::optional<float> Prediction::chain_value(int row, bool loud) const {
    const SettingDoc& doc = setting_doc(row);
    const PredictedValue& value = (*this)[row];
    if (!doc.chain || value.field) {
        return value.field;
    }
    const double slope = loud ? kLoudCompressionSlope : doc.chain->slope;
    return slope == 1.0 ? value.number : value.number * static_cast<float>(100.0 * slope) / 100.0f;
}

std::string Prediction::stored_text(int row) const {
    const PredictedValue& value = (*this)[row];
    if (kind(row) == Kind::kSwitch) {
        return value.integer == 1 ? "on" : "off";
    }
    return integral(row) ? std::to_string(value.integer) : number_text(value.number);
}

}  // namespace zoq
