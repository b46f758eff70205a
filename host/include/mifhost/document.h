// The conversion of one document: a stream goes in and tokens come out. This is the header that most hosts need; it
// brings those of all that it is made of. What ends before the document does is an exception (error.h), and all that
// can be read is handed out before it:
//
//   try {
//       mifhost::Document document(stream, {.memoryLimit = 64 << 20});
//       while (const mifhost::Token *token = document.next()) { ... }
//   } catch (const mifhost::LimitReached &) { ... } // the rest needs more
#ifndef MIFHOST_DOCUMENT_H
#define MIFHOST_DOCUMENT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>

#include "mifhost/charset.h"
#include "mifhost/fonts.h"
#include "mifhost/memory.h"
#include "mifhost/plugin.h"
#include "mifhost/stream.h"
#include "mifhost/token.h"

namespace mifhost
{

// What the tokens of a document are.
enum class TokenForm {
    Extended, // the extended stream; what Plain gives where the plug-in has none
    Plain,    // the plain stream with its text, and the names of fonts, in UTF-8; modes end with their paragraph
    Raw       // the plain stream as the reader gives it
};

// What a document may use up. All limits are the document's own, however many are read at once.
struct DocumentOptions {
    // The largest buffer, in bytes, that the reader can be told of: 4 GiB less one byte.
    static constexpr std::uint32_t largestBuffer = std::numeric_limits<std::uint32_t>::max();

    // The buffer for tokens in bytes, 1 to largestBuffer. It must hold the largest token; the default does for every
    // document but the strangest. The tokens are the same whatever it is; a document that has a larger one ends with
    // LimitReached.
    std::uint32_t bufferSize = 64 * 1024;

    // The most memory in bytes that the reader may use for the document, as Memory counts it; 0 means no limit. What
    // the host itself takes, such as the buffer and the fonts, is not in it.
    std::size_t memoryLimit = 0;

    // The most work that the reader may do for the document, in bytes; 0 means no limit. The bytes that it reads are
    // counted, again whenever it reads them again, those of its tokens, and announcedFont for each announcement of a
    // font. The same document takes the same work at all times.
    std::uint64_t workLimit = 0;

    // The work of one announcement, in bytes: about the size of its record. It keeps fonts that give no tokens from
    // being free.
    static constexpr std::uint64_t announcedFont = 64;

    // Which tokens to have; and what the document's bytes above 0x7F are, a MIF_ENCODING value, which only the extended
    // stream takes into account.
    TokenForm form = TokenForm::Extended;
    std::uint32_t encoding = MIF_ENCODING_AUTO;

    // For deadlines, progress and cancelling. Called on the thread that reads the document: at every read of the
    // reader, also of those within one long call, and after every call that gave tokens. It may throw anything to end
    // the conversion: next() or Object::read() throws it on. It must not ask the document for tokens, but may ask how
    // far it is.
    std::function<void()> proceed{};
};

// What a document says of itself, in UTF-8, by DocumentFieldKind; empty for what it does not say.
using DocumentInfo = std::array<std::string, static_cast<std::size_t>(DocumentFieldKind::Encoding) + 1>;

// Reads one document from its beginning, token by token, and owns all that the reader needs for it: once through, there
// is no way back, but a second Document may read the stream when the first is gone. Used by one thread at a time;
// documents of different streams are independent of each other.
class Document
{
public:
    // stream   the document, read from its start wherever it stands; must outlive the Document, which watches its
    //          reads; nobody else may move its position meanwhile
    // plugin   the reader, which must outlive the Document; without it the one that the program is linked with
    // options  copied
    // Throws LimitReached when memory is exhausted, PluginError when the plug-in breaks its interface, std::bad_alloc
    // when there is no memory for the buffer. Nothing is read yet, so that what is no MIF shows at next().
    explicit Document(Stream &stream, const DocumentOptions &options = {});
    Document(const Plugin &plugin, Stream &stream, const DocumentOptions &options = {});
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;
    // Gives the reader's memory back, at whatever point the reading is. No Object may be open.
    ~Document();

    // Returns the next token, or null when the document has no more, and at every further call. Token and views are
    // valid until the next call. One call may read much of the document, when little of it is text. Throws, once the
    // tokens before the failure are handed out,
    //   NotMif        before the first token: the reader refuses the document
    //   IoError       the stream cannot be read, or became shorter
    //   LimitReached  the limit of memory or work was hit, the heap is exhausted, or a token is larger than the buffer
    //   StreamError, PluginError  the reader is faulty
    //   what proceed() throws
    // and then the same again. While an Object of the document is open it throws std::logic_error and does nothing.
    const Token *next();

    // What messages call the document: the name of its stream.
    const std::string &name() const noexcept
    {
        return stream_.name();
    }

    // Whether its tokens are the extended stream's.
    bool isExtended() const noexcept
    {
        return isExtended_;
    }

    // How many bytes of its text Windows-1252 does not define, which are U+FFFD in the tokens. Of the plain form alone:
    // the extended stream tells of characters in its losses.
    std::uint64_t undefinedBytes() const noexcept
    {
        return charset_.undefinedBytes();
    }

    // What the document says of itself, as far as tokens are handed out: most of it stands before the text, the
    // encoding found and the commonest language come at the end. Of the extended stream alone.
    const DocumentInfo &info() const noexcept
    {
        return info_;
    }

    // The size of the document in bytes, as the stream found it when it was made.
    std::uint64_t size() const noexcept
    {
        return stream_.size();
    }

    // How much of the document has been read, in whole percent as the reader tells it, rounded down: 0 to 100. It never
    // falls, and is 100 only when all tokens are there, of which some may still be handed out.
    int percent() const noexcept
    {
        return percent_;
    }
    // The same in bytes: how far the reader has ever come, 0 to size(). It reads ahead in blocks.
    std::uint64_t bytesRead() const noexcept
    {
        return bytesRead_;
    }

    // The fonts announced so far, which include those of all tokens handed out. Valid as long as the document; so are
    // the accounts, and all of them change with next() and Object alone.
    const FontRegistry &fonts() const noexcept
    {
        return fonts_;
    }

    // The accounts of the reader's memory, which begin with its context.
    const Memory &memory() const noexcept
    {
        return memory_;
    }

private:
    friend class Object;

    // The reader's notifications, which come within its calls. What fails here is kept in failure_.
    static std::uint32_t notify(void *cookie, std::uint32_t code, void *data) noexcept;
    // Has the reader convert the next piece of the document.
    void fill();
    // Throws what a call of mifFillBuffer failed of: by its result, or by what the stream and the memory met meanwhile.
    void checkResult(std::int32_t result, std::uint32_t written, std::int32_t percent) const;
    // The token as it is handed out.
    const Token *handOut(const Token &token);
    // Makes a token of the plain form of a raw one.
    const Token *adapt(const Token &token);
    // The end of one of the modes that the paragraph before has left on.
    const Token *nextModeEnd();
    // Takes account of bytes that the reader reads, before it gets them.
    void watchRead(std::uint64_t position, std::span<const std::uint8_t> bytes);
    // Throws LimitReached when the document has taken more than the work limit with these bytes.
    void addWork(std::uint64_t bytes);
    // Calls what the options gave, if anything.
    void proceed() const;
    // Tells why the reader refused the document, from its first bytes.
    [[noreturn]] void throwRefusal() const;
    // Throws LimitReached when the reader was refused memory.
    void requireMemory() const;

    Stream &stream_;
    MifReaderInterface reader_;
    Memory memory_;
    FontRegistry fonts_;
    std::uint64_t bytesRead_ = 0; // the end of the furthest read
    // Sent by mifInitDoc; null where the reader offers no objects.
    MifFileAccess fileAccess_{};
    bool objectIsOpen_ = false;
    bool isExtended_ = false;
    DocumentInfo info_;
    // Of the plain form.
    bool isAdapted_ = false;
    Windows1252 charset_;
    Windows1252 namesCharset_; // whose characters are not counted
    std::string text_;         // of the adapted token
    Token adapted_;
    std::uint32_t modes_ = 0;       // that are on, as bits
    std::uint32_t endingModes_ = 0; // whose ends are still to be told
    std::uint64_t work_ = 0;        // bytes, as DocumentOptions::workLimit counts them
    std::uint64_t workLimit_;
    std::function<void()> proceed_;
    std::uint32_t bufferSize_;
    // Of bufferSize_ bytes; the decoder's views point into it.
    std::unique_ptr<std::uint8_t[]> buffer_;
    TokenDecoder decoder_;
    int percent_ = 0;
    bool finished_ = false; // the reader has no more tokens than those at hand

    std::exception_ptr failure_; // thrown when the tokens at hand are used up
    // Last, so that the context goes before the memory that it lives in.
    std::unique_ptr<MifContext, std::int32_t (*)(MifContext *)> context_;
};

} // namespace mifhost

#endif
