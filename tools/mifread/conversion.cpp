#include "conversion.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include "interruption.h"
#include "mifhost/error.h"
#include "paths.h"

namespace mifread
{

namespace
{

// More losses of one kind help nobody.
constexpr std::uint64_t mostTold = 20;

// What messages say of the losses of a kind; nothing for what is no text and no data of the document.
struct LossText {
    std::string_view first; // of the first one, which begins at the byte told
    std::string_view counted;
};

LossText textOf(mifhost::LossKind kind)
{
    switch (kind) {
    case mifhost::LossKind::Statement:
        return {
            "the first of the statements or lines of embedded objects that were dropped because they have more than "
            "4096 bytes begins here",
            "dropped"};
    case mifhost::LossKind::End:
        return {"the document ends inside the statement that begins here", ""};
    case mifhost::LossKind::Nul:
        return {"the first of the strings of which the rest after a NUL byte is lost begins here", "strings"};
    case mifhost::LossKind::Character:
        return {"the first of the statements with undefined characters, which were replaced by U+FFFD, begins here",
                "characters"};
    case mifhost::LossKind::Record:
        return {"the first of the records that were left out, for want of memory or because there are too many, stands "
                "here",
                "records"};
    case mifhost::LossKind::Unplaced:
        return {"the first of the texts that stand in no text rectangle of a page or a frame, and are left out, begins "
                "here",
                "texts"};
    case mifhost::LossKind::Object:
        return {
            "the first of the embedded objects that have no identifier of their own, and cannot be read, begins here",
            "objects"};
    case mifhost::LossKind::Comment:
    case mifhost::LossKind::Reference:
        break;
    }
    return {};
}

} // namespace

Conversion::Conversion(mifhost::Document &document, Output &output, std::filesystem::path folder, Claims &claims,
                       std::uint64_t limit, Progress progress)
    : document_(document), output_(output), folder_(std::move(folder)), claims_(claims), limit_(limit),
      progress_(std::move(progress)), outputStart_(output.size())
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
    const mifhost::Token *token = document_.next();
    if (token != nullptr) {
        if (const auto *total = std::get_if<mifhost::LossTotal>(token)) {
            totals_.push_back(*total);
        }
    }
    return token;
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
    if (document_.undefinedBytes() > 0) {
        all.push_back(fmt::format("{}: characters that Windows-1252 does not define were replaced by U+FFFD: {}",
                                  document_.name(), document_.undefinedBytes()));
    }
    for (const mifhost::LossTotal &total : totals_) {
        const LossText text = textOf(total.kind);
        if (text.first.empty()) {
            continue;
        }
        all.push_back(fmt::format("{}: byte {}: {}", document_.name(), total.first, text.first));
        if (!text.counted.empty()) {
            all.back() += fmt::format(" ({}: {})", text.counted, total.count);
        }
    }
    return all;
}

} // namespace mifread
