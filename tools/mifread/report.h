// The account of a run: how each document fared.
#ifndef MIFREAD_REPORT_H
#define MIFREAD_REPORT_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "options.h"
#include "output.h"
#include "progress.h"

namespace mifread
{

// How one document fared.
struct Outcome {
    std::string input;                     // its path
    std::string result;                    // the path of its result; empty when there is no file of its own
    ExitCode code = ExitCode::Success;     // Success, Losses, or how it failed
    std::vector<std::string> messages;     // what failed or was lost
    std::optional<std::uint64_t> position; // the byte of the document where it failed, where it is known
    std::uint64_t size = 0;                // of the document, in bytes
    double seconds = 0;
    bool isLeftAlone = false; // its result is newer

    bool hasFailed() const noexcept
    {
        return code != ExitCode::Success && code != ExitCode::Losses;
    }
};

// Takes account of documents, in their order.
class Report
{
public:
    // path  of the file for programs; empty for none. Throws OutputError.
    explicit Report(const std::string &path);

    void add(const Outcome &outcome);

    // count  how many documents the run was ended before
    void setNotBegun(std::size_t count) noexcept
    {
        notBegun_ = count;
    }

    // Completes the file for programs. Throws OutputError.
    // exitCode  of the program
    // signal    that ended the run early; 0 for none
    void finish(int exitCode, int signal);

    // Tells a person about the run as a whole when there were several documents: how many fared how, and again, in one
    // place, which ones failed and why.
    void summarize(Progress &progress) const;

    ExitCode exitCode() const;

    bool anyFailed() const noexcept
    {
        return !failures_.empty();
    }
    bool anyConverted() const noexcept
    {
        return converted_ + lossy_ > 0;
    }

private:
    std::unique_ptr<OutputFile> file_;
    std::size_t converted_ = 0; // without losses
    std::size_t lossy_ = 0;
    std::size_t leftAlone_ = 0;
    std::size_t notBegun_ = 0;
    std::vector<std::string> failures_; // the messages
    std::set<ExitCode> failureKinds_;
};

} // namespace mifread

#endif
