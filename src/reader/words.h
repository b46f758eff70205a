// Text looked at eight bytes at a time. Marks are the highest bits of the bytes that were looked for; the first mark is
// exact, those after it are not. What is loaded must be readable to the word's end, as the source buffer is.
#ifndef MIFREADER_SRC_READER_WORDS_H
#define MIFREADER_SRC_READER_WORDS_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

using MifWord = uint64_t;

constexpr MifWord mifEveryByte(uint8_t byte)
{
    return 0x0101010101010101U * byte;
}

// The text's first byte is the lowest one of the word.
inline MifWord mifLoadWord(const char *text)
{
    MifWord word = 0;
    memcpy(&word, text, sizeof(word));
    if constexpr (std::endian::native == std::endian::big) {
        word = __builtin_bswap64(word);
    }
    return word;
}

// Marks bytes below `limit`, which is at most 0x80.
constexpr MifWord mifMarkBelow(MifWord word, uint8_t limit)
{
    return (word - mifEveryByte(limit)) & ~word & mifEveryByte(0x80);
}

constexpr MifWord mifMarkByte(MifWord word, char byte)
{
    return mifMarkBelow(word ^ mifEveryByte(static_cast<uint8_t>(byte)), 1);
}

// How many bytes stand before the first one that is not 0 in any bit, as a mark or as a difference; 8 for none.
constexpr size_t mifBytesBefore(MifWord word)
{
    return static_cast<unsigned>(std::countr_zero(word)) / 8;
}

#endif
