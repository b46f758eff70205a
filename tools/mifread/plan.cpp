#include "plan.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>

#include <fmt/format.h>

#include "interruption.h"
#include "paths.h"

namespace mifread
{

namespace
{

namespace fs = std::filesystem;

class Plan
{
public:
    Plan(std::vector<Input> &inputs, const Options &options, const Command &command, Claims &claims)
        : inputs_(inputs), options_(options), command_(command), claims_(claims)
    {
    }

    std::string make();

private:
    void addInputs();
    std::string claimOutputs();
    void findPaths();
    std::string findTwins();
    std::string claimResults();

    bool hasFiles() const
    {
        return command_.results == Results::Files;
    }

    std::vector<Input> &inputs_;
    const Options &options_;
    const Command &command_;
    Claims &claims_;
};

std::string Plan::make()
{
    const auto isStream = [](const Input &input) { return input.path == "-"; };
    if (std::count_if(inputs_.begin(), inputs_.end(), isStream) + (options_.list == "-" ? 1 : 0) > 1) {
        return "standard input is named twice";
    }
    addInputs();
    if (options_.folder.empty()) {
        return claimOutputs();
    }
    findPaths();
    for (const auto step : {&Plan::claimOutputs, &Plan::findTwins, &Plan::claimResults}) {
        if (std::string message = (this->*step)(); !message.empty()) {
            return message;
        }
    }
    return "";
}

void Plan::addInputs()
{
    for (const Input &input : inputs_) {
        throwIfInterrupted();
        claims_.addInput(input.path);
    }
    for (const std::string &file : {options_.list, options_.plugin}) {
        if (!file.empty()) {
            claims_.addInput(file);
        }
    }
}

void Plan::findPaths()
{
    const fs::path folder = pathOf(options_.folder);
    // A single document has the folder for itself.
    const bool isAlone = options_.inputs.size() == 1 && options_.list.empty() && !options_.recursive;
    for (Input &input : inputs_) {
        throwIfInterrupted();
        if (!input.failure.empty()) {
            continue;
        }
        input.result = hasFiles() && isAlone ? folder : folder / input.result;
        input.result += command_.extension;
        claims_.addFolder(hasFiles() ? input.result : input.result.parent_path());
    }
}

// The files that the documents share.
std::string Plan::claimOutputs()
{
    std::vector<std::string> outputs;
    if (options_.folder.empty() || hasFiles()) {
        outputs.push_back(options_.output);
    }
    if (!options_.report.empty()) {
        // Standard output first.
        outputs.insert(options_.report == "-" ? outputs.begin() : outputs.end(), options_.report);
    }
    for (const std::string &output : outputs) {
        if (std::string message = claims_.claim(output); !message.empty()) {
            return message;
        }
    }
    return "";
}

// Two documents with the same result fail, whichever of them would be converted first.
std::string Plan::findTwins()
{
    std::map<fs::path, Input *> places;
    for (Input &input : inputs_) {
        throwIfInterrupted();
        if (!input.failure.empty()) {
            continue;
        }
        const auto [found, isNew] = places.emplace(claims_.placeOf(input.result), &input);
        if (isNew) {
            continue;
        }
        Input &other = *found->second;
        input.failure =
            fmt::format("{} would be written twice: for {} and {}", textOf(input.result), other.path, input.path);
        if (input.isNamed && other.isNamed) {
            return input.failure;
        }
        other.failure = input.failure;
    }
    return "";
}

std::string Plan::claimResults()
{
    if (hasFiles()) { // their names are known only when they are met
        return "";
    }
    for (Input &input : inputs_) {
        throwIfInterrupted();
        if (!input.failure.empty()) {
            continue;
        }
        input.failure = claims_.claim(textOf(input.result));
        if (input.isNamed && !input.failure.empty()) {
            return input.failure;
        }
    }
    return "";
}

} // namespace

std::string planResults(std::vector<Input> &inputs, const Options &options, const Command &command, Claims &claims)
{
    return Plan(inputs, options, command, claims).make();
}

bool isUpToDate(const Input &input)
{
    std::error_code error;
    const fs::file_time_type result = fs::last_write_time(input.result, error);
    if (error || input.path == "-" || !fs::is_regular_file(input.result, error)) {
        return false;
    }
    const fs::file_time_type document = fs::last_write_time(pathOf(input.path), error);
    return !error && result > document;
}

} // namespace mifread
