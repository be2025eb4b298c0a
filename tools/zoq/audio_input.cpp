#include "tools/zoq/audio_input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <regex>

#include "tools/zoq/failure.h"

namespace zoq {

namespace {

std::string without_full_stop(std::string text) {
    while (!text.empty() && (text.back() == '.' || text.back() == ' ' || text.back() == '\n')) {
        text.pop_back();
    }
    return text;
}

std::string format_name(int command, int format) {
    SF_FORMAT_INFO info = {};
    info.format = format;
    if (sf_command(nullptr, command, &info, sizeof info) != 0 || info.name == nullptr) {
        return "unknown";
    }
    return info.name;
}

std::string describe(int format) {
    std::string container = format_name(SFC_GET_FORMAT_INFO, format & SF_FORMAT_TYPEMASK);
    container.resize(std::min(container.find(' '), container.size()));
    return container + ", " + format_name(SFC_GET_FORMAT_INFO, format & SF_FORMAT_SUBMASK);
}

std::vector<int> channel_map(SNDFILE* decoder, int channels) {
    std::vector<int> map(static_cast<size_t>(channels));
    const int bytes = channels * static_cast<int>(sizeof(int));
    if (sf_command(decoder, SFC_GET_CHANNEL_MAP_INFO, map.data(), bytes) != SF_TRUE) {
        map.clear();
    }
    return map;
}

// What the header announces. Where the file holds less libsndfile counts that, and only its log tells of it. A header
// written before the length was known, as of a recording into a pipe, announces nothing.
int64_t announced_frames(SNDFILE* decoder, int64_t frames) {
    constexpr double kUnknown = 0x7FFFF000;  // bytes
    char log[16384] = "";
    sf_command(decoder, SFC_GET_LOG_INFO, log, sizeof log);
    std::cmatch found;
    if (!std::regex_search(log, found, std::regex("\n *(?:data|SSND) : (\\d+) \\(should be (\\d+)\\)"))) {
        return frames;
    }
    const double announced = std::stod(found[1]), present = std::stod(found[2]);
    return announced > present && present > 0.0 && announced < kUnknown
               ? static_cast<int64_t>(static_cast<double>(frames) * (announced / present))
               : frames;
}

}  // namespace

AudioInput::AudioInput(const std::string& path)
    : name_(path == "-" ? "standard input" : quoted(path)), file_(open(path)) {
    start_decoder();
}

Descriptor AudioInput::open(const std::string& path) {
    Descriptor file(path == "-" ? dup(STDIN_FILENO) : ::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status = {};
    if (file.get() < 0 || fstat(file.get(), &status) != 0) {
        throw system_failure("cannot read", name_, errno);
    }
    if (isatty(file.get()) == 1) {
        throw Failure("cannot read " + name_ + ": it is a terminal");
    }
    if (S_ISDIR(status.st_mode)) {
        throw system_failure("cannot read", name_, EISDIR);
    }
    device_ = status.st_dev;
    inode_ = status.st_ino;
    if (path == "-" || !S_ISREG(status.st_mode)) {
        file = spool(file.get(), name_);
        fstat(file.get(), &status);
    }
    if (status.st_size == 0) {
        throw Failure("cannot read " + name_ + ": it is empty");
    }
    return file;
}

void AudioInput::start_decoder() {
    decoder_.reset(sf_open_fd(file_.get(), SFM_READ, &info_, SF_FALSE));
    if (decoder_ == nullptr) {
        throw Failure("cannot read " + name_ + " as audio: " + without_full_stop(sf_strerror(nullptr)));
    }
    frames_ = announced_frames(decoder_.get(), info_.frames);
    format_ = describe(info_.format);
    const bool oggOrder = (info_.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_OGG;
    try {
        downmix_ = Downmix(info_.channels, channel_map(decoder_.get(), info_.channels), oggOrder);
    } catch (const Failure& failure) {
        throw Failure(name_ + " " + failure.what());
    }
}

bool AudioInput::is_same_file(const std::string& path) const {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && status.st_dev == device_ && status.st_ino == inode_;
}

int AudioInput::read(float* stereo, int frames) {
    interleaved_.resize(static_cast<size_t>(frames) * static_cast<size_t>(info_.channels));
    int filled = 0;
    while (filled < frames) {
        const int got =
            static_cast<int>(sf_readf_float(decoder_.get(), interleaved_.data(), frames - filled));
        if (got <= 0) {
            if (sf_error(decoder_.get()) != SF_ERR_NO_ERROR) {
                throw Failure("cannot decode " + name_ + ": " +
                              without_full_stop(sf_strerror(decoder_.get())));
            }
            break;
        }
        downmix_.to_stereo(interleaved_.data(), got, stereo + 2 * filled);
        filled += got;
    }
    framesRead_ += filled;
    return filled;
}

}  // namespace zoq
