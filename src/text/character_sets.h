// The characters of the sets that strings are written in. U+0000 stands for a code without a character.
#ifndef MIFREADER_SRC_TEXT_CHARACTER_SETS_H
#define MIFREADER_SRC_TEXT_CHARACTER_SETS_H

#include <cstdint>

// MIF's own set, from 0x80 on.
extern const char16_t mifOwnCharacters[128];

// Windows-1252 from 0x80 to 0x9F; from 0xA0 on codes are characters.
extern const char16_t mifWindowsCharacters[32];

// The character of a code in a font of symbols or of dingbats (a GLYPHS value), 0 for none.
char16_t mifGlyph(uint32_t glyphs, uint8_t code);

#endif
