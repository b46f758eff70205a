#include "report.h"

#include <string_view>

#include "mifconvert/json_text.h"
#include <fmt/format.h>

namespace mifread
{

using mifconvert::Json;

namespace
{

std::string_view statusName(const Outcome &outcome)
{
    if (outcome.isLeftAlone) {
        return "left-alone";
    }
    switch (outcome.code) {
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
    const bool isFirst = converted_ + lossy_ + leftAlone_ + failures_.size() == 0;
    if (outcome.hasFailed()) {
        failures_.push_back(outcome.messages.front());
        failureKinds_.insert(outcome.code);
    } else if (outcome.isLeftAlone) {
        ++leftAlone_;
    } else if (outcome.code == ExitCode::Losses) {
        ++lossy_;
    } else {
        ++converted_;
    }
    if (file_ == nullptr) {
        return;
    }
    Json entry = {
        {"input", outcome.input}, {"status", statusName(outcome)}, {"exitCode", static_cast<int>(outcome.code)},
        {"bytes", outcome.size},  {"seconds", outcome.seconds},    {"messages", outcome.messages}};
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
    const Json counts = {{"converted", converted_},
                         {"losses", lossy_},
                         {"leftAlone", leftAlone_},
                         {"failed", failures_.size()},
                         {"notBegun", notBegun_}};
    file_->text() += fmt::format("\n], \"counts\": {}, \"interrupted\": {}, \"exitCode\": {}}}\n",
                                 mifconvert::dumpJson(counts), signal != 0, exitCode);
    file_->commit();
}

void Report::summarize(Progress &progress) const
{
    const std::size_t all = converted_ + lossy_ + leftAlone_ + failures_.size() + notBegun_;
    if (all < 2) {
        return;
    }
    std::string counts = fmt::format("{} documents: {} converted", all, converted_);
    if (lossy_ > 0) {
        counts += fmt::format(", {} converted with losses", lossy_);
    }
    if (leftAlone_ > 0) {
        counts += fmt::format(", {} left alone", leftAlone_);
    }
    if (notBegun_ > 0) {
        counts += fmt::format(", {} not begun", notBegun_);
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
    return failureKinds_.size() == 1 && !anyConverted() && leftAlone_ == 0 ? *failureKinds_.begin() : ExitCode::Losses;
}

} // namespace mifread
