#include "tools/kestova/command_line/command_line.h"

#include <CLI/CLI.hpp>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"

namespace {

// An option that can be given more than once, with one value each time.
void AddRepeatable(CLI::App& app, const char* name, std::vector<std::string>& values, const char* words,
                   const char* value) {
    app.add_option(name, values, words)->allow_extra_args(false)->option_text(value);
}

void AddPcOptions(CLI::App& app, PcChoice& choice) {
    const auto group = app.add_option_group("PC");
    AddRepeatable(*group, "--image", choice.images, "A disk image; repeated: disk 0, 1, ...", "FILE");
    AddRepeatable(*group, "--disc", choice.discs,
                  "An image of a disc, ISO 9660 or UDF; repeated: more drives", "FILE");
    AddRepeatable(*group, "--stick", choice.sticks, "An image of a stick, FAT or NTFS; repeated: more sticks",
                  "FILE");
    group->add_option("--pc", choice.pc, "A machine that comes with the tool, or a description file")
        ->option_text("NAME|FILE")
        ->excludes("--image");
    group->add_flag("--windows", choice.windows, "The installed Windows is running");
    group->add_flag("--pe", choice.windowsPe, "Windows PE is running; so it is on images")
        ->excludes("--windows");
}

void AddOtherOptions(CLI::App& app, CommandLine& line) {
    PcChoice& choice = line.choice;
    const auto group = app.add_option_group("Also");
    group->add_flag("--json", line.json, "Answer in JSON");
    group->add_option("--log", line.log, "Write the library's log; '-' shows it")->option_text("FILE|-");
    group->add_flag("--trace", choice.trace, "Show platform calls and log records");
    group->add_flag("--dry-run", choice.dryRun, "Change no file, and show what would change");
    AddRepeatable(*group, "--fail", choice.faults,
                  "Let a platform call fail: every one, the Nth, or the Nth and all later ones",
                  "NAME[#N][+]=CODE");
    group->add_option("--save", choice.save, "Write the PC afterwards, as a description")
        ->option_text("FILE")
        ->excludes("--dry-run");
    group->add_flag("!--no-initialize", line.initialize, "Do not call Initialize first");
    group->add_flag("--help,-h", line.help, "Show this");
    group->add_flag("--version", line.version, "Show the version");
}

void AddOptions(CLI::App& app, CommandLine& line) {
    app.set_help_flag();
    app.allow_windows_style_options(false);
    AddPcOptions(app, line.choice);
    AddOtherOptions(app, line);
}

std::vector<std::string> OptionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* const group : app.get_subcommands({})) {
        for (const CLI::Option* const option : group->get_options()) {
            for (const std::string& name : option->get_lnames())
                names.push_back("--" + name);
        }
    }
    return names;
}

std::string Message(const CLI::ParseError& error) {
    std::string text = error.what();
    constexpr std::string_view excludes = " excludes ";
    if (const size_t at = text.find(excludes);
        at != std::string::npos && error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExcludesError)) {
        return text.replace(at, excludes.size(), " and ") + " cannot be given together";
    }
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::ArgumentMismatch)) return text;
    const bool missing = text.find("missing") != std::string::npos;
    return text.substr(0, text.find(':')) + (missing ? " needs a value" : " can be given only once");
}

// The options that were given. Throws WrongUse for one with an empty value.
std::vector<std::string> GivenOptions(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* const group : app.get_subcommands({})) {
        for (const CLI::Option* const option : group->get_options()) {
            if (option->count() == 0) continue;
            names.push_back("--" + option->get_lnames().front());
            for (const std::string& value : option->results()) {
                if (value.empty()) throw WrongUse(names.back() + ": the value is empty");
            }
        }
    }
    return names;
}

}  // namespace

CommandLine ReadCommandLine(const std::vector<std::string>& words) {
    CommandLine line;
    std::vector<std::string> positional;
    CLI::App app;
    AddOptions(app, line);
    app.add_option("command", positional);
    app.allow_extras();
    try {
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::ParseError& error) {
        throw WrongUse(Message(error));
    }
    for (const std::string& unknown : app.remaining(true)) {
        throw WrongUse(UnknownWord("option", unknown.substr(0, unknown.find('=')), OptionNames(app)));
    }
    line.options = GivenOptions(app);
    if (positional.empty()) return line;
    line.command = positional.front();
    line.arguments.assign(positional.begin() + 1, positional.end());
    return line;
}

std::string OptionsText() {
    CommandLine line;
    CLI::App app;
    AddOptions(app, line);
    std::string text;
    for (const CLI::App* const group : app.get_subcommands({})) {
        std::vector<std::vector<std::string>> rows;
        for (const CLI::Option* const option : group->get_options()) {
            rows.push_back({"--" + option->get_lnames().front() + " " + option->get_option_text(),
                            option->get_description()});
        }
        text += "\n" + group->get_group() + ":\n" + Table(rows, "  ");
    }
    return text;
}
