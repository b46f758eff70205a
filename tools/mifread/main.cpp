// Arguments and exit codes of mifread.
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <exception>
#include <map>
#include <numeric>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <unistd.h>

#include "batch.h"
#include "command.h"
#include "interruption.h"
#include "mifhost/document.h"
#include "options.h"
#include "output.h"
#include "progress.h"
#include "system.h"

namespace
{

using mifread::ExitCode;
using mifread::Options;

constexpr const char *exitCodes =
    "Exit codes:\n"
    "  0  everything was converted\n"
    "  1  converted with losses, or some documents failed and others did not, or they failed in different ways\n"
    "  2  wrong usage\n"
    "  3  a file or plug-in cannot be opened, read or written\n"
    "  4  not a MIF document\n"
    "  5  a limit was reached";

// As the help shows them: not at all.
const std::map<std::string, std::uint32_t> encodings = {{"auto", MIF_ENCODING_AUTO},
                                                        {"mif", MIF_ENCODING_MIF},
                                                        {"windows-1252", MIF_ENCODING_WINDOWS_1252},
                                                        {"utf-8", MIF_ENCODING_UTF_8}};
const CLI::Validator isPositive([](const std::string &value) { return value == "0" ? "must be more than 0" : ""; }, "");
// In front of the parser's own reading of a number, which takes -5 and more than 64 bits for huge numbers, and 010
// for 8.
const CLI::Validator isDecimal(
    [](std::string &value) -> std::string {
        std::uint64_t number = 0;
        const char *const end = value.data() + value.size();
        const auto [rest, error] = std::from_chars(value.data(), end, number);
        const bool hasUnit = std::all_of(rest, end, [](char letter) { return std::isalpha(letter & 0x7F) != 0; });
        if (error == std::errc::result_out_of_range) {
            return "is too large";
        }
        if (error != std::errc() || !hasUnit) {
            return "must be a number of bytes, as such or with K, M or G behind it";
        }
        value = std::to_string(number) + std::string(rest, end);
        return "";
    },
    "");
const CLI::Validator isSeconds(
    [](const std::string &value) {
        constexpr double most = 1e9;
        double seconds = 0;
        const bool isNumber = CLI::detail::lexical_cast(value, seconds) && seconds >= 0 && seconds <= most;
        return isNumber ? "" : "must be a number of seconds from 0 to 1e9";
    },
    "");
const CLI::Validator isNotEmpty([](const std::string &value) { return value.empty() ? "must not be empty" : ""; }, "");

// Adds an option whose value is a number of bytes, as such or with a unit.
template <typename Size>
CLI::Option *addSize(CLI::App &command, const char *name, Size &value, const char *description)
{
    CLI::Option *option = command.add_option(name, value, description);
    return option->type_name("SIZE")->transform(CLI::AsSizeValue(false).description(""))->transform(isDecimal);
}

// Adds a command that takes one document.
CLI::App *addCommand(CLI::App &program, const char *name, const char *description, Options &options)
{
    CLI::App *command = program.add_subcommand(name, description);
    command->add_option("FILE", options.inputs, "The document; - is standard input")
        ->required()
        ->expected(1)
        ->type_name("");
    command->add_option("-o,--output", options.output, "Write to this file instead of standard output")
        ->type_name("FILE")
        ->check(isNotEmpty);
    addSize(*command, "--max-memory", options.maxMemory,
            "The most memory that reading a document may take; 1G if not given")
        ->check(isPositive);
    addSize(*command, "--max-output", options.maxOutput,
            "The most that may be written for a document; 100 times its size, but at least 64M, if not given")
        ->check(isPositive);
    addSize(*command, "--max-work", options.maxWork,
            "The most bytes that may be read and turned into tokens for a document; 200 times its size, but at least "
            "256M, if not given")
        ->check(isPositive);
    addSize(*command, "--max-input", options.maxInput, "The largest document to be read; 2G less one byte if not given")
        ->check(isPositive);
    command
        ->add_option("--timeout", options.timeout,
                     "The most processor time for a document, 0 for any; if not given, 300 for each of several "
                     "documents, any for one")
        ->type_name("SECONDS")
        ->check(isSeconds);
    addSize(*command, "--buffer", options.bufferSize, "The reader's token buffer, 65536 bytes if not given")
        ->check(CLI::Range(std::uint32_t{1}, mifhost::DocumentOptions::largestBuffer));
    command
        ->add_option("--encoding", options.encoding,
                     "What bytes above 127 in strings are: auto, mif, windows-1252 or utf-8; auto if not given")
        ->type_name("NAME")
        ->transform(CLI::CheckedTransformer(encodings).description(""));
    command->add_option("--plugin", options.plugin, "Read with this reader plug-in instead of the built-in one")
        ->type_name("PATH");
    return command;
}

// Adds a command that takes many documents.
CLI::App *addBatchCommand(CLI::App &program, const char *name, const char *description, Options &options)
{
    CLI::App *command = addCommand(program, name, description, options);
    CLI::Option *inputs = command->get_option("FILE");
    inputs->description("The documents, or with -r folders of them; - is standard input")
        ->required(false)
        ->expected(1, CLI::detail::expected_max_vector_size);
    CLI::Option *list = command->add_option("--files-from", options.list,
                                            "Take the documents that this file names, too, one a line; - is standard "
                                            "input");
    list->type_name("FILE")->check(isNotEmpty);
    command->add_flag("-0,--null", options.isListNulSeparated, "The names in that file end with NUL, not with lines")
        ->needs(list);
    command->add_flag("-r,--recursive", options.recursive, "Take all .mif documents in the given folders");
    command->add_option("-j,--jobs", options.jobs, "Documents to convert at once; one for each processor if not given")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    command->add_flag("--fail-fast", options.failFast, "Stop at the first document that fails");
    command->add_flag_callback(
        "--plain", [&options] { options.form = mifhost::TokenForm::Plain; },
        "Read the plain stream, which knows less of what the author wrote");
    command->add_flag("--dry-run", options.dryRun, "Only say what would be written where");
    command->add_option("--report", options.report, "Write how each document fared to this file, as JSON")
        ->type_name("FILE")
        ->check(isNotEmpty);
    command->add_flag("-q,--quiet", options.quiet, "Show no progress and no summary, only what failed or was lost");
    command->parse_complete_callback([&options] {
        if (options.inputs.empty() && options.list.empty()) {
            throw CLI::RequiredError("FILE");
        }
    });
    return command;
}

void addFolder(CLI::App &command, Options &options)
{
    CLI::Option *folder = command.add_option(
        "-d,--directory", options.folder,
        "Write a file for each document to this folder, made if it is missing; folders keep their tree");
    folder->type_name("DIR")->check(isNotEmpty)->excludes(command.get_option("--output"));
    command.add_flag("--update", options.update, "Leave documents alone whose results are newer")->needs(folder);
}

// The argument parser takes brackets around an argument for a list; in front of a file's name ./ changes nothing else.
void protectBrackets(std::vector<std::string> &arguments)
{
    for (std::string &argument : arguments) {
        if (argument.starts_with('[')) {
            argument.insert(0, "./");
        }
    }
}

// How many letters have to be put in, taken out or changed to make one word of the other.
std::size_t editDistance(std::string_view from, std::string_view to)
{
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : from) {
        std::size_t diagonal = row[0]++;
        for (std::size_t i = 0; i < to.size(); ++i) {
            const std::size_t changed = diagonal + (letter == to[i] ? 0 : 1);
            diagonal = row[i + 1];
            row[i + 1] = std::min({changed, diagonal + 1, row[i] + 1});
        }
    }
    return row.back();
}

// What to say when the first argument, empty for none, is no command: which there are, and which one was probably
// meant.
std::string describeCommands(const CLI::App &program, const std::string &argument)
{
    constexpr std::size_t mostMistakes = 2;
    std::vector<std::string> names;
    std::string meant;
    std::size_t fewest = mostMistakes + 1;
    for (const CLI::App *command : program.get_subcommands({})) {
        names.push_back(command->get_name());
        const std::size_t mistakes = editDistance(argument, names.back());
        if (mistakes < fewest) {
            fewest = mistakes;
            meant = names.back();
        }
    }
    const std::string commands = fmt::format("{}", fmt::join(names, ", "));
    if (argument.empty()) {
        return "there is no command; give one of " + commands;
    }
    const std::string hint = meant.empty() ? names.front() + " " + argument : meant;
    return fmt::format("{} is no command; there are {}. Did you mean: mifread {}?", argument, commands, hint);
}

bool isCommand(const CLI::App &program, const std::string &argument)
{
    const auto commands = program.get_subcommands({});
    return std::any_of(commands.begin(), commands.end(),
                       [&argument](const CLI::App *command) { return command->get_name() == argument; });
}

ExitCode refuseUsage(const std::string &reason)
{
    mifread::Progress messages(false, 0, 0);
    messages.complain(reason);
    messages.complain("see mifread --help");
    return ExitCode::Usage;
}

// Help and version go to standard output like any result.
void tell(const CLI::App &program, const CLI::Success &wish)
{
    std::ostringstream text;
    program.exit(wish, text, text);
    mifread::OutputFile output("-");
    output.text() += text.str();
    output.commit();
}

// The functions below add a command each, whose callback sets what it is to make of documents.

void addText(CLI::App &program, Options &options, mifread::Command &command)
{
    CLI::App *text = addBatchCommand(program, "text", "Write the text of documents, in UTF-8", options);
    addFolder(*text, options);
    text->callback(
        [&] { command = mifread::textCommand(options.folder.empty() && mifread::leadsToTerminal(options.output)); });
}

void addHtml(CLI::App &program, Options &options, mifread::Command &command)
{
    CLI::App *html = addBatchCommand(program, "html", "Write a page in HTML that shows the document", options);
    addFolder(*html, options);
    html->add_flag(
            "--embed-pictures", options.embedPictures,
            "Take pictures in files that a document names into its page: those in its own folder and below, with "
            "--embed-pictures=all any")
        ->check(CLI::IsMember({"true", "all"}).description(""));
    html->callback([&] {
        using mifread::EmbedPictures;
        const EmbedPictures some = options.embedPictures.empty() ? EmbedPictures::None : EmbedPictures::Beside;
        command = mifread::htmlCommand(options.embedPictures == "all" ? EmbedPictures::All : some);
    });
}

void addObjects(CLI::App &program, Options &options, mifread::Command &command)
{
    CLI::App *objects = addBatchCommand(program, "objects", "Write embedded objects to files and list them", options);
    objects
        ->add_option("-d,--directory", options.folder,
                     "Write to this folder, made if it is missing; where there may be several documents, to a folder "
                     "in it for each")
        ->required()
        ->type_name("DIR")
        ->check(isNotEmpty);
    CLI::Option *json = objects->add_flag("--json", options.asJson, "List the objects as JSON, one a line");
    CLI::Option *null = objects->get_option("--null");
    null->description("End names with NUL, not with lines: in the list that is written and in that of --files-from");
    null->remove_needs(objects->get_option("--files-from"));
    null->excludes(json);
    objects->callback([&] {
        using mifread::Listing;
        const Listing rows = options.isListNulSeparated ? Listing::NulRows : Listing::Rows;
        command = mifread::objectsCommand(options.asJson ? Listing::Json : rows);
    });
}

void addJson(CLI::App &program, Options &options, mifread::Command &command)
{
    CLI::App *json = addBatchCommand(program, "json", "Write the token stream of documents as JSON Lines", options);
    json->add_flag("--objects", options.withObjects, "Write the data of embedded objects as well, in Base64");
    addFolder(*json, options);
    json->callback([&] { command = mifread::jsonCommand(options.withObjects); });
}

void addInfo(CLI::App &program, Options &options, mifread::Command &command)
{
    CLI::App *info = addBatchCommand(program, "info", "Tell what is in documents", options);
    info->add_flag("--json", options.asJson, "Write one JSON object a document");
    addFolder(*info, options);
    info->callback([&] { command = mifread::infoCommand(options.asJson); });
}

void addTokens(CLI::App &program, Options &options, mifread::Command &command)
{
    CLI::App *tokens = addCommand(program, "tokens", "List the token stream of a document, one token a line", options);
    tokens->add_flag("--extended", options.listsExtended, "List the extended stream, which the other commands read");
    tokens->callback([&] {
        options.form = options.listsExtended ? mifhost::TokenForm::Extended : mifhost::TokenForm::Raw;
        command = mifread::tokensCommand();
    });
}

ExitCode run(std::vector<std::string> arguments)
{
    Options options;
    mifread::Command command;
    CLI::App program("Reads MIF documents.", "mifread");
    program.set_version_flag("--version", "mifread " MIFREAD_VERSION);
    program.require_subcommand(1);
    program.allow_windows_style_options(false); // a / begins a path on all systems
    program.footer(exitCodes);
    for (const auto add : {addText, addHtml, addObjects, addJson, addInfo, addTokens}) {
        add(program, options, command);
    }
    const std::string first = arguments.empty() ? "" : arguments.front();
    if (!first.starts_with('-') && !isCommand(program, first)) {
        return refuseUsage(describeCommands(program, first));
    }
    try {
        protectBrackets(arguments);
        std::reverse(arguments.begin(), arguments.end()); // as the parser wants them
        program.parse(std::move(arguments));
    } catch (const CLI::Success &wish) { // --help and --version
        tell(program, wish);
        return ExitCode::Success;
    } catch (const CLI::ParseError &error) {
        return refuseUsage(error.what());
    }
    return mifread::convertDocuments(options, command);
}

} // namespace

int mifread::runProgram(std::vector<std::string> arguments)
{
    system::prepareStandardStreams();
    watchSignals();
    ExitCode result = ExitCode::Success;
    try {
        result = run(std::move(arguments));
    } catch (const Interrupted &error) {
        if (caughtSignal() != system::brokenPipeSignal()) {
            Progress(false, 0, 0).complain(error.what());
        }
    } catch (const OutputError &error) { // of help
        Progress(false, 0, 0).complain(error.what());
        result = ExitCode::Io;
    } catch (const std::exception &error) { // memory is exhausted
        Progress(false, 0, 0).complain(error.what());
        result = ExitCode::Limit;
    }
    // Ended by the user: the shell shall see it, too.
    if (const int number = caughtSignal(); number != 0) {
        system::endBySignal(number);
    }
    return static_cast<int>(result);
}
