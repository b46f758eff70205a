// The making of a token: its room, and the storing of its payload.
#ifndef MIFREADER_SRC_READER_TOKEN_BYTES_H
#define MIFREADER_SRC_READER_TOKEN_BYTES_H

#include <cstdint>
#include <cstring>
#include <string_view>

#include "mifreader/tokens.h"
#include "reader/context.h"

// Begins a token of `length` bytes: the place of its payload, or null when the token is lost.
uint8_t *mifBeginToken(MifContext *context, uint8_t code, uint64_t length);

// A token without payload, of one byte, and of one number. They return 1, or 0 when the token is lost.
int mifWriteBareToken(MifContext *context, uint8_t code);
int mifWriteByteToken(MifContext *context, uint8_t code, uint32_t value);
int mifWriteNumberToken(MifContext *context, uint8_t code, uint32_t value);

// Each stores at `place` and returns the place after it.
inline uint8_t *mifStoreU8(uint8_t *place, uint32_t value)
{
    *place = static_cast<uint8_t>(value);
    return place + 1;
}

inline uint8_t *mifStoreU32(uint8_t *place, uint32_t value)
{
    place[0] = static_cast<uint8_t>(value);
    place[1] = static_cast<uint8_t>(value >> 8);
    place[2] = static_cast<uint8_t>(value >> 16);
    place[3] = static_cast<uint8_t>(value >> 24);
    return place + 4;
}

inline uint8_t *mifStoreI32(uint8_t *place, int32_t value)
{
    return mifStoreU32(place, static_cast<uint32_t>(value));
}

// A text of the extended stream: its length, and its bytes.
inline uint8_t *mifStoreText(uint8_t *place, std::string_view text)
{
    place = mifStoreU32(place, static_cast<uint32_t>(text.size()));
    if (!text.empty()) {
        memcpy(place, text.data(), text.size());
    }
    return place + text.size();
}

#endif
