// The token decoder of the host library. The input is a token stream: taken apart whole and token by token, it must
// give the same.
#include <string>

#include "check.h"
#include "mifconvert/token_listing.h"
#include "mifhost/error.h"
#include "mifhost/fonts.h"
#include "mifhost/token.h"

namespace miffuzz
{

namespace
{

using Bytes = std::span<const uint8_t>;

uint64_t announcedLength(Bytes bytes)
{
    uint64_t length = 0;
    for (size_t index = 4; index > 0; --index) {
        length = length << 8 | bytes[index];
    }
    return length;
}

// The listing of the tokens. The error, if there is one, is its last line.
template <typename Next>
std::string list(mifhost::TokenDecoder &decoder, Next next)
{
    const mifhost::FontRegistry fonts;
    mifconvert::TokenListing listing(fonts);
    std::string lines;
    try {
        while (const mifhost::Token *token = next(decoder)) {
            listing.append(*token, lines);
            require(lines.ends_with('\n'), "a token is listed as a line");
        }
    } catch (const mifhost::StreamError &error) {
        const uint64_t position = decoder.position();
        lines += error.what();
        bool again = false;
        try {
            decoder.next();
        } catch (const mifhost::StreamError &) {
            again = true;
        }
        require(again && decoder.position() == position, "the decoder stays at what is wrong");
    }
    return lines;
}

std::string listWhole(Bytes bytes)
{
    mifhost::TokenDecoder decoder;
    decoder.decode(bytes);
    std::string lines = list(decoder, [](mifhost::TokenDecoder &whole) { return whole.next(); });
    require(decoder.position() <= bytes.size(), "the position is in the stream");
    return lines;
}

// Each token is decoded from a piece of its own, which ends where the token says.
std::string listOneByOne(Bytes bytes)
{
    mifhost::TokenDecoder decoder;
    return list(decoder, [&](mifhost::TokenDecoder &oneByOne) {
        const uint64_t length = bytes.size() < 5 ? bytes.size() : announcedLength(bytes);
        const bool isWhole = length >= 5 && length <= bytes.size();
        const Bytes piece = bytes.first(isWhole ? static_cast<size_t>(length) : bytes.size());
        bytes = bytes.subspan(piece.size());
        oneByOne.decode(piece);
        return oneByOne.next();
    });
}

} // namespace

} // namespace miffuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace miffuzz;
    const Bytes bytes(data, size);
    require(listWhole(bytes) == listOneByOne(bytes), "the tokens do not depend on the pieces");
    return 0;
}
