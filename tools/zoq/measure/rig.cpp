#include "tools/zoq/measure/rig.h"

#include "tools/zoq/interruption.h"

namespace zoq {

namespace {

constexpr double kFullScale = 32768.0;

int16_t right_value(int16_t value, Excitation excitation) {
    switch (excitation) {
        case Excitation::kMid:
            return value;
        case Excitation::kSide:
            return static_cast<int16_t>(-value);
        case Excitation::kLeft:
            break;
    }
    return 0;
}

}  // namespace

Recording record(const MeasureOptions& options, const Signal& signal, bool processing,
                 const BeforeBlock& beforeBlock) {
    EngineSession session(options.engine.blockFrames);
    apply(options.engine, session);
    session.set_processing(processing);
    session.settle();

    Recording recording;
    const auto frames = static_cast<size_t>(session.block_frames());
    std::vector<int16_t> block(2 * frames);
    for (size_t first = 0; first < signal.size() + static_cast<size_t>(recording.latency.total());
         first += frames) {
        throw_if_interrupted();
        if (beforeBlock) {
            beforeBlock(session, first);
        }
        for (size_t i = 0; i < frames; ++i) {
            const int16_t value = first + i < signal.size() ? signal[first + i] : int16_t{0};
            block[2 * i] = value;
            block[2 * i + 1] = right_value(value, options.excitation);
        }
        session.play(block.data());
        for (size_t i = 0; i < 2 * frames; ++i) {
            recording.channel[i % 2].push_back(block[i] / kFullScale);
        }
        recording.latency = session.latency();
    }
    return recording;
}

}  // namespace zoq
