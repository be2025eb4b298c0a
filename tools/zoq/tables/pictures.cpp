#include "tools/zoq/tables/pictures.h"

#include <filesystem>
#include <vector>

#include "tools/zoq/failure.h"
#include "tools/zoq/gnuplot.h"
#include "tools/zoq/tables/panels.h"

namespace zoq {

namespace {

constexpr int kPanelWidth = 760, kPanelHeight = 470;

constexpr char kStyle[] =
    "set grid xtics ytics lt 1 lw 1 lc rgb '#dcdcdc'\n"
    "set border 3 lc rgb '#606060'\n"
    "set tics nomirror\n"
    "set key top right opaque noautotitle samplen 2\n";

// Panels from left to right, then downward.
void draw(const std::vector<Panel>& panels, int columns, const std::string& path) {
    const int count = static_cast<int>(panels.size()), rows = (count + columns - 1) / columns;
    std::string text;
    for (const Panel& panel : panels) {
        text += panel.data;
    }
    text += "set termoption font 'sans,13'\nset multiplot layout " + std::to_string(rows) + "," +
            std::to_string(columns) + "\n";
    for (const Panel& panel : panels) {
        text += "reset\n" + std::string(kStyle) + panel.commands;
    }
    draw_with_gnuplot(text + "unset multiplot\n", columns * kPanelWidth, rows * kPanelHeight, path);
}

struct Picture {
    const char* name;
    std::vector<Panel> panels;
    int columns;
};

std::vector<Picture> pictures(const tables::Records& records) {
    return {{"widening", widening_panels(records.tws), 1},
            {"rooms", room_panels(records.rooms()), 2},
            {"pan-curves", {curve_panel(records.den)}, 1},
            {"virtual-bass", {bass_panel(records.vb)}, 1}};
}

}  // namespace

void require_picture_or_folder(const std::string& path) {
    const std::filesystem::path name(path);
    if (path == "-") {
        throw UsageFailure("--plot needs a folder or a file: the report goes to standard output");
    }
    if (!is_picture_path(path) && name.has_extension() && !std::filesystem::is_directory(name)) {
        throw UsageFailure("--plot " + quoted(path) + ": must be a folder or end in .svg or .png");
    }
}

void plot_tables(const tables::Records& records, const std::string& path) {
    if (!is_picture_path(path)) {
        std::error_code error;
        std::filesystem::create_directories(path, error);
        if (error) {
            throw system_failure("cannot make the folder", quoted(path), error.value());
        }
        for (const Picture& picture : pictures(records)) {
            const std::string file = std::filesystem::path(path) / (std::string(picture.name) + ".svg");
            draw(picture.panels, picture.columns, file);
        }
        return;
    }
    std::vector<Panel> all;
    for (const Picture& picture : pictures(records)) {
        all.insert(all.end(), picture.panels.begin(), picture.panels.end());
    }
    draw(all, 2, path);
}

}  // namespace zoq
