// The data lines of an embedded object: literal bytes, or after `\x`, which switches to and fro, pairs of hexadecimal
// digits; `\\` stands for one backslash. A last digit without another one is dropped.
#ifndef MIFREADER_SRC_FRAMES_DATA_LINES_H
#define MIFREADER_SRC_FRAMES_DATA_LINES_H

#include <cstdint>

#include "reader/source.h"
#include "text/conversion.h"

// Whether the text there still belongs to the data of the line: neither its end nor the `=` of a facet.
inline bool mifInDataLine(const char *position, const char *end)
{
    return position < end && *position != '=' && !mifNewLine(*position);
}

// Takes up what stands at `position`, which is in a data line. Returns true and the byte, or false when it stands for
// none. The last byte before `end` is passed over: whether it begins an escape or a pair cannot be known.
inline bool mifDecodeData(const char *&position, const char *end, uint32_t &hexMode, uint8_t &byte)
{
    const bool escape = *position == '\\' && end - position > 1;
    if (escape && position[1] == 'x') {
        position += 2;
        hexMode ^= 1U;
    } else if (escape && position[1] == '\\') {
        ++position;
    }
    if (position == end || mifNewLine(*position)) {
        return false;
    }
    const char *first = position++;
    if (position == end) {
        return false;
    }
    if (hexMode == 0) {
        byte = static_cast<uint8_t>(*first);
        return true;
    }
    const bool cut = *position == '\\' && (end - position == 1 || position[1] == 'x');
    if (cut || mifNewLine(*position) || *position == '=') {
        return false;
    }
    byte = mifHexByte(static_cast<uint8_t>(*first), static_cast<uint8_t>(*position++));
    return true;
}

#endif
