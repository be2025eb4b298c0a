// What the engine's settings hold after texts and initialisations, without running the engine.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "host/settings.h"

namespace zoq {

struct PredictedValue {
    float number = 0.0f;         // stored, of a setting with a number
    int32_t integer = 0;         // stored, of a switch, mask or index
    std::optional<float> field;  // the module record's field, where the setting derives one
};

class Prediction {
  public:
    Prediction();  // as the library is loaded

    // Validation and defaults: what an initialisation does ahead of reading the file.
    void initialise();

    // One value under a known key.
    void apply(int row, const std::string& value);

    const PredictedValue& operator[](int row) const { return values_[static_cast<size_t>(row)]; }
    bool integral(int row) const;

    // What the chain computes with: the record's field, or what is formed of the stored value before every
    // frame; loud: above the volume threshold. None for settings the chain doesn't read.
    std::optional<float> chain_value(int row, bool loud = false) const;

    // The stored value as text: "12.5", "15", "on".
    std::string stored_text(int row) const;

  private:
    std::array<PredictedValue, android::kSettings> values_;
};

}  // namespace zoq
