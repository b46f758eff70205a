// A host for the fuzzers: one document that is open in the library, and on every call the checks of all that holds
// whatever the document is.
#ifndef MIFREADER_FUZZ_SESSION_H
#define MIFREADER_FUZZ_SESSION_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "mifhost/fonts.h"
#include "mifhost/memory.h"
#include "mifhost/stream.h"
#include "mifhost/token.h"
#include "mifreader/reader.h"

namespace miffuzz
{

// The memory that a document may take: so much in any case, the size of the buffer for a token that waits, and so much
// for each byte of the document.
inline constexpr size_t fixedMemory = size_t{128} * 1024;
inline constexpr size_t memoryPerByte = 40;

// What the host does to the library.
struct Conditions {
    std::array<uint32_t, 2> bufferSizes{1U << 18, 1U << 18};       // of the calls by turns
    std::array<size_t, 3> readSizes{SIZE_MAX, SIZE_MAX, SIZE_MAX}; // the most that the reads deliver, by turns
    size_t lyingRead = 0;                // the nth read answers with an error value, counted from 1
    size_t memoryLimit = 0;              // bytes; 0 for none
    int32_t statedSize = 0;              // what the host tells of the document's size
    bool isExtended = false;             // the stream that it asks for
    uint32_t encoding = 0;               // a MIF_ENCODING value
    size_t mostOutput = size_t{4} << 20; // after so many bytes the host has enough
};

// A document in memory that comes in pieces of the given sizes.
class PieceStream : public mifhost::Stream
{
public:
    // Both must outlive the stream.
    PieceStream(std::string_view document, const Conditions &conditions);

private:
    size_t readAt(uint64_t position, std::span<uint8_t> destination) override;

    std::string_view document_;
    const Conditions &conditions_;
    size_t reads_ = 0;
};

class Session
{
public:
    // document  must outlive the session
    Session(std::string_view document, const Conditions &conditions);
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    // All memory must have been given back.
    ~Session();

    // One call. Returns whether there is more to come.
    bool fill();
    void fillAll();

    // What the calls gave so far.
    int32_t result() const
    {
        return result_;
    }
    const std::string &stream() const
    {
        return stream_;
    }
    bool hadEnough() const
    {
        return stream_.size() > conditions_.mostOutput;
    }
    uint32_t largestToken() const
    {
        return largestToken_;
    }
    const std::vector<std::string> &frames() const
    {
        return frames_;
    }

    // The operations on objects, and the context to name in their handles.
    const MifFileAccess &files() const
    {
        return files_;
    }
    MifContext *context() const
    {
        return context_;
    }

private:
    static uint32_t notify(void *cookie, uint32_t code, void *data);
    void takeTokens(std::span<const uint8_t> bytes);
    void checkExtended(const mifhost::Token &token);
    void checkMemory() const;

    std::string_view document_;
    Conditions conditions_;
    PieceStream source_;
    mifhost::Memory memory_;
    mifhost::FontRegistry fonts_;
    mifhost::TokenDecoder decoder_;
    MifReaderInterface reader_{};
    MifFileAccess files_{};
    MifContext *context_ = nullptr;
    size_t calls_ = 0;
    int32_t result_ = MIF_FAILURE;
    int32_t percent_ = 0;
    std::string stream_;
    uint32_t largestToken_ = 0;
    std::vector<std::string> frames_; // identifiers
    std::vector<size_t> open_;        // what the extended stream has begun: indexes of the tokens that begin
};

} // namespace miffuzz

#endif
