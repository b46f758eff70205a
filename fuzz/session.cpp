#include "session.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include <utf8cpp/utf8.h>

#include "check.h"
#include "mifhost/error.h"
#include "mifreader/extended.h"

namespace miffuzz
{

PieceStream::PieceStream(std::string_view document, const Conditions &conditions)
    : Stream("input", document.size()), document_(document), conditions_(conditions)
{
}

size_t PieceStream::readAt(uint64_t position, std::span<uint8_t> destination)
{
    if (++reads_ == conditions_.lyingRead) {
        return SIZE_MAX;
    }
    const size_t count = std::min(destination.size(), conditions_.readSizes[reads_ % conditions_.readSizes.size()]);
    std::memcpy(destination.data(), document_.data() + position, count);
    return count;
}

Session::Session(std::string_view document, const Conditions &conditions)
    : document_(document), conditions_(conditions), source_(document, conditions_), memory_(conditions.memoryLimit)
{
    mifGetReaderInterface(&reader_);
    uint32_t stored = 0;
    context_ = reader_.mifAllocateContext(this, notify, &stored, memory_.services(), 0);
    require(stored == 1, "mifAllocateContext stores 1");
    if (context_ != nullptr) {
        if (conditions.isExtended) {
            require(mifExtendStream(context_, MIF_EXTENDED_VERSION, conditions.encoding) == MIF_SUCCESS,
                    "the extended stream is there");
        }
        result_ = reader_.mifInitDoc(context_, nullptr, conditions.statedSize, source_.record());
    }
}

Session::~Session()
{
    checkMemory();
    require(reader_.mifFreeContext(context_) == (context_ != nullptr ? MIF_SUCCESS : MIF_FAILURE),
            "mifFreeContext refuses null alone");
    require(memory_.liveBlocks() == 0, "all memory is given back");
}

uint32_t Session::notify(void *cookie, uint32_t code, void *data)
{
    auto *session = static_cast<Session *>(cookie);
    if (code == HOST_NOTIFY_FILE_ACCESS) {
        session->files_ = *static_cast<MifFileAccess *>(data);
        return 0;
    }
    require(code == HOST_NOTIFY_FONT, "a notification has a code that exists");
    return session->fonts_.add(*static_cast<MifFontRecord *>(data));
}

bool Session::fill()
{
    if (result_ != MIF_SUCCESS || percent_ == 100 || hadEnough()) {
        return false;
    }
    const uint32_t size = conditions_.bufferSizes[calls_++ % conditions_.bufferSizes.size()];
    const auto buffer = std::make_unique<uint8_t[]>(size); // its end guarded by AddressSanitizer
    uint32_t written = 0;
    result_ = reader_.mifFillBuffer(context_, buffer.get(), &written, &percent_, size);
    require(result_ == MIF_SUCCESS || result_ == MIF_FAILURE, "the result is 0 or 6");
    require(percent_ >= 0 && percent_ <= 100, "the percent is one");
    require(written <= size, "no more is written than the buffer holds");
    require(result_ != MIF_SUCCESS || percent_ == 100 || written != 0, "every call but the last gives tokens");
    takeTokens({buffer.get(), written});
    require(result_ != MIF_SUCCESS || percent_ != 100 || open_.empty(), "what begins has an end");
    if (result_ != MIF_SUCCESS || percent_ == 100) {
        uint32_t further = 1;
        int32_t percent = 100;
        const int32_t result = reader_.mifFillBuffer(context_, buffer.get(), &further, &percent, size);
        require(result == result_ && further == 0 && (percent == 100 || result != MIF_SUCCESS), "the end is final");
    }
    return result_ == MIF_SUCCESS && percent_ != 100;
}

void Session::fillAll()
{
    while (fill()) {
    }
}

void Session::takeTokens(std::span<const uint8_t> bytes)
{
    stream_.append(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    decoder_.decode(bytes);
    try {
        uint64_t start = decoder_.position();
        while (const mifhost::Token *token = decoder_.next()) {
            largestToken_ = std::max(largestToken_, static_cast<uint32_t>(decoder_.position() - start));
            start = decoder_.position();
            if (const auto *frame = std::get_if<mifhost::Frame>(token)) {
                frames_.emplace_back(frame->id);
            }
            if (conditions_.isExtended) {
                checkExtended(*token);
            }
        }
    } catch (const mifhost::StreamError &error) {
        require(false, error.what());
    }
}

namespace
{

// Keeps the record of what is begun with a kind of token.
template <typename Begin, typename End>
void follow(const mifhost::Token &token, size_t begin, std::vector<size_t> &open)
{
    if (std::holds_alternative<Begin>(token)) {
        open.push_back(begin);
    } else if (std::holds_alternative<End>(token)) {
        require(!open.empty() && open.back() == begin, "begins and ends match and nest");
        open.pop_back();
    }
}

} // namespace

void Session::checkExtended(const mifhost::Token &token)
{
    follow<mifhost::NoteBegin, mifhost::NoteEnd>(token, 0, open_);
    follow<mifhost::BoxBegin, mifhost::BoxEnd>(token, 1, open_);
    follow<mifhost::TitleBegin, mifhost::TitleEnd>(token, 2, open_);
    follow<mifhost::XRefBegin, mifhost::XRefEnd>(token, 3, open_);
    follow<mifhost::TableOpen, mifhost::TableClose>(token, 4, open_);
    if (const auto *text = std::get_if<mifhost::Text>(&token)) {
        require(utf8::is_valid(text->bytes), "text is UTF-8");
    }
}

void Session::checkMemory() const
{
    const size_t waiting = std::max(conditions_.bufferSizes[0], conditions_.bufferSizes[1]);
    require(memory_.peakRequested() <= fixedMemory + waiting + memoryPerByte * document_.size(),
            "memory is at most a constant times the document's size");
}

} // namespace miffuzz
