#include "tools/zoq/tables/import.h"

#include <filesystem>

#include "tables/check.h"
#include "tables/head_file.h"
#include "tables/room_responses.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/file_names.h"
#include "tools/zoq/interruption.h"
#include "tools/zoq/text_file.h"

namespace zoq {

namespace {

constexpr char kFileName[] = "x2b_tables.cpp";

std::string target(const ImportOptions& options) {
    if (options.output == "-") {
        throw UsageFailure("--output needs a file: the report goes to standard output");
    }
    std::filesystem::path path(options.output);
    if (std::filesystem::is_directory(path)) {
        path /= kFileName;
    }
    check_kept({{"FILE", options.head}}, {{"--output", path}});
    return path;
}

// Without folders and signs that could end a comment.
std::string shown_name(const std::string& path) {
    std::string name = std::filesystem::path(path).filename();
    for (char& c : name) {
        c = c >= ' ' && c <= '~' && c != '\\' ? c : '?';
    }
    return name;
}

std::string source_text(const tables::RoomResponses& rooms, const tables::Head& head,
                        const std::string& path) {
    std::string source = "Source: the head " + shown_name(path) + ".";
    for (const std::string& credit : head.credits) {
        source += "\n" + credit;
    }
    return tables::room_responses_file(rooms, "zoq tables import " + shown_name(path), source).text;
}

}  // namespace

tables::Head load_interruptible(const std::string& path) {
    try {
        tables::Head head = tables::load_head(path);
        throw_if_interrupted();
        return head;
    } catch (const tables::HeadError&) {
        throw_if_interrupted();  // then that is what kept it from being read
        throw;
    }
}

ImportResult import_rooms(const ImportOptions& options) {
    const std::string path = options.check ? "" : target(options);
    const tables::Head head = load_interruptible(options.head);
    const tables::RoomResponses rooms = tables::make_room_responses(head);
    throw_if_interrupted();
    ImportResult result{path, tables::check_rooms(rooms.tables(), {&head, ""})};
    if (!options.check) {
        write_text(path, source_text(rooms, head, options.head));
    }
    return result;
}

}  // namespace zoq
