// The options that choose what the engine is set to; every command that runs the engine has them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/zoq/engine_session.h"

namespace CLI {
class App;
class Validator;
}  // namespace CLI

namespace zoq {

struct EngineSettings {
    Route route = Route::kSpeaker;
    std::optional<int> volume;          // index; the engine's own 15 otherwise
    std::vector<std::string> files;     // names of configuration texts
    std::vector<std::string> settings;  // "key=value;key=value", as in parameter strings; over the texts
    std::vector<std::string> texts;     // what the files hold, by resolve()
    int blockFrames = kDefaultBlockFrames;
};

// --route, --volume, --config, --set and --block.
void add_settings_options(CLI::App& app, EngineSettings& settings);

// Reads the files and takes the settings apart, to one "key=value" each. Throws UsageFailure for an unknown setting
// and for a value that is no number (the engine reads as far as it can), Failure for a file that cannot be read.
void resolve(EngineSettings& settings);

// Everything but the processing switch, after resolve(), in any number of sessions.
void apply(const EngineSettings& settings, EngineSession& session);

// "unknown setting 'DS_stereowidth', did you mean 'DS_stereoWidth'?" The names, and the settings behind them, are what
// may have been meant; where none is near, none is named.
std::string unknown_setting(const std::string& key, const std::vector<std::string>& names = {});

// For options: a number from least to most. CLI11's own range lets "nan" through.
CLI::Validator number_within(double least, double most);

// Whether the engine reads all of a text as a finite number.
bool is_number(const std::string& text);

const char* route_name(Route route);

}  // namespace zoq
