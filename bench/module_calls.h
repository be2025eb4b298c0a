// One call of each module on one hop of music, with the factory contents and every part of it switched on.
#pragma once

#include <algorithm>
#include <vector>

#include "bench/signals.h"
#include "host/flush_to_zero.h"
#include "zoq2processing.h"

namespace bench {

inline constexpr int kMaterialHops = 94;  // one second

// Planar frames and hops cut from the same music, round and round.
class Material {
  public:
    Material() : left_(kMaterialHops * android::kHopSamples), right_(left_.size()) {
        const std::vector<int16_t> values = music(kMaterialHops * android::kHopSamples);
        for (size_t i = 0; i < left_.size(); ++i) {
            left_[i] = float(values[2 * i]) / 32768.0f;
            right_[i] = float(values[2 * i + 1]) / 32768.0f;
        }
    }

    // Left, right and their mean as a centre: the previous hop and the current one.
    void frame(float* planar) {
        using android::kFrameSamples;
        const size_t start = size_t(next()) * android::kHopSamples;
        for (size_t i = 0; i < kFrameSamples; ++i) {
            planar[i] = left_[start + i];
            planar[kFrameSamples + i] = right_[start + i];
            planar[2 * kFrameSamples + i] = 0.5f * (left_[start + i] + right_[start + i]);
        }
    }

    void hop(float* planar) {
        const size_t start = size_t(next()) * android::kHopSamples;
        std::copy_n(left_.data() + start, android::kHopSamples, planar);
        std::copy_n(right_.data() + start, android::kHopSamples, planar + android::kHopSamples);
    }

  private:
    int next() { return position_ = (position_ + 1) % (kMaterialHops - 1); }

    std::vector<float> left_, right_;
    int position_ = 0;
};

struct Rig {
    Rig() { initialize(); }

    // The records and the modules' state, which are one for everyone.
    void initialize() {
        using namespace android;
        stereoWidening_initialization(80.0f, &b_parameterDEN, &b_parameterTWS, &b_parameterEQ,
                                      &b_parameterDRC, &b_parameterVB, &b_parameterX2B, &b_parameterGEQ);
        initialize_dynamicRangeCompression_C(14.7f, &b_parameterDRC);
        std::fill_n(b_parameterGEQ.bandGainDb, kGeqBands, 3.0f);
        b_parameterX2B.surroundWidth = 0.7f;
        b_parameterTWS.widthGain = 0.8f;
        stereoWidening_frame_initialize();
    }
    android::FlushToZero scope;
    Material material;
    float in[3 * android::kFrameSamples];
    float out[2 * android::kHopSamples];
};

struct ModuleCall {
    const char* name;
    void (*run)(Rig&);
};

inline const ModuleCall kModuleCalls[] = {
    {"den",
     [](Rig& rig) {
         const android::parameterDEN& p = android::b_parameterDEN;
         rig.material.frame(rig.in);
         android::DialogueEnhancementWide(rig.in, p.smoothFactor, 2.0f, 1.0f, 2.0f, 0.0f, p.wideCurve[0],
                                          p.bandEnd, p.bandStart);
     }},
    {"tws",
     [](Rig& rig) {
         rig.material.frame(rig.in);
         android::TWSmobile_freq(rig.in, &android::b_parameterTWS, rig.out);
     }},
    {"x2b",
     [](Rig& rig) {
         rig.material.frame(rig.in);
         android::X2Binaural_v1(rig.in, 3.0f, &android::b_parameterX2B, rig.out);
     }},
    {"geq",
     [](Rig& rig) {
         const android::parameterGEQ& p = android::b_parameterGEQ;
         rig.material.hop(rig.out);
         android::graphicalEQ(rig.out, 2.0f, p.bandCount, p.bandGainDb, p.bandQ, p.bandWarp);
     }},
    {"vb",
     [](Rig& rig) {
         rig.material.hop(rig.out);
         android::virtualbassFunction_monoLC(rig.out, 2.0f, &android::b_parameterVB);
     }},
    {"eq",
     [](Rig& rig) {
         const android::parameterEQ& p = android::b_parameterEQ;
         rig.material.hop(rig.out);
         android::equalization_peak(rig.out, 2.0f, p.peakSectionCount, p.peakSos, p.trebleSectionCount,
                                    p.trebleSos, 0.3f, p.finalSos, p.finalPassCount);
     }},
    {"drc",
     [](Rig& rig) {
         const android::parameterDRC& p = android::b_parameterDRC;
         rig.material.hop(rig.out);
         android::dynamicRangeCompression_LC(rig.out, 2.0f, &p.compThreshold, &p.limThreshold,
                                             &p.expThreshold);
     }},
};

}  // namespace bench
