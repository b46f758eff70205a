#include "report.h"

#include <string_view>

#include "mifconvert/json_text.h"
#include <fmt/format.h>

namespace mifread
{

using mifconvert::Json;

namespace
{

std::string_view statusName(ExitCode code)
{
    switch (code) {
    case ExitCode::Success:
        return "converted";
    case ExitCode::Losses:
        return "losses";
    case ExitCode::NotMif:
        return "not-mif";
    case ExitCode::Limit:
        return "limit";
    default:
        return "io-error";
    }
}

} // namespace

Report::Report(const std::string &path)
{
    if (!path.empty()) {
        file_ = std::make_unique<OutputFile>(path);
        file_->text() += "{\"documents\": [";
    }
}

void Report::add(const Outcome &outcome)
{
    const bool isFirst = converted_ + lossy_ + failures_.size() == 0;
    if (outcome.hasFailed()) {
        failures_.push_back(outcome.messages.front());
        failureKinds_.insert(outcome.code);
    } else if (outcome.code == ExitCode::Losses) {
        ++lossy_;
    } else {
        ++converted_;
    }
    if (file_ == nullptr) {
        return;
    }
    Json entry = {
        {"input", outcome.input}, {"status", statusName(outcome.code)}, {"exitCode", static_cast<int>(outcome.code)},
        {"bytes", outcome.size},  {"seconds", outcome.seconds},         {"messages", outcome.messages}};
    if (!outcome.result.empty()) {
        entry["result"] = outcome.result;
    }
    if (outcome.position.has_value()) {
        entry["position"] = *outcome.position;
    }
    file_->text() += isFirst ? "\n" : ",\n";
    file_->text() += mifconvert::dumpJson(entry);
    file_->writeFullBlocks();
}

void Report::finish(int exitCode, int signal)
{
    if (file_ == nullptr) {
        return;
    }
    const Json counts = {{"converted", converted_}, {"losses", lossy_}, {"failed", failures_.size()}};
    file_->text() += fmt::format("\n], \"counts\": {}, \"interrupted\": {}, \"exitCode\": {}}}\n",
                                 mifconvert::dumpJson(counts), signal != 0, exitCode);
    file_->commit();
}

void Report::summarize(Progress &progress) const
{
    const std::size_t all = converted_ + lossy_ + failures_.size();
    if (all < 2) {
        return;
    }
    std::string counts = fmt::format("{} documents: {} converted", all, converted_);
    if (lossy_ > 0) {
        counts += fmt::format(", {} converted with losses", lossy_);
    }
    if (!failures_.empty()) {
        counts += fmt::format(", {} failed:", failures_.size());
    }
    progress.complain(counts);
    for (const std::string &failure : failures_) {
        progress.complain("failed: " + failure);
    }
}

ExitCode Report::exitCode() const
{
    if (failures_.empty()) {
        return lossy_ > 0 ? ExitCode::Losses : ExitCode::Success;
    }
    return failureKinds_.size() == 1 && !anyConverted() ? *failureKinds_.begin() : ExitCode::Losses;
}

} // namespace mifread
