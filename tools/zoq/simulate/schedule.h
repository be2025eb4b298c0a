// What a host does while it plays: block sizes, rate, output device, volume, processing and settings over time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zoq {

// One thing that changes, at a time in seconds of playback.
struct HostEvent {
    double seconds;
    // block, rate, device, route, volume, processing, init, or a setting of parameter strings
    std::string key;
    std::string value;  // block: "480" or "480,512", sizes that take turns; init: none
};

// "KEY=VALUE;..." at a time. Throws UsageFailure, which says where, for a key, a value or a time that is none.
std::vector<HostEvent> host_events(double seconds, const std::string& text, const std::string& where);

// Lines of "SECONDS KEY=VALUE;...", remarks behind '#'. Throws UsageFailure, which names file and line.
std::vector<HostEvent> read_schedule(const std::string& text, const std::string& name);

// "480,512" as numbers of 1..18432; empty when the text is none such.
std::vector<int> block_sizes(const std::string& text);

// A number in decimal, or in hexadecimal behind "0x"; -1 when the text is none.
int64_t device_mask(const std::string& text);

}  // namespace zoq
