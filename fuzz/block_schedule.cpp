// Schedules of blocks, settings, devices, volumes and initialisations, one step a line:
//
//   p BYTES RATE CHANNELS SOUND    plays a block
//   s PAIRS                        sets parameters
//   c TEXT                         applies configuration text
//   v INDEX                        tells the volume
//   i                              initialises
//
// Nothing outside a block is touched, the books stay in order, and while processing is off what comes out is what
// came in, as late as a second set of books says.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/dry_stream.h"
#include "fuzz/require.h"
#include "host/configuration.h"
#include "zoq2processing.h"

namespace {

using android::b_parameterMEM;

constexpr long kMostFrames = 64;  // hops an input may have processed: it is to run in milliseconds
constexpr int kSounds = 6;

int16_t sample(int sound, int i) {
    switch (sound) {
        case 1:
            return static_cast<int16_t>(static_cast<uint32_t>(i) * 2654435761u >> 16);  // noise
        case 2:
            return i / 100 % 2 == 0 ? INT16_MAX : INT16_MIN;
        case 3:
            return INT16_MIN;
        case 4:
            return i % 2 == 0 ? int16_t{1} : int16_t{0};  // a channel of the smallest value, one of silence
        default:
            return 0;
    }
}

class Schedule {
  public:
    void run(const std::string& text) {
        std::istringstream lines{text};
        for (std::string line; std::getline(lines, line);) {
            step(line.c_str());
            require_books();
        }
    }

  private:
    void step(const char* line) {
        switch (line[0]) {
            case 'p':
                play(line + 1);
                break;
            case 's':
                ZOQ_PARAMS_SET(android::String8(line[1] != '\0' ? line + 2 : ""));
                break;
            case 'c':
                android::apply_configuration_text(line + 1, std::strlen(line + 1));
                break;
            case 'v':
                android::ZOQ_update_volume(std::atoi(line + 1), AUDIO_STREAM_MUSIC);
                break;
            case 'i':
                ZOQ_OUTPROC_PLAY_INIT();
                dry_.initialised();
                break;
            default:
                break;
        }
        if (b_parameterMEM.stereoWidenEnable == 1 || b_parameterMEM.mixRamp != 0) {
            dry_.processing_is_on();
        }
    }

    void play(const char* words) {
        int bytes = 0, rate = 0, channels = 0, sound = 0;
        std::istringstream{words} >> bytes >> rate >> channels >> sound;
        const int most = 2 * android::kMaxBlockValues + 4;
        if (bytes > most) {
            bytes = most + bytes % 4;  // too long, by a little
        }
        hops_ += std::max(bytes, 0) / 2048 + 1;
        if (hops_ > kMostFrames) {
            return;
        }
        sound = std::abs(sound % kSounds);
        // Not one byte more than the block has, so that touching its surroundings is seen.
        const std::unique_ptr<char[]> memory(new char[static_cast<size_t>(std::max(bytes, 0))]);
        auto* samples = sound == 5 ? nullptr : reinterpret_cast<int16_t*>(memory.get());
        std::vector<int16_t> block(static_cast<size_t>(std::max(bytes, 0)) / 2);
        for (size_t i = 0; i < block.size(); ++i) {
            block[i] = sample(sound, static_cast<int>(i) + played_++);
        }
        std::copy_n(reinterpret_cast<const char*>(block.data()), 2 * block.size(), memory.get());
        const bool odd = bytes > 0 && bytes % 2 != 0;
        char none = 0;
        char& half = odd ? memory[static_cast<size_t>(bytes) - 1] : none;
        half = 0x55;
        ZOQ_OUTPROC_PLAY_SAMPLES(samples, bytes, rate, channels);
        require(half == 0x55, "half a value at the end stays as it is");
        const std::vector<int16_t> before = block;
        std::copy_n(memory.get(), 2 * block.size(), reinterpret_cast<char*>(block.data()));
        dry_.check({bytes, rate, channels, samples != nullptr}, before, block);
    }

    static void require_books() {
        const android::parameterMEM& mem = b_parameterMEM;
        require(mem.inFill >= 0 && mem.inFill < 1024, "less than a frame waits to be processed");
        require(mem.outFill >= 0 && mem.outFill <= android::kRingValues, "the queue keeps to its ring");
        require(mem.mixRamp >= 0 && mem.mixRamp <= 5120, "the crossfade keeps to its range");
        require(mem.headphoneMode == 0 || mem.headphoneMode == 1, "the output class is one of two");
    }

    DryStream dry_;
    long hops_ = 0;
    int played_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    b_parameterMEM = {};
    android::gCurOutputDevice = 2;
    ZOQ_OUTPROC_PLAY_INIT();
    Schedule().run(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
