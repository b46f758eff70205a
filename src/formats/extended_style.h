// Formats of the extended stream: what a paragraph and its characters look like to a person.
#ifndef MIFREADER_SRC_FORMATS_EXTENDED_STYLE_H
#define MIFREADER_SRC_FORMATS_EXTENDED_STYLE_H

#include <cstdint>

#include "formats/style.h"
#include "reader/index.h"
#include "reader/list.h"

// A colour by its name, kept once, from its first mention on. Its value is looked at when it is used.
struct MifColor : MifIndexNode {
    char *name;     // owned
    uint32_t value; // 0x00BBGGRR
    MifColor *next;
};

inline uint32_t mifColorValue(const MifColor *color)
{
    return color != nullptr ? color->value : 0;
}

// Fonts whose characters are not those of text.
enum : uint32_t { GLYPHS_TEXT = 0, GLYPHS_SYMBOL = 1, GLYPHS_DINGBATS = 2 };

// A font family by its name, kept once.
struct MifFontFamily : MifIndexNode {
    char *name; // owned
    uint32_t glyphs;
    int32_t hostFontNumber; // the host's answer to the announcement, less 1; -1 before
    MifFontFamily *next;
};

struct MifTabStop {
    int32_t position; // twips
    uint8_t kind;     // a MIF_TAB value
    char leader[11];  // UTF-8, zero-terminated; empty for blanks
};

// The stops are an owned array; null when the capacity is 0.
struct MifTabList {
    MifTabStop *stops;
    uint32_t count;
    uint32_t capacity;
};

struct MifCharacters {
    MifFontFamily *family; // null for none
    const MifColor *color; // null for black
    int32_t size;          // twips; 0 for none
    uint32_t modes;
    uint32_t hasColor; // a colour was stated by name, which a number does not replace
};

// Measures are twips.
struct MifExtendedParagraph {
    const char *tag;  // of the catalog's entry; null for none
    int32_t language; // its number; 0 for none
    int32_t spaceAbove;
    int32_t spaceBelow;
    int32_t leading;
    int32_t leftIndent;
    int32_t rightIndent;
    int32_t firstIndent;
    int32_t alignment; // a MIF_ALIGN value
    int32_t keepsWithNext;
    int32_t placement; // a MIF_PLACEMENT value
    int32_t outlineLevel;
    int32_t cellAlignment; // a MIF_CELL value
};

// All zero is the format that a paragraph format's entry is applied to.
struct MifExtendedStyle {
    MifExtendedParagraph paragraph;
    MifCharacters paragraphCharacters; // what a paragraph begins with, and what a font's end goes back to
    MifCharacters characters;
    MifTabList tabs;
    uint32_t isChanged; // since the format of the paragraph's tag was selected
};

#endif
