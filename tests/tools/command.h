// Runs the command line tool as a shell would, in an empty folder, and reads and writes sound files.
#pragma once

#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/wait.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <numbers>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace command {

struct Sound {
    std::vector<int16_t> values;  // interleaved
    int channels = 2;
    int rate = 48000;

    size_t frames() const { return values.size() / static_cast<size_t>(channels); }
    int at(size_t frame, int channel) const {
        return values[frame * static_cast<size_t>(channels) + static_cast<size_t>(channel)];
    }
    bool operator==(const Sound&) const = default;
};

inline Sound silence(size_t frames, int channels = 2, int rate = 48000) {
    return {std::vector<int16_t>(frames * static_cast<size_t>(channels)), channels, rate};
}

inline Sound noise(size_t frames, int channels = 2) {
    Sound sound = silence(frames, channels);
    std::minstd_rand random(7);
    for (int16_t& value : sound.values) {
        value = static_cast<int16_t>(static_cast<int>(random() >> 12 & 0xFFFF) - 0x8000);
    }
    return sound;
}

inline double tone_at(double seconds, double hz) {
    return std::sin(2.0 * std::numbers::pi * hz * seconds);
}

// The same sine in every channel.
inline Sound tone(size_t frames, double hz, double amplitude, int channels = 2, int rate = 48000) {
    Sound sound = silence(frames, channels, rate);
    for (size_t i = 0; i < sound.values.size(); ++i) {
        const size_t frame = i / static_cast<size_t>(channels);
        const double seconds = static_cast<double>(frame) / rate;
        sound.values[i] = static_cast<int16_t>(std::lround(32768.0 * amplitude * tone_at(seconds, hz)));
    }
    return sound;
}

// The amplitude of a sine in a channel, in dB of full scale, over 0.16 s (whole cycles of the equalizer's centres) around a
// moment: the middle, if none is named.
inline double level_db(const Sound& sound, int channel, double hz, double second = -1.0) {
    const size_t count = static_cast<size_t>(sound.rate) * 16 / 100;
    const size_t middle = second < 0.0 ? sound.frames() / 2 : static_cast<size_t>(second * sound.rate);
    double re = 0.0;
    double im = 0.0;
    for (size_t i = middle - count / 2; i < middle - count / 2 + count; ++i) {
        const double seconds = static_cast<double>(i) / sound.rate;
        re += sound.at(i, channel) / 32768.0 * tone_at(seconds, hz);
        im += sound.at(i, channel) / 32768.0 * tone_at(seconds + 0.25 / hz, hz);
    }
    return 20.0 * std::log10(2.0 * std::hypot(re, im) / static_cast<double>(count));
}

// Where a channel is loudest, between two sample frames.
inline int loudest(const Sound& sound, int channel, size_t first, size_t end) {
    size_t best = first;
    for (size_t i = first; i < end; ++i) {
        best = std::abs(sound.at(i, channel)) > std::abs(sound.at(best, channel)) ? i : best;
    }
    return static_cast<int>(best);
}

inline void write(const std::string& path, const Sound& sound,
                  int format = SF_FORMAT_WAV | SF_FORMAT_PCM_16) {
    SF_INFO info = {};
    info.samplerate = sound.rate;
    info.channels = sound.channels;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr) << path << ": " << sf_strerror(nullptr);
    const auto count = static_cast<sf_count_t>(sound.values.size());
    if ((format & SF_FORMAT_SUBMASK) == SF_FORMAT_PCM_16) {
        EXPECT_EQ(sf_write_short(file, sound.values.data(), count), count);
    } else {
        std::vector<float> floats(sound.values.begin(), sound.values.end());
        for (float& value : floats) {
            value /= 32768.0f;
        }
        EXPECT_EQ(sf_write_float(file, floats.data(), count), count);
    }
    sf_close(file);
}

inline Sound read(const std::string& path) {
    SF_INFO info = {};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr) {
        ADD_FAILURE() << path << ": " << sf_strerror(nullptr);
        return {};
    }
    Sound sound = silence(static_cast<size_t>(info.frames), info.channels, info.samplerate);
    sf_read_short(file, sound.values.data(), static_cast<sf_count_t>(sound.values.size()));
    sf_close(file);
    return sound;
}

inline std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

struct Outcome {
    int code;  // as a shell has it: 128 + number for a signal
    std::string out;
    std::string err;
};

// Runs a shell command in which "zoq" is the program.
inline Outcome shell(const std::string& line) {
    const int status = std::system(
        ("zoq() { " ZOQ_PROGRAM " \"$@\"; }; { " + line + "; } >stdout.txt 2>stderr.txt").c_str());
    return {WEXITSTATUS(status), contents("stdout.txt"), contents("stderr.txt")};
}

inline Outcome render(const std::string& arguments) {
    return shell("zoq render " + arguments);
}

// What a command line prints, as JSON.
inline nlohmann::json json_of(const std::string& line) {
    const Outcome outcome = shell(line);
    EXPECT_EQ(outcome.code, 0) << line << outcome.err;
    return nlohmann::json::parse(outcome.out, nullptr, false);
}

struct Refusal {
    std::string arguments;
    int code;
    std::string message;
};

// Every command line ends with its exit code and one line that says why.
inline void expect_refusals(const std::string& command, const std::vector<Refusal>& refusals) {
    for (const auto& [arguments, code, message] : refusals) {
        const Outcome outcome = shell(command + arguments);
        EXPECT_EQ(outcome.code, code) << arguments << outcome.err;
        EXPECT_EQ(outcome.err.substr(0, 5), "zoq: ") << arguments;
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
        EXPECT_NE(outcome.err.find(message), std::string::npos) << outcome.err << "instead of: " << message;
    }
}

// Each test runs in a folder of its own.
class InEmptyFolder : public testing::Test {
  protected:
    void SetUp() override {
        std::string name = std::filesystem::temp_directory_path() / "zoq-test-XXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder_ = name;
        std::filesystem::current_path(folder_);
    }
    void TearDown() override {
        std::filesystem::current_path("/");
        std::filesystem::remove_all(folder_);
    }

    // Renders in.wav into out.wav.
    static Sound rendered(const Sound& input, const std::string& options) {
        write("in.wav", input);
        const Outcome outcome = render("in.wav out.wav " + options);
        EXPECT_EQ(outcome.code, 0) << options << outcome.err;
        return read("out.wav");
    }

  private:
    std::filesystem::path folder_;
};

}  // namespace command
