// What can be measured of the engine at given settings, and the figures that come out.
//
// Levels are in dB of full scale, a sine at full scale being 0; nothing at all is minus infinity. Channels
// are left and right, in this order.
#pragma once

#include <array>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/zoq/engine_session.h"
#include "tools/zoq/settings_options.h"

namespace zoq {

// The same in both channels, the right one inverted, the right one silent.
enum class Excitation { kMid, kSide, kLeft };

enum class Measure { kResponse, kImpulse, kLatency, kDistortion, kStatic, kDynamics, kCrosstalk, kClicks };

struct MeasureOptions {
    EngineSettings engine;  // resolved
    Excitation excitation = Excitation::kMid;
    double levelDb = -20.0;                            // peak of the excitation in each excited channel
    double toneHz = 1000.0;                            // for distortion, static curve and dynamics
    double bassHz = 50.0;                              // for distortion
    std::pair<double, double> stepDb = {-30.0, -6.0};  // for dynamics, low and high
    std::set<Measure> what;
};

template <typename T>
using Channels = std::array<T, 2>;

struct Response {
    std::vector<double> hz;  // 24 to the octave, 1000 among them
    Channels<std::vector<double>> gainDb;
    // -180..180, with the expected latency taken off; not a number for silence.
    Channels<std::vector<double>> phaseDegrees;
};

struct Impulse {
    int start;  // sample frames from the excitation to the first element
    Channels<std::vector<double>> value;
};

struct Arrival {
    int onset;  // first sample of at least a tenth of the peak
    int peak;   // the largest sample, either sign
};

struct LatencyFigures {
    Latency expected;
    Channels<std::optional<Arrival>> arrival;  // none for silence
};

// Of the left output.
struct Distortion {
    double toneHz;
    double outputDb;                  // the fundamental
    std::vector<double> harmonicsDb;  // of full scale, the second first, as far as they lie below 24 kHz
    double thdDb;                     // all of these against the fundamental
    double thdNoiseDb;                // everything from 20 Hz to 20 kHz but the fundamental, against it
};

// Of the left output's fundamental.
struct StaticCurve {
    double toneHz;
    std::vector<double> inputDb;
    std::vector<double> outputDb;
};

// The gain of the left output's fundamental behind a step of the input's level.
struct StepResponse {
    double fromDb, toDb;          // of the input
    std::vector<double> seconds;  // since the step
    std::vector<double> gainDb;   // output against input
    double startGainDb;           // ahead of the step
    double endGainDb;             // at the end
    // The louder tone with the gain ahead of the step would leave full scale: the limiter takes part.
    bool limited() const { return toDb > fromDb && toDb + startGainDb > 0.0; }
    std::optional<double> seconds90;  // until nine tenths of the change, in dB, are done; none for no change
};

struct Dynamics {
    double toneHz;
    StepResponse attack;
    StepResponse release;
};

// Right output against left output, left input alone.
struct Crosstalk {
    std::vector<double> hz;
    std::vector<double> ratioDb;
};

// One switching of the processing while a low sine plays; the louder output of the two.
struct Click {
    double seconds;   // when it was switched, from the start of the curve below
    double stepDb;    // the largest difference of two neighbouring samples against the steady sine's
    double trebleDb;  // the largest level above 8 kHz
};

struct Clicks {
    double toneHz;
    Click on, off;
    double steadyTrebleDb;        // the largest level above 8 kHz without switching
    int leftOver;                 // the largest 16-bit value behind switching on again, in silence
    std::vector<double> seconds;  // of the curve
    std::vector<double> trebleDb;
};

struct Measurements {
    std::optional<Response> response;
    std::optional<Impulse> impulse;
    std::optional<LatencyFigures> latency;
    std::optional<Distortion> tone, bass;
    std::optional<StaticCurve> staticCurve;
    std::optional<Dynamics> dynamics;
    std::optional<Crosstalk> crosstalk;
    std::optional<Clicks> clicks;
};

// Every measurement starts the engine anew. Throws Interrupted.
Measurements measure(const MeasureOptions& options);

const char* excitation_name(Excitation excitation);

// "speaker, mid, -20 dBFS" and the settings behind it.
std::string describe(const MeasureOptions& options);

}  // namespace zoq
