#include "tools/zoq/tables/records.h"

#include "zoq2processing.h"

namespace zoq {

namespace {

constexpr float kCutoffHz = 80.0f;

void fill(float cutoffHz) {
    using namespace android;
    stereoWidening_initialization(cutoffHz, &b_parameterDEN, &b_parameterTWS, &b_parameterEQ, &b_parameterDRC,
                                  &b_parameterVB, &b_parameterX2B, &b_parameterGEQ);
}

}  // namespace

std::unique_ptr<tables::Records> library_records() {
    auto records = std::make_unique<tables::Records>();
    for (size_t i = 0; i < records->vb.size(); ++i) {
        fill(static_cast<float>(tables::kBassCutoffsHz[i]));
        records->vb[i] = android::b_parameterVB;
    }
    fill(kCutoffHz);
    records->den = android::b_parameterDEN;
    records->tws = android::b_parameterTWS;
    records->x2b = android::b_parameterX2B;
    return records;
}

}  // namespace zoq
