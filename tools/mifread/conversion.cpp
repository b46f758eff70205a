#include "conversion.h"

#include <cstdio>
#include <new>
#include <set>
#include <string>

#include <fmt/format.h>

#include "mifhost/error.h"
#include "mifhost/plugin.h"
#include "mifhost/source_check.h"
#include "mifhost/stream.h"

namespace mifread
{

void complain(std::string_view message)
{
    fmt::print(stderr, "mifread: {}\n", message);
}

namespace
{

// Reports what the reader lost of a document that it read to its end. Returns whether it lost anything.
bool reportLosses(const std::string &name, const mifhost::SourceCheck &check)
{
    const std::size_t open = check.openStatements();
    const std::size_t dropped = check.droppedStatements();
    if (open > 0) {
        complain(
            fmt::format("{}: byte {}: the document ends inside the statement that begins here (open statements: {})",
                        name, check.innermostOpen(), open));
    }
    if (dropped > 0) {
        complain(fmt::format(
            "{}: byte {}: the first of the statements or lines of embedded objects that were dropped because they have "
            "more than {} bytes begins here (dropped: {}, the longest: {} bytes)",
            name, check.firstDropped(), mifhost::SourceCheck::maximumStatement, dropped, check.longestDropped()));
    }
    return open > 0 || dropped > 0;
}

ExitCode convertInput(const std::string &input, const mifhost::Plugin &plugin, const Options &options,
                      OutputFile &output, const Converter &convert)
{
    mifhost::FileStream stream(input);
    mifhost::DocumentOptions documentOptions;
    documentOptions.bufferSize = options.bufferSize;
    mifhost::Document document(plugin, stream, documentOptions);
    const bool isWritten = convert(document, output);
    const bool isRead = !reportLosses(document.name(), document.check());
    return isWritten && isRead ? ExitCode::Success : ExitCode::Losses;
}

// Reports the exception being handled, which concerns one input, and returns its exit code. An output that cannot be
// written concerns them all and goes on.
ExitCode reportFailure(const std::string &input)
{
    try {
        throw;
    } catch (const OutputError &) {
        throw;
    } catch (const mifhost::NotMif &error) {
        complain(error.what());
        return ExitCode::NotMif;
    } catch (const mifhost::LimitReached &error) {
        complain(error.what());
        return ExitCode::Limit;
    } catch (const mifhost::Error &error) {
        complain(error.what());
        return ExitCode::Io;
    } catch (const std::bad_alloc &) {
        complain(input + ": memory is exhausted");
        return ExitCode::Limit;
    }
}

ExitCode convertAll(const Options &options, const Converter &convert)
{
    const mifhost::Plugin plugin =
        options.plugin.empty() ? mifhost::Plugin::linked() : mifhost::Plugin::load(options.plugin);
    OutputFile output(options.output);
    std::set<ExitCode> failures;
    bool anyConverted = false;
    bool anyLosses = false;
    for (const std::string &input : options.inputs) {
        try {
            const ExitCode code = convertInput(input, plugin, options, output, convert);
            output.keepPart();
            anyConverted = true;
            anyLosses = anyLosses || code == ExitCode::Losses;
        } catch (...) {
            failures.insert(reportFailure(input));
            output.dropPart();
        }
    }
    if (anyConverted) {
        output.commit();
    }
    if (!failures.empty()) {
        return failures.size() == 1 ? *failures.begin() : ExitCode::Losses;
    }
    return anyLosses ? ExitCode::Losses : ExitCode::Success;
}

} // namespace

ExitCode convertInputs(const Options &options, const Converter &convert)
{
    try {
        return convertAll(options, convert);
    } catch (const mifhost::Error &error) { // the plug-in or the output
        complain(error.what());
        return ExitCode::Io;
    }
}

} // namespace mifread
