#include "mifhost/document.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "mifhost/error.h"

namespace mifhost
{

namespace
{

// No call stores it, so it tells whether a call stored anything.
constexpr std::uint32_t notStored = std::numeric_limits<std::uint32_t>::max();

constexpr std::string_view headerStart = "<MIFFile";
constexpr std::size_t longestHeader = 4096;

bool beginsAsMif(Stream &stream)
{
    std::array<std::uint8_t, headerStart.size()> bytes{};
    stream.seek(0);
    std::size_t size = 0;
    while (size < bytes.size()) {
        const std::size_t count = stream.read(std::span(bytes).subspan(size));
        if (count == 0) {
            return false;
        }
        size += count;
    }
    return std::equal(bytes.begin(), bytes.end(), headerStart.begin());
}

} // namespace

Document::Document(Stream &stream, const DocumentOptions &options) : Document(Plugin::linked(), stream, options) {}

Document::Document(const Plugin &plugin, Stream &stream, const DocumentOptions &options)
    : stream_(stream), reader_(plugin.entries()), memory_(options.memoryLimit), workLimit_(options.workLimit),
      proceed_(options.proceed), bufferSize_(options.bufferSize),
      buffer_(std::make_unique_for_overwrite<std::uint8_t[]>(options.bufferSize)),
      decoder_(stream.name() + ": token stream"), context_(nullptr, nullptr)
{
    std::uint32_t unusedResult = 0;
    context_ = {reader_.mifAllocateContext(this, notify, &unusedResult, memory_.services(), 0), reader_.mifFreeContext};
    requireMemory();
    if (context_ == nullptr) {
        throw PluginError(stream_.name(), std::nullopt, "the plug-in makes no context");
    }

    isExtended_ =
        options.form == TokenForm::Extended && plugin.extension().extendStream != nullptr &&
        plugin.extension().extendStream(context_.get(), MIF_EXTENDED_VERSION, options.encoding) == MIF_SUCCESS;
    isAdapted_ = !isExtended_ && options.form != TokenForm::Raw;
    stream_.seek(0);
    stream_.forgetPendingError();
    const std::int32_t result =
        reader_.mifInitDoc(context_.get(), nullptr, static_cast<std::int32_t>(stream_.size()), stream_.record());
    requireMemory();
    if (result != MIF_SUCCESS) {
        throw PluginError(stream_.name(), std::nullopt, "the plug-in does not take the document");
    }
    stream_.watchReads(
        [this](std::uint64_t position, std::span<const std::uint8_t> bytes) { watchRead(position, bytes); });
}

Document::~Document()
{
    stream_.watchReads(nullptr);
}

const Token *Document::next()
{
    if (objectIsOpen_) {
        throw std::logic_error("mifhost::Document: an object of the document is open");
    }
    for (;;) {
        if (endingModes_ != 0) {
            return nextModeEnd();
        }
        if (const Token *token = decoder_.next()) {
            return handOut(*token);
        }
        if (failure_ != nullptr) {
            std::rethrow_exception(failure_);
        }
        if (finished_) {
            return nullptr;
        }
        fill();
    }
}

const Token *Document::handOut(const Token &token)
{
    if (isAdapted_) {
        return adapt(token);
    }
    if (const auto *field = std::get_if<DocumentField>(&token)) {
        info_[static_cast<std::size_t>(field->kind)] = field->value;
    }
    return &token;
}

const Token *Document::adapt(const Token &token)
{
    if (const auto *text = std::get_if<Text>(&token)) {
        text_.clear();
        charset_.append(text->bytes, text_);
        adapted_ = Text{text_};
        return &adapted_;
    }
    if (const auto *attribute = std::get_if<Attribute>(&token)) {
        const std::uint32_t bit = std::uint32_t{1} << static_cast<unsigned>(attribute->mode);
        modes_ = attribute->on ? modes_ | bit : modes_ & ~bit;
    } else if (std::holds_alternative<ParaEnd>(token)) {
        endingModes_ = std::exchange(modes_, 0);
    }
    return &token;
}

const Token *Document::nextModeEnd()
{
    const int mode = std::countr_zero(endingModes_);
    endingModes_ &= endingModes_ - 1;
    adapted_ = Attribute{static_cast<Mode>(mode), false};
    return &adapted_;
}

// Has the reader convert the next piece. A failure is kept until the tokens that came before it are handed out.
void Document::fill()
{
    std::uint32_t written = notStored;
    std::int32_t percent = percent_;
    const std::int32_t result = reader_.mifFillBuffer(context_.get(), buffer_.get(), &written, &percent, bufferSize_);
    if (written <= bufferSize_) {
        decoder_.decode({buffer_.get(), written});
    }
    if (failure_ != nullptr) { // in a notification
        return;
    }
    try {
        checkResult(result, written, percent);
        addWork(written);
        proceed();
        percent_ = percent;
        finished_ = percent >= 100;
    } catch (...) {
        failure_ = std::current_exception();
    }
}

void Document::watchRead(std::uint64_t position, std::span<const std::uint8_t> bytes)
{
    bytesRead_ = std::max(bytesRead_, position + bytes.size());
    addWork(bytes.size());
    proceed();
}

void Document::addWork(std::uint64_t bytes)
{
    work_ += bytes;
    if (workLimit_ > 0 && work_ > workLimit_) {
        throw LimitReached(stream_.name(), bytesRead(),
                           "the work limit of " + std::to_string(workLimit_) + " bytes is reached");
    }
}

void Document::proceed() const
{
    if (proceed_) {
        proceed_();
    }
}

// Throws what a call of mifFillBuffer failed of.
void Document::checkResult(std::int32_t result, std::uint32_t written, std::int32_t percent) const
{
    // What the stream or the memory met in the call comes before what the reader tells, because the reader takes the
    // one for the end of the data and may get over the other with a piece of the document missing.
    stream_.throwPendingError();
    requireMemory();
    const bool isStored = written != notStored;
    if (result != MIF_SUCCESS && !isStored && decoder_.position() == 0) {
        throwRefusal();
    }
    if (!isStored || written > bufferSize_) {
        throw PluginError(stream_.name(), std::nullopt, "the plug-in tells no valid number of bytes written");
    }
    if (result != MIF_SUCCESS) {
        throw LimitReached(stream_.name(), bytesRead(),
                           "a token is larger than the buffer of " + std::to_string(bufferSize_) + " bytes");
    }
    if (written == 0 && percent < 100) {
        throw PluginError(stream_.name(), bytesRead(), "the plug-in makes no progress");
    }
}

void Document::throwRefusal() const
{
    std::string reason = "not a MIF document, it does not begin with <MIFFile";
    if (stream_.size() == 0) {
        reason = "is empty, not a MIF document";
    } else if (beginsAsMif(stream_)) {
        reason =
            "not a MIF document, its first statement does not end within " + std::to_string(longestHeader) + " bytes";
    }
    throw NotMif(stream_.name(), std::nullopt, reason);
}

void Document::requireMemory() const
{
    if (memory_.refusals() == 0) {
        return;
    }
    throw LimitReached(stream_.name(), bytesRead(),
                       memory_.limit() == 0
                           ? "memory is exhausted"
                           : "the memory limit of " + std::to_string(memory_.limit()) + " bytes is reached");
}

std::uint32_t Document::notify(void *cookie, std::uint32_t code, void *data) noexcept
{
    auto &self = *static_cast<Document *>(cookie);
    std::uint32_t answer = 0;
    try {
        if (code == HOST_NOTIFY_FONT) {
            Windows1252 *charset = self.isAdapted_ ? &self.namesCharset_ : nullptr;
            answer = self.fonts_.add(*static_cast<const MifFontRecord *>(data), charset);
            if (self.failure_ == nullptr) { // the reader goes on to its next read behind an announcement too many
                self.addWork(DocumentOptions::announcedFont);
            }
        } else if (code == HOST_NOTIFY_FILE_ACCESS) {
            self.fileAccess_ = *static_cast<const MifFileAccess *>(data);
        }
    } catch (...) {
        self.failure_ = std::current_exception();
    }
    return answer;
}

} // namespace mifhost
