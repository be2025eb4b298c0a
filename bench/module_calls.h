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
    Material() : channels_(3, std::vector<float>(kMaterialHops * android::kHopSamples)) {
        const std::vector<int16_t> values = music(kMaterialHops * android::kHopSamples);
        for (size_t i = 0; i < channels_[0].size(); ++i) {
            channels_[0][i] = float(values[2 * i]) / 32768.0f;
            channels_[1][i] = float(values[2 * i + 1]) / 32768.0f;
            channels_[2][i] = 0.5f * (channels_[0][i] + channels_[1][i]);
        }
    }

    // Left, right and their mean as a centre: the previous hop and the current one.
    void frame(float* planar) { copy(3, android::kFrameSamples, planar); }

    void hop(float* planar) { copy(2, android::kHopSamples, planar); }

  private:
    void copy(size_t channels, size_t samples, float* planar) {
        position_ = (position_ + 1) % (kMaterialHops - 1);
        for (size_t c = 0; c < channels; ++c) {
            std::copy_n(channels_[c].data() + position_ * android::kHopSamples, samples,
                        planar + c * samples);
        }
    }

    std::vector<std::vector<float>> channels_;
    size_t position_ = 0;
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
