// A 16-bit stereo file at 48000 Hz, WAV or FLAC, that appears complete or not at all.
#pragma once

#include <sndfile.h>
#include <cstdint>
#include <memory>
#include <string>

#include "tools/zoq/output_file.h"

namespace zoq {

// libsndfile's format for a file name; "-" is WAV. Throws UsageFailure for names that end otherwise.
int output_format(const std::string& path);

class AudioOutput {
  public:
    explicit AudioOutput(const std::string& path);

    void write(const int16_t* stereo, int frames);

    // Completes the file and gives it its name.
    void commit();

  private:
    struct Closer {
        void operator()(SNDFILE* file) const { sf_close(file); }
    };

    // libsndfile writes through these, so that the system's error is known.
    static sf_count_t length(void* self);
    static sf_count_t seek(sf_count_t offset, int whence, void* self);
    static sf_count_t read(void* data, sf_count_t bytes, void* self);
    static sf_count_t write(const void* data, sf_count_t bytes, void* self);
    static sf_count_t tell(void* self);

    void check(bool done) const;

    const int format_;
    int error_ = 0;  // the first error of the system
    OutputFile file_;
    std::unique_ptr<SNDFILE, Closer> encoder_;
    int64_t frames_ = 0;
};

}  // namespace zoq
