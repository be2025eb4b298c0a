#include "tools/zoq/audio_output.h"

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <filesystem>

#include "tools/zoq/engine_session.h"
#include "tools/zoq/failure.h"

namespace zoq {

namespace {

constexpr int64_t kMaxWavFrames = 0xFFFFFF00LL / 4;  // its sizes are 32-bit byte counts, header included

}  // namespace

int output_format(const std::string& path) {
    std::string extension = path == "-" ? ".wav" : std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    if (extension == ".wav") {
        return SF_FORMAT_WAV;
    }
    if (extension == ".flac") {
        return SF_FORMAT_FLAC;
    }
    throw UsageFailure("cannot write " + quoted(path) + ": the name must end in .wav or .flac");
}

AudioOutput::AudioOutput(const std::string& path) : format_(output_format(path)), file_(path) {
    SF_VIRTUAL_IO io = {length, seek, read, write, tell};
    SF_INFO info = {};
    info.samplerate = kEngineRate;
    info.channels = 2;
    info.format = format_ | SF_FORMAT_PCM_16;
    encoder_.reset(sf_open_virtual(&io, SFM_WRITE, &info, this));
    check(encoder_ != nullptr);
}

void AudioOutput::write(const int16_t* stereo, int frames) {
    frames_ += frames;
    if (format_ == SF_FORMAT_WAV && frames_ > kMaxWavFrames) {
        throw Failure("cannot write " + file_.name() + ": too long for a WAV file, FLAC has no such limit");
    }
    check(sf_writef_short(encoder_.get(), stereo, frames) == frames);
}

void AudioOutput::commit() {
    const bool closed = sf_close(encoder_.release()) == 0;
    check(closed);
    file_.commit();
}

void AudioOutput::check(bool done) const {
    if (error_ != 0) {
        throw system_failure("cannot write", file_.name(), error_);
    }
    if (!done) {
        throw Failure("cannot write " + file_.name() + ": " + sf_strerror(encoder_.get()));
    }
}

sf_count_t AudioOutput::length(void* self) {
    struct stat status = {};
    return fstat(static_cast<AudioOutput*>(self)->file_.fd(), &status) == 0 ? status.st_size : -1;
}

sf_count_t AudioOutput::seek(sf_count_t offset, int whence, void* self) {
    return lseek(static_cast<AudioOutput*>(self)->file_.fd(), offset, whence);
}

sf_count_t AudioOutput::read(void* /*data*/, sf_count_t /*bytes*/, void* /*self*/) {
    return 0;
}

sf_count_t AudioOutput::write(const void* data, sf_count_t bytes, void* self) {
    auto& output = *static_cast<AudioOutput*>(self);
    const int error = write_fully(output.file_.fd(), data, static_cast<size_t>(bytes));
    if (error != 0 && output.error_ == 0) {
        output.error_ = error;
    }
    return error == 0 ? bytes : 0;
}

sf_count_t AudioOutput::tell(void* self) {
    return seek(0, SEEK_CUR, self);
}

}  // namespace zoq
