#include "tables/head_file.h"

#include <mysofa.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>

namespace zoq::tables {

namespace {

constexpr char kHdf5Signature[] = "\x89HDF\r\n\x1a\n";
constexpr std::uintmax_t kLargestFile = 1u << 29;  // bytes

// A head's far ear hears up to 0.8 ms later, and a pinna rings for about as long.
constexpr double kShortestSeconds = 0.002;
constexpr unsigned kLongestResponse = 16384;  // samples
constexpr double kLongestDelay = 4096.0;      // samples, beyond the shortest of the file

struct Freed {
    void operator()(MYSOFA_HRTF* file) const { mysofa_free(file); }
};
using File = std::unique_ptr<MYSOFA_HRTF, Freed>;

std::string attribute(MYSOFA_ATTRIBUTE* attributes, const char* name) {
    std::string key(name);
    const char* value = mysofa_getAttribute(attributes, key.data());
    return value ? value : "";
}

std::string attribute(const File& file, const char* name) {
    return attribute(file->attributes, name);
}

void require(bool good, const std::string& problem) {
    if (!good) {
        throw HeadError(problem);
    }
}

// libmysofa is handed files of a SOFA file's kind alone.
void require_hdf5(const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    require(!std::filesystem::is_directory(status), path + " is a folder; name a SOFA file");
    require(!std::filesystem::exists(status) || std::filesystem::is_regular_file(status),
            path + " is not a regular file; name a SOFA file");
    std::ifstream in(path, std::ios::binary);
    require(in.good(), "cannot read " + path +
                           (path == kDefaultHeadFile ? "; it comes with Debian's package libmysofa1"
                                                     : "; name an existing SOFA file that you may read"));
    require(std::filesystem::file_size(path, error) <= kLargestFile,
            path + " is larger than 512 MiB; a head's set is smaller");
    std::string start(sizeof kHdf5Signature - 1, '\0');
    in.read(start.data(), std::streamsize(start.size()));
    require(in.good() && start == kHdf5Signature,
            path + " is not a SOFA file: it does not begin as HDF5 files do");
}

File open(const std::string& path) {
    require_hdf5(path);
    int error = MYSOFA_OK;
    File file(mysofa_load(path.c_str(), &error));
    require(file != nullptr, path + " is damaged, or not a SOFA file that libmysofa can read (its error " +
                                 std::to_string(error) + "); export it again as SimpleFreeFieldHRIR");
    return file;
}

void require_layout(const File& file, const std::string& path) {
    const std::string convention = attribute(file, "SOFAConventions");
    require(convention == "SimpleFreeFieldHRIR",
            path + " holds the convention '" + convention + "'; a head's responses have SimpleFreeFieldHRIR");
    require(attribute(file, "DataType") == "FIR",
            path + " holds data of type '" + attribute(file, "DataType") + "'; impulse responses have FIR");
    require(file->R == 2, path + " has " + std::to_string(file->R) + " receivers; a head has two ears");
    require(file->N <= kLongestResponse, path + " has responses of " + std::to_string(file->N) +
                                             " samples; " + std::to_string(kLongestResponse) +
                                             " are usable, cut the room off");
    const size_t pairs = size_t(file->M) * file->R;
    const auto require_array = [&](const MYSOFA_ARRAY& array, size_t elements, const char* what) {
        require(array.values && array.elements >= elements && elements > 0,
                path + " is incomplete: " + what + " missing; export it again with all of them");
    };
    require_array(file->DataIR, pairs * file->N, "responses (Data.IR) are");
    require_array(file->SourcePosition, size_t(file->M) * 3, "source positions (SourcePosition) are");
    require_array(file->DataSamplingRate, 1, "the sampling rate (Data.SamplingRate) is");
}

// Directions of sources are as the file has them: its listener sits at the origin and looks along x.
void require_positions(const File& file, const std::string& path) {
    const MYSOFA_ARRAY& sources = file->SourcePosition;
    const std::string type = attribute(sources.attributes, "Type"),
                      units = attribute(sources.attributes, "Units");
    require(type == "spherical" || type == "cartesian",
            path + " has source positions of the type '" + type + "'; spherical and cartesian are usable");
    require(units.find("radian") == std::string::npos && units.find("rad,") == std::string::npos,
            path + " has source positions in '" + units + "'; write angles in degrees");
    for (size_t m = 0; m < file->M; ++m) {
        const float* position = sources.values + 3 * m;
        const std::string where = path + ": the position of measurement " + std::to_string(m + 1);
        require(std::all_of(position, position + 3, [](float value) { return std::isfinite(value); }),
                where + " is not finite; remove it or measure it again");
        require(type == "spherical" || position[0] != 0.0f || position[1] != 0.0f || position[2] != 0.0f,
                where + " is the listener's own; remove it or measure it again");
    }
    const MYSOFA_ARRAY& view = file->ListenerView;
    if (view.values == nullptr || view.elements < 3) {
        return;
    }
    const float* towards = view.values;
    const bool ahead = attribute(view.attributes, "Type") == "spherical"
                           ? towards[0] == 0.0f && towards[1] == 0.0f
                           : towards[0] > 0.0f && towards[1] == 0.0f && towards[2] == 0.0f;
    require(ahead,
            path + " has a listener who does not look along x (ListenerView); turn the set until he does");
}

// Delay of a pair beyond the shortest of the file, in whole samples; files store one per ear or one per
// response.
class Delays {
  public:
    Delays(const File& file, const std::string& path) : array(file->DataDelay), ears(file->R) {
        const size_t pairs = size_t(file->M) * file->R;
        count = !array.values ? 0 : array.elements >= pairs ? pairs : array.elements >= ears ? ears : 0;
        if (count == 0) {
            return;
        }
        require(
            std::all_of(array.values, array.values + count, [](float value) { return std::isfinite(value); }),
            path + " holds delays that are not finite; write them again");
        const auto [low, high] = std::minmax_element(array.values, array.values + count);
        shortest = double(*low);
        require(
            double(*high) - shortest <= kLongestDelay,
            path + " has delays that differ by more than " + std::to_string(int(kLongestDelay)) + " samples");
    }
    size_t of(size_t pair) const {
        return count == 0 ? 0 : size_t(std::lround(double(array.values[pair % count]) - shortest));
    }
    size_t longest() const {
        size_t most = 0;
        for (size_t pair = 0; pair < count; ++pair) {
            most = std::max(most, of(pair));
        }
        return most;
    }

  private:
    const MYSOFA_ARRAY& array;
    size_t ears, count = 0;
    double shortest = 0.0;
};

void require_long_enough(const File& file, const Delays& delays, const std::string& path) {
    const double rateHz = double(file->DataSamplingRate.values[0]);
    const size_t length = file->N + delays.longest();
    require(!(double(length) / rateHz < kShortestSeconds),
            path + " has responses of " + std::to_string(length) + " samples at " +
                std::to_string(std::lround(rateHz)) +
                " Hz; 2 ms are needed to hold both ears' sound, export longer ones");
}

// Text of a file as one line of plain characters: it goes into a comment of a source file.
std::string plain(std::string text) {
    for (char& c : text) {
        c = c == '\\' ? '/' : c >= ' ' && c <= '~' ? c : ' ';
    }
    return text;
}

std::vector<std::string> credits(const File& file) {
    std::vector<std::string> lines;
    for (const char* name :
         {"Title", "DatabaseName", "ListenerShortName", "ListenerDescription", "AuthorContact",
          "Organization", "License", "References", "Origin", "Comment", "History"}) {
        if (const std::string value = attribute(file, name); !value.empty()) {
            lines.push_back(std::string(name) + ": " + plain(value));
        }
    }
    if (attribute(file, "DatabaseName") == "MIT" &&
        attribute(file, "ListenerShortName").starts_with("KEMAR")) {
        lines.push_back("Not in the file, but published with the measurements:");
        lines.insert(lines.end(), kKemarCredit.begin(), kKemarCredit.end());
    }
    return lines;
}

void copy_measurements(const File& file, const Delays& delays, Head& head) {
    const size_t length = file->N + delays.longest();
    for (size_t m = 0; m < file->M; ++m) {
        const float* position = file->SourcePosition.values + 3 * m;
        head.directions.push_back({double(position[0]), double(position[1])});
        auto& ears = head.responses.emplace_back();
        for (size_t ear = 0; ear < 2; ++ear) {
            const size_t pair = 2 * m + ear;
            const float* samples = file->DataIR.values + pair * file->N;
            ears[ear].assign(length, 0.0);
            std::copy(samples, samples + file->N, ears[ear].begin() + std::ptrdiff_t(delays.of(pair)));
        }
    }
}

}  // namespace

void try_head_file(const std::string& path) {
    open(path);
}

Head read_head(const std::string& path) {
    const File file = open(path);
    require_layout(file, path);
    require_positions(file, path);
    const Delays delays(file, path);
    mysofa_tospherical(file.get());
    Head head;
    head.rateHz = double(file->DataSamplingRate.values[0]);
    copy_measurements(file, delays, head);
    try {
        require_sound(head);
    } catch (const HeadError& error) {
        throw HeadError(path + ": " + error.what());
    }
    require_long_enough(file, delays, path);
    head.credits = credits(file);
    return head;
}

}  // namespace zoq::tables
