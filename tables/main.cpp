// zoq-make-tables: remakes every generated file of the source tree, or checks the committed ones.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tables/bass_sections.h"
#include "tables/head_file.h"
#include "tables/pan_curves.h"
#include "tables/room_responses.h"
#include "tables/transform_tables.h"
#include "tables/widening_filters.h"

namespace {

using zoq::tables::GeneratedFile;

constexpr const char* kHelp =
    "usage: zoq-make-tables [--source DIR] [--check]\n"
    "\n"
    "Remakes every generated table file of the source tree, or compares them.\n"
    "\n"
    "  --source DIR  the source tree (default: the current directory)\n"
    "  --check       write nothing; compare the committed files with remade ones\n"
    "  --help        this text\n"
    "\n"
    "exit status: 0 done, or no difference; 1 a committed file differs; 2 wrong usage;\n"
    "             3 a file cannot be read, written or used\n";

enum Status { kDone, kDiffers, kUsage, kNoFile };

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Options {
    std::filesystem::path source = ".";
    bool check = false;
    bool help = false;
};

Options read_options(const std::vector<std::string>& words) {
    Options options;
    for (size_t i = 0; i < words.size(); ++i) {
        const auto argument = [&] {
            if (i + 1 == words.size()) {
                throw UsageError(words[i] + " needs an argument");
            }
            return words[++i];
        };
        if (words[i] == "--source") {
            options.source = argument();
        } else if (words[i] == "--check") {
            options.check = true;
        } else if (words[i] == "--help") {
            options.help = true;
        } else {
            throw UsageError("unknown argument '" + words[i] + "'");
        }
    }
    return options;
}

std::string head_source() {
    std::string source = "Source: the head MIT_KEMAR_normal_pinna.sofa of Debian's libmysofa1.";
    for (const char* line : zoq::tables::kKemarCredit) {
        source += std::string("\n") + line;
    }
    return source;
}

std::vector<GeneratedFile> make_all() {
    using namespace zoq::tables;
    return {transform_tables_file(), pan_curves_file(), bass_sections_file(), widening_filters_file(),
            room_responses_file(make_room_responses(load_head(kDefaultHeadFile)),
                                "zoq-make-tables --source .", head_source())};
}

std::string reason(const std::filesystem::path& path) {
    return path.string() + ": " + std::strerror(errno);
}

std::string read(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    if (!in || !(text << in.rdbuf())) {
        throw std::runtime_error("cannot read " + reason(path));
    }
    return text.str();
}

// To a file beside the old one, which stays as it is if anything fails.
void write(const std::filesystem::path& path, const std::string& text) {
    const std::filesystem::path fresh = path.string() + ".new";
    std::ofstream out(fresh, std::ios::binary);
    out << text;
    out.close();
    if (!out || std::rename(fresh.c_str(), path.c_str()) != 0) {
        const std::string why = reason(path);
        std::remove(fresh.c_str());
        throw std::runtime_error("cannot write " + why);
    }
}

Status run(const Options& options) {
    if (!std::filesystem::exists(options.source / "dsp/fft_tables.h")) {
        throw std::runtime_error(options.source.string() +
                                 " is not the source tree: it has no dsp/fft_tables.h");
    }
    Status status = kDone;
    for (const GeneratedFile& file : make_all()) {
        const auto path = options.source / file.path;
        if (!options.check) {
            write(path, file.text);
            std::cout << "wrote " << file.path << "\n";
        } else if (const std::string found = difference(read(path), file); !found.empty()) {
            std::cout << file.path << " differs: " << found << "\n";
            status = kDiffers;
        } else {
            std::cout << file.path << " is as remade\n";
        }
    }
    if (!std::cout.flush()) {
        throw std::runtime_error("cannot write standard output");
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    // What a closed pipe or a size limit keeps from being written is an error like others.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        const Options options = read_options({argv + 1, argv + argc});
        if (options.help) {
            std::cout << kHelp;
            return kDone;
        }
        return run(options);
    } catch (const UsageError& error) {
        std::cerr << "zoq-make-tables: " << error.what() << "; see --help\n";
        return kUsage;
    } catch (const std::exception& error) {
        std::cerr << "zoq-make-tables: " << error.what() << "\n";
        return kNoFile;
    }
}
