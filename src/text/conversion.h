// From MIF's escapes to Windows-1252 text.
#ifndef MIFREADER_SRC_TEXT_CONVERSION_H
#define MIFREADER_SRC_TEXT_CONVERSION_H

#include <cstdint>

#include "reader/context.h"

// Converts the zero-terminated text in place; it never becomes longer. In body text each `\t` also writes a tab token
// at once, which so precedes whatever the caller writes of this text.
void mifConvertString(MifContext *context, char *text);

// The byte of two hexadecimal digits. Whatever is no digit goes through the same arithmetic.
inline uint8_t mifHexByte(uint8_t first, uint8_t second)
{
    constexpr auto digitValue = [](uint32_t character) {
        const bool isUpper = character >= 'A' && character <= 'Z';
        const bool isDigit = character >= '0' && character <= '9';
        return character + (isUpper ? 0x20U : 0U) - (isDigit ? 0x30U : 0x57U);
    };
    return static_cast<uint8_t>((digitValue(first) * 16U) | (digitValue(second) & 0xFFU));
}

// The byte that two code characters stand for. With useTable not 0 the codes of MIF's own character set give their
// Windows-1252 byte; all other pairs, and every pair without it, are hexadecimal digits.
uint8_t mifConvertASCIIToHex(uint8_t first, uint8_t second, int useTable);

#endif
