// Arguments and exit codes of mifread.
#include <algorithm>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "batch.h"
#include "command.h"
#include "interruption.h"
#include "mifhost/document.h"
#include "options.h"
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
const CLI::Validator isPositive = CLI::Validator(CLI::PositiveNumber).description("");
const CLI::Validator isNotEmpty([](const std::string &value) { return value.empty() ? "must not be empty" : ""; }, "");

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
    command
        ->add_option("--max-memory", options.maxMemory,
                     "The most memory that reading a document may take; 1G if not given")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false).description(""))
        ->check(isPositive);
    command
        ->add_option("--max-output", options.maxOutput,
                     "The most that may be written for a document; 100 times its size, but at least 64M, if not given")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false).description(""))
        ->check(isPositive);
    command
        ->add_option("--max-work", options.maxWork,
                     "The most bytes that may be read and turned into tokens for a document; 200 times its size, but "
                     "at least 256M, if not given")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false).description(""))
        ->check(isPositive);
    command
        ->add_option("--max-input", options.maxInput, "The largest document to be read; 2G less one byte if not given")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false).description(""))
        ->check(isPositive);
    command
        ->add_option("--timeout", options.timeout,
                     "The most processor time for a document, 0 for any; if not given, 300 for each of several "
                     "documents, any for one")
        ->type_name("SECONDS")
        ->check(CLI::Validator(CLI::NonNegativeNumber).description(""));
    command->add_option("--buffer", options.bufferSize, "The reader's token buffer, 65536 bytes if not given")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false).description(""))
        ->check(CLI::Range(std::uint32_t{1}, mifhost::DocumentOptions::largestBuffer));
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
        ->expected(1, CLI::detail::expected_max_vector_size);
    command->add_flag("-r,--recursive", options.recursive, "Take all .mif documents in the given folders");
    command->add_option("-j,--jobs", options.jobs, "Documents to convert at once; one for each processor if not given")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    command->add_flag("--fail-fast", options.failFast, "Stop at the first document that fails");
    command->add_option("--report", options.report, "Write how each document fared to this file, as JSON")
        ->type_name("FILE")
        ->check(isNotEmpty);
    command->add_flag("-q,--quiet", options.quiet, "Show no progress and no summary, only what failed or was lost");
    return command;
}

void addFolder(CLI::App &command, Options &options)
{
    command
        .add_option("-d,--directory", options.folder,
                    "Write a file for each document to this folder, made if it is missing; folders keep their tree")
        ->type_name("DIR")
        ->check(isNotEmpty)
        ->excludes(command.get_option("--output"));
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

int run(std::vector<std::string> arguments)
{
    Options options;
    mifread::Command command;
    CLI::App program("Reads MIF documents.", "mifread");
    program.set_version_flag("--version", "mifread " MIFREAD_VERSION);
    program.require_subcommand(1);
    program.allow_windows_style_options(false); // a / begins a path on all systems
    program.footer(exitCodes);

    CLI::App *text = addBatchCommand(program, "text", "Write the text of documents, in UTF-8", options);
    addFolder(*text, options);
    text->callback([&] { command = mifread::textCommand(); });

    CLI::App *html = addBatchCommand(program, "html", "Write a page in HTML that shows the document", options);
    addFolder(*html, options);
    html->callback([&] { command = mifread::htmlCommand(); });

    CLI::App *objects = addBatchCommand(program, "objects", "Write embedded objects to files and list them", options);
    objects
        ->add_option(
            "-d,--directory", options.folder,
            "Write to this folder, made if it is missing; where there may be several documents, to a folder in "
            "it for each")
        ->required()
        ->type_name("DIR")
        ->check(isNotEmpty);
    objects->callback([&] { command = mifread::objectsCommand(); });

    bool withObjects = false;
    CLI::App *json = addBatchCommand(program, "json", "Write the token stream of documents as JSON Lines", options);
    json->add_flag("--objects", withObjects, "Write the data of embedded objects as well, in Base64");
    addFolder(*json, options);
    json->callback([&] { command = mifread::jsonCommand(withObjects); });

    bool infoAsJson = false;
    CLI::App *info = addBatchCommand(program, "info", "Tell what is in documents", options);
    info->add_flag("--json", infoAsJson, "Write one JSON object a document");
    addFolder(*info, options);
    info->callback([&] { command = mifread::infoCommand(infoAsJson); });

    CLI::App *tokens = addCommand(program, "tokens", "List the token stream of a document, one token a line", options);
    tokens->callback([&] { command = mifread::tokensCommand(); });

    try {
        protectBrackets(arguments);
        std::reverse(arguments.begin(), arguments.end()); // as the parser wants them
        program.parse(std::move(arguments));
    } catch (const CLI::Success &wish) { // --help and --version
        return program.exit(wish);
    } catch (const CLI::ParseError &error) {
        std::cerr << "mifread: " << error.what() << "\nmifread: see mifread --help\n";
        return static_cast<int>(ExitCode::Usage);
    }
    return static_cast<int>(mifread::convertDocuments(options, command));
}

} // namespace

int mifread::runProgram(std::vector<std::string> arguments)
{
    system::prepareStandardStreams();
    watchSignals();
    int result = 0;
    try {
        result = run(std::move(arguments));
    } catch (const std::exception &error) {
        std::cerr << "mifread: " << error.what() << '\n';
        result = static_cast<int>(ExitCode::Limit); // memory is exhausted
    }
    // Ended by the user: the shell shall see it, too.
    if (const int number = caughtSignal(); number != 0) {
        system::endBySignal(number);
    }
    return result;
}
