// The data lines of an embedded object: literal bytes, or after `\x`, which switches to and fro, pairs of hexadecimal
// digits; `\\` stands for one backslash. A last digit without another one is dropped.
#ifndef MIFREADER_SRC_FRAMES_DATA_LINES_H
#define MIFREADER_SRC_FRAMES_DATA_LINES_H

#include <cstdint>
#include <string_view>

#include "reader/source.h"
#include "text/conversion.h"

// Whether a line of the extended stream is a marker: `&%` and one letter.
inline bool mifIsMarkerLine(std::string_view line)
{
    const char letter = line.size() == 3 ? static_cast<char>(line[2] | 0x20) : '\0';
    return letter >= 'a' && letter <= 'z' && line.starts_with("&%");
}

// In the extended stream a `=` is data, but at the beginning of its line.
//
// Whether the text there still belongs to the data of the line: neither its end nor the `=` of a facet.
template <bool isExtended = false>
inline bool mifInDataLine(const char *position, const char *end)
{
    return position < end && (isExtended || *position != '=') && !mifNewLine(*position);
}

// Takes up what stands at `position`, which is in a data line. Returns true and the byte, or false when it stands for
// none. The last byte before `end` is passed over: whether it begins an escape or a pair cannot be known.
template <bool isExtended = false>
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
    if (cut || mifNewLine(*position) || (!isExtended && *position == '=')) {
        return false;
    }
    byte = mifHexByte(static_cast<uint8_t>(*first), static_cast<uint8_t>(*position++));
    return true;
}

#endif
