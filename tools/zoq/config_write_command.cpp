#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>

#include "tools/zoq/config_command.h"
#include "tools/zoq/failure.h"
#include "tools/zoq/file_names.h"
#include "tools/zoq/gnuplot.h"
#include "tools/zoq/plot.h"
#include "tools/zoq/settings_options.h"
#include "tools/zoq/text_file.h"
#include "tools/zoq/tuning/config_check.h"
#include "tools/zoq/tuning/config_write.h"
#include "tools/zoq/tuning/eq_text.h"
#include "tools/zoq/tuning/reports.h"

namespace zoq {

namespace {

constexpr char kWriteFooter[] =
    "No value outside its range is written: --set and --from refuse it.\n"
    "Taken in this order, later ones win: --from, --eq, --set. The text goes to standard output, what there "
    "is\n"
    "to say to standard error.\n"
    "\n"
    "--eq reads parametric filters ('Filter 1: ON PK Fc 105 Hz Gain -2.1 dB Q 0.70') and graphic curves\n"
    "('GraphicEQ: 20 -0.5; 21 -0.4; ...') and finds the gains with which the engine's nine bands come "
    "nearest.\n"
    "The engine has no preamp: a 'Preamp' line and the curve's overall level are left out.\n"
    "\n"
    "Exit code: 0 done; 1 a text cannot be read, followed or written; 2 the command line is wrong.";

struct WriteCommand {
    std::vector<std::string> settings;
    std::string from, eq, plot, output;
    EqRoute route = EqRoute::kBoth;
    EqFitOptions fit;
    bool asString = false;
};

void fit_curve(const WriteCommand& command, Settings& settings) {
    const std::string name = command.eq == "-" ? "standard input" : command.eq;
    const EqTarget target = read_eq_text(read_text(command.eq), name);
    for (const std::string& remark : target.remarks) {
        std::cerr << "zoq: " << remark << "\n";
    }
    const EqFit fit = fit_bands([&target](double hz) { return target.db(hz); }, command.fit);
    print_fit(std::cerr, fit, target.preampDb);
    add_gains(settings, fit.gainDb, command.route);
    if (!command.plot.empty()) {
        Plot plot{
            "Nine bands fitted to " + name, "dB", fit.hz, {{"curve, level taken out", {}}, {"engine", {}}}};
        for (size_t i = 0; i < fit.hz.size(); ++i) {
            plot.curves[0].y.push_back(fit.targetDb[i] - fit.levelDb);
            plot.curves[1].y.push_back(fit.responseDb[i]);
        }
        draw(plot, command.plot);
    }
}

void check_options(const WriteCommand& command) {
    if (command.settings.empty() && command.from.empty() && command.eq.empty()) {
        throw UsageFailure("config write needs --set, --from or --eq");
    }
    if (!command.plot.empty() && (command.eq.empty() || !is_picture_path(command.plot))) {
        throw UsageFailure("--plot needs --eq and a name that ends in .svg or .png");
    }
    const std::vector<NamedFile> outputs = {{"--output", command.output}, {"--plot", command.plot}};
    check_different(outputs);
    check_kept({{"--from", command.from}, {"--eq", command.eq}}, outputs);
    if (!(command.fit.hiHz >= 2.0 * command.fit.loHz)) {
        throw UsageFailure("--eq-lowest must lie at least an octave below --eq-highest");
    }
}

void write(const WriteCommand& command) {
    check_options(command);
    const Dialect dialect = command.asString ? Dialect::kString : Dialect::kFile;
    Settings settings;
    if (!command.from.empty()) {
        const std::string text = read_text(command.from);
        add_file(settings, text, command.from);
        print_diagnostics(std::cerr, check_file(text), command.from, 0);
    }
    if (!command.eq.empty()) {
        fit_curve(command, settings);
    }
    for (const std::string& pair : command.settings) {
        add_setting(settings, pair, dialect);
    }
    write_text(command.output, checked_text(settings, dialect) + (command.asString ? "\n" : ""));
}

}  // namespace

void add_config_write_command(CLI::App& config) {
    CLI::App* app =
        config.add_subcommand("write", "Write a configuration from settings and equalizer curves");
    app->footer(kWriteFooter);
    const auto command = std::make_shared<WriteCommand>();
    const std::map<std::string, EqRoute> routes = {
        {"speaker", EqRoute::kSpeaker}, {"headphone", EqRoute::kHeadphone}, {"both", EqRoute::kBoth}};
    app->add_option("--set", command->settings, "one setting, such as DS_stereoWidth=80; may be repeated")
        ->expected(1)
        ->take_all()
        ->option_text("KEY=VALUE");
    app->add_option("--from", command->from, "a configuration whose settings are taken over")
        ->option_text("FILE");
    CLI::Option* eq = app->add_option("--eq", command->eq, "an equalizer text to come near to");
    eq->option_text("FILE");
    app->add_option("--eq-route", command->route, "speaker, headphone or both (default)")
        ->needs(eq)
        ->transform(CLI::Transformer(routes))
        ->option_text("ROUTE");
    app->add_option("--limit", command->fit.limitDb, "largest gain of a band in dB, up to 24 (default: 12)")
        ->needs(eq)
        ->check(number_within(0.1, 24.0))
        ->option_text("DB");
    app->add_option("--eq-lowest", command->fit.loHz, "where the fit begins (default: 40)")
        ->needs(eq)
        ->check(number_within(10.0, 20000.0))
        ->option_text("HZ");
    app->add_option("--eq-highest", command->fit.hiHz, "where the fit ends (default: 20000)")
        ->needs(eq)
        ->check(number_within(20.0, 23000.0))
        ->option_text("HZ");
    app->add_option("--plot", command->plot, "draw curve and fit, .svg or .png")->option_text("FILE");
    app->add_option("-o,--output", command->output, "the file to write (default: standard output)")
        ->option_text("FILE");
    app->add_flag("--as-string", command->asString, "a parameter string instead of a file");
    app->callback([command] { write(*command); });
}

}  // namespace zoq
