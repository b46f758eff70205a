// The conversion of one document.
#ifndef MIFHOST_DOCUMENT_H
#define MIFHOST_DOCUMENT_H

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>

#include "mifhost/fonts.h"
#include "mifhost/memory.h"
#include "mifhost/plugin.h"
#include "mifhost/source_check.h"
#include "mifhost/stream.h"
#include "mifhost/token.h"

namespace mifhost
{

struct DocumentOptions {
    // What the reader can be told of.
    static constexpr std::uint32_t largestBuffer = std::numeric_limits<std::uint32_t>::max();

    // The buffer for tokens in bytes, 1 to largestBuffer. It must hold the largest token; the default does for every
    // document but the strangest.
    std::uint32_t bufferSize = 64 * 1024;

    // The most memory in bytes that the reader may use for the document, as Memory counts it; 0 means no limit.
    std::size_t memoryLimit = 0;

    // The most work that the reader may do for the document, in bytes; 0 means no limit. The bytes that it reads are
    // counted, again whenever it reads them again, those of its tokens, and announcedFont for each announcement of a
    // font. The same document takes the same work at all times.
    std::uint64_t workLimit = 0;
    static constexpr std::uint64_t announcedFont = 64;

    // Called at every read of the reader, also of those within one long call, and after every call that gave tokens. It
    // may throw to end the conversion: next() or Object::read() throws it on.
    std::function<void()> proceed{};
};

// Reads one document from its beginning, token by token, and owns all that the reader needs for it.
class Document
{
public:
    // stream  the document, from its start; nobody else moves it while the Document lives
    // plugin  the reader; without it the one that the program is linked with
    // Throws LimitReached when memory is exhausted, PluginError when the plug-in breaks its interface.
    explicit Document(Stream &stream, const DocumentOptions &options = {});
    Document(const Plugin &plugin, Stream &stream, const DocumentOptions &options = {});
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;
    ~Document();

    // Returns the next token, or null when the document has no more. Token and views are valid until the next call.
    // Throws, once the tokens before the failure are handed out,
    //   NotMif        before the first token: the reader refuses the document
    //   IoError       the stream cannot be read, or became shorter
    //   LimitReached  the limit of memory or work was hit, the heap is exhausted, or a token is larger than the buffer
    //   StreamError, PluginError  the reader is faulty
    //   what proceed() throws
    // and then the same again. While an Object of the document is open it throws std::logic_error and does nothing.
    const Token *next();

    // What messages call the document.
    const std::string &name() const noexcept
    {
        return stream_.name();
    }

    // The size of the document in bytes.
    std::uint64_t size() const noexcept
    {
        return stream_.size();
    }

    // How much of the document has been read: whole percent as the reader tells it, 0 to 100, and bytes.
    int percent() const noexcept
    {
        return percent_;
    }
    std::uint64_t bytesRead() const noexcept
    {
        return check_.bytesSeen();
    }

    // The fonts announced so far.
    const FontRegistry &fonts() const noexcept
    {
        return fonts_;
    }

    // The accounts of the reader's memory.
    const Memory &memory() const noexcept
    {
        return memory_;
    }

    // What the document lacks; complete when next() has returned null.
    const SourceCheck &check() const noexcept
    {
        return check_;
    }

private:
    friend class Object;

    static std::uint32_t notify(void *cookie, std::uint32_t code, void *data) noexcept;
    void fill();
    void checkResult(std::int32_t result, std::uint32_t written, std::int32_t percent) const;
    void watchRead(std::uint64_t position, std::span<const std::uint8_t> bytes);
    void addWork(std::uint64_t bytes);
    void proceed() const;
    [[noreturn]] void throwRefusal() const;
    void requireMemory() const;

    Stream &stream_;
    MifReaderInterface reader_;
    Memory memory_;
    FontRegistry fonts_;
    SourceCheck check_;
    MifFileAccess fileAccess_{}; // the operations on embedded objects; null where the reader offers none
    bool objectIsOpen_ = false;
    std::uint64_t work_ = 0;
    std::uint64_t workLimit_;
    std::function<void()> proceed_;
    std::uint32_t bufferSize_;
    std::unique_ptr<std::uint8_t[]> buffer_;
    TokenDecoder decoder_;
    int percent_ = 0;
    bool finished_ = false;
    std::exception_ptr failure_; // thrown when the tokens at hand are used up
    // Last, so that the context goes before the memory that it lives in.
    std::unique_ptr<MifContext, std::int32_t (*)(MifContext *)> context_;
};

} // namespace mifhost

#endif
