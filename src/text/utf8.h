// UTF-8, one character at a time.
#ifndef MIFREADER_SRC_TEXT_UTF8_H
#define MIFREADER_SRC_TEXT_UTF8_H

#include <cstddef>
#include <cstdint>
#include <string_view>

inline constexpr uint32_t replacementCharacter = 0xFFFD;

// Stores a character, which takes up to 4 bytes, and returns the place after it.
char *mifStoreCharacter(char *place, uint32_t character);

// Reads the character at `position`, which is before `end`. Returns its length in bytes, 0 for what is not UTF-8.
size_t mifReadCharacter(const char *position, const char *end, uint32_t &character);

bool mifIsAscii(std::string_view text);

// How many bytes at the text's beginning are characters of their own in every encoding of documents: printable ASCII
// without the backslash.
size_t mifPlainRun(std::string_view text);

// Whether all of the text is UTF-8.
bool mifIsUtf8(std::string_view text);

#endif
