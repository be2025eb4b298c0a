// zoq tables: the report that everything passes, the report that something does not, and the pictures.
#include "tools/zoq/tables/report.h"

#include <complex>
#include <functional>
#include <limits>
#include <numbers>
#include <set>

#include "tables/head_file.h"
#include "tests/tools/command.h"
#include "tools/zoq/tables/records.h"

using namespace command;
using namespace zoq::tables;

namespace {

using Json = nlohmann::json;

Outcome tables(const std::string& arguments) {
    return shell("zoq tables " + arguments);
}

const Head& kemar() {
    static const Head head = load_head(kDefaultHeadFile);
    return head;
}

std::vector<TableReport> checked(const std::function<void(Records&)>& spoil = {}) {
    const auto records = zoq::library_records();
    if (spoil) {
        spoil(*records);
    }
    return check_all(*records, {&kemar(), ""});
}

// "title: name" of every property that fails.
std::set<std::string> failing(const std::vector<TableReport>& reports) {
    std::set<std::string> names;
    for (const TableReport& report : reports) {
        for (const Property& property : report.properties) {
            if (property.verdict() == Verdict::kFail) {
                names.insert(report.title + ": " + property.name);
            }
        }
    }
    return names;
}

void turn_over_cross_feed(Records& records) {
    for (auto& bin : records.tws.crossFeedFilter) {
        bin = {-bin.re, -bin.im};
    }
}

using TablesTest = InEmptyFolder;

}  // namespace

TEST_F(TablesTest, EveryPropertyOfTheLibraryPasses) {
    const Outcome text = tables("");
    EXPECT_EQ(text.code, 0) << text.out << text.err;
    EXPECT_EQ(text.err, "");
    EXPECT_EQ(text.out.find("FAIL"), std::string::npos);
    for (const char* part : {"pan curves", "widening filters\n", "room response 4, 130 degrees",
                             "virtual-bass", " passed, 0 failed, 0 not compared\n"}) {
        EXPECT_NE(text.out.find(part), std::string::npos) << part;
    }

    const Json report = json_of("zoq tables --json");
    EXPECT_EQ(report.at("failed"), 0);
    int properties = 0;
    for (const Json& table : report.at("tables")) {
        for (const Json& property : table.at("properties")) {
            ++properties;
            EXPECT_EQ(property.at("verdict"), "pass");
            EXPECT_FALSE(property.at("figures").empty()) << property;
            // Some side of every range is closed: a property that anything passes would be none.
            EXPECT_TRUE(std::any_of(property.at("figures").begin(), property.at("figures").end(),
                                    [](const Json& figure) {
                                        return !figure.at("low").is_null() || !figure.at("high").is_null();
                                    }))
                << property;
        }
    }
    EXPECT_EQ(report.at("passed"), properties);
}

// Tables of nothing and of what is no number are measured like others, and fail.
TEST_F(TablesTest, TablesWithoutSenseFail) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity(),
                    kNan = std::numeric_limits<float>::quiet_NaN();
    for (const float value : {0.0f, kInfinity, kNan}) {
        const std::set<std::string> names = failing(checked([&](Records& r) {
            std::fill_n(&r.x2b.ipsiResponse[0][0][0], sizeof r.x2b.ipsiResponse / sizeof(android::creal32_T),
                        android::creal32_T{value, value});
            std::fill_n(&r.x2b.contraResponse[0][0][0],
                        sizeof r.x2b.contraResponse / sizeof(android::creal32_T),
                        android::creal32_T{value, value});
            std::fill(std::begin(r.tws.sameSideFilter), std::end(r.tws.sameSideFilter),
                      android::creal32_T{value, value});
        }));
        for (const char* row :
             {"room response 1, 0 degrees: first arrival, tap", "room response 4, 130 degrees: bin 0",
              "room rendering: sides, level against the dry path",
              "room rendering: sides, direct over reverberant, same side",
              "widening filters: same side, magnitude"}) {
            EXPECT_EQ(names.count(row), 1u) << row << " of " << double(value);
        }
    }
}

// Each fault fails the row that names it, and nothing of the other tables.
TEST_F(TablesTest, APoisonedTableFailsItsRow) {
    EXPECT_EQ(failing(checked()), std::set<std::string>{});
    const struct {
        const char* row;
        std::function<void(Records&)> spoil;
    } cases[] = {
        {"pan curves of dialogue enhancement: coefficients of column 50",
         [](Records& r) { r.den.wideCurve[1][49] *= 1.00001f; }},
        {"pan curves of dialogue enhancement: columns with a positive constant term",
         [](Records& r) { r.den.wideCurve[3][75] = 1e-6f; }},
        {"pan curves of dialogue enhancement: range before the clamp",
         [](Records& r) { r.den.wideCurve[2][39] = std::numeric_limits<float>::quiet_NaN(); }},
        {"pan curves of dialogue enhancement: largest step back to the next column",
         [](Records& r) {
             for (auto& row : r.den.wideCurve) {
                 std::swap(row[60], row[61]);
             }
         }},
        {"widening filters: same side, magnitude",
         [](Records& r) { r.tws.sameSideFilter[43].re *= 1.02f, r.tws.sameSideFilter[43].im *= 1.02f; }},
        {"widening filters: cross-feed, magnitude",
         [](Records& r) { r.tws.crossFeedFilter[512].re = 0.01f; }},
        {"widening filters: energy outside samples 7..466",
         [](Records& r) { r.tws.sameSideFilter[100].im += 1e-4f; }},
        {"widening filters: imaginary part at bins 0 and 512",
         [](Records& r) { r.tws.crossFeedFilter[0].im = 1e-3f; }},
        {"widening filters: centre's gain by thirds of an octave", turn_over_cross_feed},
        {"widening filters: far over near ear, loudspeakers at +-10 degrees",
         [](Records& r) {
             std::fill(std::begin(r.tws.crossFeedFilter), std::end(r.tws.crossFeedFilter),
                       android::creal32_T{});
         }},
        {"room response 2, 30 degrees: first arrival, tap",
         [](Records& r) { std::swap(r.x2b.ipsiResponse[0][1], r.x2b.contraResponse[0][1]); }},
        {"room response 3, 60 degrees: interaural level",
         [](Records& r) {
             for (int p = 0; p < 4; ++p) {
                 std::copy_n(r.x2b.ipsiResponse[p][2], android::kBins, r.x2b.contraResponse[p][2]);
             }
         }},
        {"room response 1, 0 degrees: bin 0", [](Records& r) { r.x2b.contraResponse[0][0][0].re += 6e-8f; }},
        {"room response 4, 130 degrees: wrap-around",
         [](Records& r) { r.x2b.ipsiResponse[2][3][9].re += 1e-3f; }},
        {"room response 4, 130 degrees: imaginary part at bins 0 and 512",
         [](Records& r) { r.x2b.contraResponse[3][3][512].im = 1e-6f; }},
        {"room response 2, 30 degrees: energy of partition, same side",
         [](Records& r) { std::swap(r.x2b.ipsiResponse[1][1], r.x2b.ipsiResponse[2][1]); }},
        {"room response 1, 0 degrees: likeness of the ears' tails",
         [](Records& r) {
             for (int p = 0; p < 4; ++p) {
                 std::copy_n(r.x2b.ipsiResponse[p][0], android::kBins, r.x2b.contraResponse[p][0]);
             }
         }},
        {"room rendering: centre, level against the dry path",
         [](Records& r) {
             for (auto& partition : r.x2b.ipsiResponse) {
                 for (auto& bin : partition[0]) {
                     bin = {1.2f * bin.re, 1.2f * bin.im};
                 }
             }
         }},
        {"room response 3, 60 degrees: imaginary part at bins 0 and 512",
         [](Records& r) { r.x2b.ipsiResponse[3][2][0].im = std::numeric_limits<float>::quiet_NaN(); }},
        {"widening filters: imaginary part at bins 0 and 512",
         [](Records& r) { r.tws.sameSideFilter[0].im = std::numeric_limits<float>::quiet_NaN(); }},
        {"widening filters: energy outside samples 7..466",
         [](Records& r) { r.tws.crossFeedFilter[100].re = std::numeric_limits<float>::quiet_NaN(); }},
        {"widening filters: centre's gain, any bin",
         [](Records& r) { r.tws.crossFeedFilter[100].re = std::numeric_limits<float>::quiet_NaN(); }},
        {"widening filters: cross-feed, amplitude at its peak", turn_over_cross_feed},
        {"room response 1, 0 degrees: interaural delay",
         [](Records& r) {  // the opposite ear four samples early
             for (int k = 0; k < android::kBins; ++k) {
                 auto& bin = r.x2b.contraResponse[0][0][k];
                 const auto turned =
                     std::complex<double>(double(bin.re), double(bin.im)) *
                     std::polar(1.0, 2.0 * std::numbers::pi * 4.0 * k / android::kFrameSamples);
                 bin = {float(turned.real()), float(turned.imag())};
             }
         }},
        {"virtual-bass sets, by cutoff: low-pass, corner over cutoff",
         [](Records& r) { std::copy_n(r.vb[3].lowpassSos, 18, r.vb[4].lowpassSos); }},
        {"virtual-bass sets, by cutoff: largest pole radius",
         [](Records& r) { r.vb[9].bandHighpassSos[15] = 1.01f; }},
    };
    for (const auto& [row, spoil] : cases) {
        const std::set<std::string> names = failing(checked(spoil));
        EXPECT_EQ(names.count(row), 1u) << row;
        const std::string table = std::string(row).substr(0, 5);
        for (const std::string& name : names) {
            EXPECT_EQ(name.substr(0, 5), table) << "by a fault in " << row;
        }
    }
}

TEST_F(TablesTest, AFailureIsToldInTextAndJson) {
    const auto reports =
        checked([](Records& r) { r.den.wideCurve[2][39] = std::numeric_limits<float>::quiet_NaN(); });
    const std::string text = zoq::tables_text(reports);
    EXPECT_NE(text.find("  FAIL range before the clamp"), std::string::npos) << text;
    EXPECT_NE(text.find("! nan"), std::string::npos);
    const Json json = Json::parse(zoq::tables_json(reports));
    EXPECT_EQ(json.at("failed"), failing(reports).size());
    EXPECT_TRUE(json.at("tables").at(0).at("properties").at(6).at("figures").at(0).at("value").is_null());
}

TEST_F(TablesTest, WithoutAHeadTheRestIsMeasured) {
    const auto reports = check_all(*zoq::library_records(), {nullptr, "there is none"});
    const Count count = zoq::tables::count(reports);
    EXPECT_EQ(count.failed, 0);
    EXPECT_EQ(count.notCompared, 3 + 2 * 4);  // the far ear three times; delay and level of each response
    EXPECT_GT(count.passed, 60);
    const std::string text = zoq::tables_text(reports);
    EXPECT_NE(text.find("not compared with a measured head: there is none\n"), std::string::npos);
    EXPECT_EQ(text.find("FAIL"), std::string::npos);
}

TEST_F(TablesTest, DrawsPictures) {
    EXPECT_EQ(tables("--plot all.png").code, 0);
    EXPECT_EQ(contents("all.png").substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(tables("--plot all.svg").code, 0);
    EXPECT_EQ(tables("--plot new/folder").code, 0);
    const std::pair<const char*, std::vector<const char*>> pictures[] = {
        {"all.svg",
         {"widening filters: magnitude", "opposite ear, power per sample", "wideAmount 4", "frequency (Hz)",
          "gain (dB)"}},
        {"new/folder/widening.svg", {"time (samples at 48 kHz)", "checkpoints", "cross-feed"}},
        {"new/folder/pan-curves.svg", {"pan (0 centre, 1 side)", "new pan"}},
        {"new/folder/rooms.svg", {"time (ms)", "level (dB)", "130 degrees"}},
        {"new/folder/virtual-bass.svg", {"output high-pass, 80 Hz"}},
    };
    for (const auto& [file, words] : pictures) {
        const std::string picture = contents(file);
        EXPECT_NE(picture.find("</svg>"), std::string::npos) << file;
        for (const char* word : words) {
            EXPECT_NE(picture.find(word), std::string::npos) << file << " " << word;
        }
    }
}

TEST_F(TablesTest, SaysWhyAPictureOrReportIsNotThere) {
    std::ofstream("file") << "kept";
    std::ofstream("old.svg") << "kept";
    expect_refusals("", {{"zoq tables --plot picture.pdf", 2, "must be a folder or end in .svg or .png"},
                         {"zoq tables --plot -", 2, "needs a folder or a file"},
                         {"zoq tables --plot nowhere/all.svg", 1, "'nowhere/all.svg': No such file"},
                         {"zoq tables --plot file", 1, "cannot make the folder 'file'"},
                         {"PATH=/nowhere zoq tables --plot old.svg", 1, "gnuplot is not installed"},
                         {"zoq tables --nonsense", 2, "--nonsense"},
                         {"zoq tables --head missing.sofa", 1,
                          "cannot read missing.sofa; name an existing SOFA file that you may read"},
                         {"zoq tables >/dev/full", 1, "cannot write the report"}});
    EXPECT_EQ(contents("file"), "kept");
    EXPECT_EQ(contents("old.svg"), "kept");
}
