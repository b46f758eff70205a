#include "conversion.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "interruption.h"
#include "mifhost/error.h"
#include "mifhost/source_check.h"
#include "paths.h"

namespace mifread
{

namespace
{

// More losses of one kind help nobody.
constexpr std::uint64_t mostTold = 20;

// What the reader lost of a document that it read to its end.
void addReaderLosses(const mifhost::Document &document, std::vector<std::string> &losses)
{
    const mifhost::SourceCheck &check = document.check();
    if (check.openStatements() > 0) {
        losses.push_back(
            fmt::format("{}: byte {}: the document ends inside the statement that begins here (open statements: {})",
                        document.name(), check.innermostOpen(), check.openStatements()));
    }
    if (check.droppedStatements() > 0) {
        losses.push_back(fmt::format(
            "{}: byte {}: the first of the statements or lines of embedded objects that were dropped because they have "
            "more than {} bytes begins here (dropped: {}, the longest: {} bytes)",
            document.name(), check.firstDropped(), mifhost::SourceCheck::maximumStatement, check.droppedStatements(),
            check.longestDropped()));
    }
    if (check.cutStrings() > 0) {
        losses.push_back(
            fmt::format("{}: byte {}: the first NUL byte in a string, of which the rest is lost (strings: {})",
                        document.name(), check.firstCut(), check.cutStrings()));
    }
}

} // namespace

Conversion::Conversion(mifhost::Document &document, Output &output, std::filesystem::path folder, Claims &claims,
                       std::uint64_t limit, Progress progress)
    : document_(document), output_(output), folder_(std::move(folder)), claims_(claims), limit_(limit),
      progress_(std::move(progress)), charset_(document.isExtended()), outputStart_(output.size())
{
}

std::filesystem::path Conversion::claimFile(const std::string &name)
{
    std::filesystem::path path = folder_ / name;
    const std::string obstacle = claims_.claim(textOf(path));
    if (!obstacle.empty()) {
        throw OutputError("", std::nullopt, obstacle);
    }
    return path;
}

const mifhost::Token *Conversion::next()
{
    keepGoing();
    return document_.next();
}

void Conversion::keepGoing(std::uint64_t bytesElsewhere)
{
    bytesElsewhere_ += bytesElsewhere;
    const std::uint64_t written = output_.size() - outputStart_ + bytesElsewhere_;
    if (written > limit_) {
        std::string &text = output_.text();
        const std::uint64_t excess = std::min<std::uint64_t>(written - limit_, text.size());
        text.resize(text.size() - static_cast<std::size_t>(excess));
        throw mifhost::LimitReached(document_.name(), document_.bytesRead(),
                                    fmt::format("the output limit of {} bytes is reached", limit_));
    }
    output_.writeFullBlocks();
    throwIfInterrupted();
    if (document_.percent() != percentReported_) {
        percentReported_ = document_.percent();
        progress_(percentReported_);
    }
}

void Conversion::addLoss(std::string_view kind, std::string message)
{
    if (++lossCounts_[kind] <= mostTold) {
        losses_.push_back(std::move(message));
    }
}

std::vector<std::string> Conversion::losses() const
{
    std::vector<std::string> all = losses_;
    for (const auto &[kind, count] : lossCounts_) {
        if (count > mostTold) {
            all.push_back(
                fmt::format("{}: {}: {}, of which the first {} are told", document_.name(), kind, count, mostTold));
        }
    }
    if (charset_.undefinedBytes() > 0) {
        all.push_back(fmt::format("{}: characters that Windows-1252 does not define were replaced by U+FFFD: {}",
                                  document_.name(), charset_.undefinedBytes()));
    }
    if (document_.percent() >= 100) {
        addReaderLosses(document_, all);
    }
    return all;
}

} // namespace mifread
