// From MIF's escapes to Windows-1252 text.
#ifndef MIFREADER_SRC_TEXT_CONVERSION_H
#define MIFREADER_SRC_TEXT_CONVERSION_H

#include <cstdint>

#include "reader/context.h"

// Converts the zero-terminated text in place; it never becomes longer. In body text each `\t` also writes a tab token
// at once, which so precedes whatever the caller writes of this text.
void mifConvertString(MifContext *context, char *text);

// The byte that two code characters stand for. With useTable not 0 the codes of MIF's own character set give their
// Windows-1252 byte; all other pairs, and every pair without it, are hexadecimal digits. Whatever is no digit goes
// through the same arithmetic.
uint8_t mifConvertASCIIToHex(uint8_t first, uint8_t second, int useTable);

#endif
