// What libsndfile reads (WAV, FLAC, Ogg Vorbis, Opus, MP3 and more), as stereo floats.
#pragma once

#include <sndfile.h>
#include <sys/types.h>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/zoq/descriptor.h"
#include "tools/zoq/downmix.h"

namespace zoq {

class AudioInput {
  public:
    // "-" is standard input; what cannot seek is read into memory first. Throws Failure for what cannot be
    // read, is not audio or is empty.
    explicit AudioInput(const std::string& path);

    const std::string& name() const { return name_; }      // as messages call it
    const std::string& format() const { return format_; }  // "OGG, Vorbis"
    int rate() const { return info_.samplerate; }          // Hz
    int channels() const { return info_.channels; }
    int64_t frames() const { return frames_; }  // as the header has it, even if the file ends before
    const Downmix& downmix() const { return downmix_; }

    // True when both name the same file, through links too.
    bool is_same_file(const std::string& path) const;

    // Fills up to frames stereo sample frames; fewer only at the end. Throws Failure when decoding breaks
    // off.
    int read(float* stereo, int frames);
    int64_t frames_read() const { return framesRead_; }

  private:
    struct Closer {
        void operator()(SNDFILE* file) const { sf_close(file); }
    };

    Descriptor open(const std::string& path);
    void start_decoder();

    std::string name_;
    std::string format_;
    dev_t device_ = 0;
    ino_t inode_ = 0;
    SF_INFO info_ = {};
    int64_t frames_ = 0;
    Descriptor file_;
    std::unique_ptr<SNDFILE, Closer> decoder_;
    Downmix downmix_;
    std::vector<float> interleaved_;
    int64_t framesRead_ = 0;
};

}  // namespace zoq
