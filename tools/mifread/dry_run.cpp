#include "dry_run.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

#include "display.h"
#include "interruption.h"
#include "output.h"
#include "paths.h"
#include "plan.h"
#include "report.h"

namespace mifread
{

namespace
{

namespace fs = std::filesystem;

std::string findFailure(const Input &input)
{
    std::error_code error;
    if (input.failure.empty() && input.path != "-" && !fs::exists(fs::status(pathOf(input.path), error))) {
        return "cannot open: " + error.message();
    }
    return input.failure;
}

std::string findTarget(const Input &input, const Options &options, const Command &command)
{
    if (options.folder.empty()) {
        return options.output;
    }
    return textOf(command.results == Results::Files ? input.result / "" : input.result);
}

void tell(Output &output, const std::string &line)
{
    output.text() += shown(line) + '\n';
    output.writeFullBlocks();
}

std::string arrow(std::string_view what, const std::string &where)
{
    return fmt::format("{} -> {}", what, where == "-" ? "standard output" : where);
}

} // namespace

ExitCode showPlan(const std::vector<Input> &inputs, const Options &options, const Command &command, Progress &messages)
{
    Report report("");
    OutputFile lines("-");
    for (const Input &input : inputs) {
        throwIfInterrupted();
        Outcome outcome;
        if (const std::string failure = findFailure(input); !failure.empty()) {
            outcome.code = ExitCode::Io;
            outcome.messages.push_back(fmt::format("{}: {}", input.path, failure));
            messages.complain(outcome.messages.front());
        } else {
            outcome.isLeftAlone = options.update && isUpToDate(input);
            tell(lines, outcome.isLeftAlone ? input.path + ": left alone"
                                            : arrow(input.path, findTarget(input, options, command)));
        }
        report.add(outcome);
    }
    if (command.results == Results::Files) {
        tell(lines, arrow("the list of objects", options.output));
    }
    if (!options.report.empty()) {
        tell(lines, arrow("the report", options.report));
    }
    lines.commit();
    return report.exitCode();
}

} // namespace mifread
