// A resolved paragraph and character format.
#ifndef MIFREADER_SRC_FORMATS_STYLE_H
#define MIFREADER_SRC_FORMATS_STYLE_H

#include <cstdint>

// Character modes. Superscript and subscript exclude each other, and so do small capitals and upper case.
enum : uint32_t {
    MODE_BOLD = 0x01,
    MODE_ITALIC = 0x02,
    MODE_UNDERLINE = 0x04,
    MODE_STRIKE = 0x08,
    MODE_SUPERSCRIPT = 0x10,
    MODE_SUBSCRIPT = 0x20,
    MODE_SMALL_CAPS = 0x40,
    MODE_UPPER_CASE = 0x80,
    // Of the extended stream alone. Of the underlines one at most is on, and of the three cases.
    MODE_OVERLINE = 0x100,
    MODE_DOUBLE_UNDERLINE = 0x200,
    MODE_NUMERIC_UNDERLINE = 0x400,
    MODE_LOWER_CASE = 0x800
};

// Indents, spaces and tab positions are twips.
struct MifParagraphStyle {
    char numString[160]; // the paragraph's number text as written in the file, escapes included
    char fontFamily[80];
    int32_t hostFontNumber; // from 0
    int32_t fontSize;       // whole points
    uint32_t textColor;     // 0x00BBGGRR
    uint32_t modes;
    int32_t leftIndent;
    int32_t rightIndent;
    int32_t firstIndent;
    int32_t alignment; // a MIF_ALIGN value
    int32_t spaceBefore;
    int32_t spaceAfter;
    int32_t tabPositionsFilled; // positions that came since the list was last set up
    int32_t tabKindsFilled;
    int32_t tabCount;
    int32_t tabsStored;    // entries of the arrays, at most tabCount; the stops after them are left ones at 0
    int32_t *tabPositions; // from the host's memory, owned; null when tabsStored is 0
    int32_t *tabKinds;     // likewise, MIF_TAB values
    uint8_t lineSpacing;   // a MIF_SPACING value
};

#endif
