// Arguments and exit codes of mifread.
#include <csignal>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

#include "command.h"
#include "mifhost/document.h"

namespace
{

using mifread::ExitCode;
using mifread::Options;

constexpr const char *exitCodes = "Exit codes:\n"
                                  "  0  everything was converted\n"
                                  "  1  converted with losses, or inputs failed in different ways\n"
                                  "  2  wrong usage\n"
                                  "  3  a file or plug-in cannot be opened, read or written\n"
                                  "  4  not a MIF document\n"
                                  "  5  a limit was reached";

void addSharedOptions(CLI::App &command, Options &options)
{
    command.add_option("-o,--output", options.output, "Write to this file instead of standard output")
        ->type_name("FILE");
    command.add_option("--buffer", options.bufferSize, "The reader's token buffer, 65536 bytes if not given")
        ->type_name("BYTES")
        ->check(CLI::Range(std::uint32_t{1}, mifhost::DocumentOptions::largestBuffer));
    command.add_option("--plugin", options.plugin, "Read with this reader plug-in instead of the built-in one")
        ->type_name("PATH");
}

int run(int argumentCount, char **arguments)
{
    Options options;
    CLI::App program("Reads MIF documents.", "mifread");
    program.set_version_flag("--version", "mifread " MIFREAD_VERSION);
    program.require_subcommand(1);
    program.footer(exitCodes);

    CLI::App *text = program.add_subcommand("text", "Write the text of documents, in UTF-8");
    text->add_option("FILE", options.inputs, "The documents; - is standard input")->required()->type_name("");
    addSharedOptions(*text, options);

    CLI::App *tokens = program.add_subcommand("tokens", "List the token stream of a document, one token a line");
    tokens->add_option("FILE", options.inputs, "The document; - is standard input")
        ->required()
        ->expected(1)
        ->type_name("");
    addSharedOptions(*tokens, options);

    CLI::App *objects =
        program.add_subcommand("objects", "Write the embedded objects of a document to files and list them");
    objects->add_option("FILE", options.inputs, "The document; - is standard input")
        ->required()
        ->expected(1)
        ->type_name("");
    objects->add_option("-d,--directory", options.folder, "Write the objects to this folder, made if it is missing")
        ->required()
        ->type_name("DIR");
    addSharedOptions(*objects, options);

    try {
        program.parse(argumentCount, arguments);
    } catch (const CLI::Success &wish) { // --help and --version
        return program.exit(wish);
    } catch (const CLI::ParseError &error) {
        std::cerr << "mifread: " << error.what() << "\nmifread: see mifread --help\n";
        return static_cast<int>(ExitCode::Usage);
    }
    if (text->parsed()) {
        return static_cast<int>(runText(options));
    }
    return static_cast<int>(tokens->parsed() ? runTokens(options) : runObjects(options));
}

} // namespace

int main(int argumentCount, char **arguments)
{
    // A reader of the output that goes away is a write error like others.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return run(argumentCount, arguments);
    } catch (const std::exception &error) {
        std::cerr << "mifread: " << error.what() << '\n';
        return static_cast<int>(ExitCode::Limit); // memory is exhausted
    }
}
