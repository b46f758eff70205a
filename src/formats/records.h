// What the format family keeps: both catalogs, the format that the document asks for and the one that the output was
// last told.
#ifndef MIFREADER_SRC_FORMATS_RECORDS_H
#define MIFREADER_SRC_FORMATS_RECORDS_H

#include <cstdint>

#include "formats/extended_style.h"
#include "formats/style.h"
#include "mifreader/reader.h"
#include "reader/index.h"
#include "reader/list.h"

// What setting a property of currentStyle came to.
enum class MifChange {
    none,    // the field is as appliedStyle has it, or is not compared
    differs, // it differs from appliedStyle
    modes,   // it is a mode; all modes are compared together
    failed   // memory is exhausted
};

// A statement's unquoted value, and the number that its property reads in it: a measurement, a color, a mode's state.
struct MifPropertyValue {
    const char *text;
    int32_t number;
};

// Reading a property and setting it are two steps, because a format is defined once and selected often.
struct MifProperty {
    int32_t (*read)(const char *text);
    MifChange (*set)(MifContext *context, MifPropertyValue value);
};

// One statement of a format's definition. Name and value are owned copies, the value without quotes and escapes.
struct MifStoredStatement {
    char *name;
    char *value;
    int32_t number;              // what the property has read in the value
    const MifProperty *property; // what selecting the format sets; null for nothing
    MifStoredStatement *next;
};

// Selecting a format carries all of its statements out: without a bound a document could have that done without end.
inline constexpr uint32_t mostStoredStatements = 4096;

// A named format: the statements that defined it, in their order; the first is the tag.
struct MifFormatEntry : MifIndexNode {
    MifList<MifStoredStatement> statements;
    uint32_t statementCount;
    // In the extended stream, of a paragraph format: whether the document defines it, and what the plain stream would
    // take for its tables.
    uint32_t isDefined;
    uint32_t statesLeftIndent;
    uint32_t statesRightIndent;
    int32_t leftIndent;
    int32_t rightIndent;
    MifFormatEntry *next;
};

struct MifFormatCatalog {
    MifList<MifFormatEntry> entries; // in the order of their creation
    MifIndex tags;
    MifFormatEntry *defining; // the entry made last, which receives the statements while pending
    MifFormatEntry *nameless; // no tag selects it, so that one is enough; null for none
    uint32_t pending;         // an entry has been made and its definition is being stored
};

// What a color of the catalog is made of, in parts of full ink.
struct MifInks {
    int32_t cyan;
    int32_t magenta;
    int32_t yellow;
    int32_t black;
};

inline constexpr int32_t fullInk = 100'000; // thousandths of a percent: whole numbers round alike on all machines

inline constexpr uint32_t languageCount = 20;

// Formats in the extended stream. Owned by the sources of this folder; told and wanted differ only where text/ has not
// written yet.
struct MifExtendedFormatState {
    MifExtendedStyle wanted; // what the document asks for
    MifExtendedStyle told;   // what the output was told last; written by text/apply_extended alone
    uint32_t toldColor;      // 0x00BBGGRR; likewise
    MifCharacters *target;   // which of wanted's characters a property sets
    MifTabStop openStop;     // of the TabStop that is open
    uint32_t inTabStop;      // a position of it has come
    MifList<MifColor> colors;
    MifIndex colorNames;
    char *colorTag; // of the Color that is open; owned
    MifInks inks;
    MifList<MifFontFamily> families;
    MifIndex familyNames;
    uint32_t paragraphsOf[languageCount]; // by language
};

// A number text that waits for the next text of its paragraph, as it was written in the file.
struct MifWaitingNumber {
    MifWaitingNumber *enclosing; // of a paragraph around this one; null for none
    uint32_t paragraph;          // its own: how many paragraphs are open in it; 0 outside of all
    char text[sizeof(MifParagraphStyle::numString)];
};

// Owned by the sources of this folder; the inside flags follow their statements, and a definition ends with its own.
struct MifFormatState {
    MifFormatCatalog pgfCatalog;
    MifFormatCatalog fontCatalog;
    MifFormatEntry *currentPgf; // the paragraph format selected or made last
    uint32_t inPgfCatalog;
    uint32_t inPgf;
    uint32_t inFontCatalog;
    uint32_t inFont;
    uint32_t styleChanged;          // currentStyle may differ from appliedStyle; text/ raises and lowers it too
    MifWaitingNumber *numbers;      // of open paragraphs, the innermost first, at most one of each
    MifWaitingNumber *strayNumber;  // the one outside of all paragraphs; it waits for whatever text comes next
    MifParagraphStyle currentStyle; // what the document asks for; text/apply_format gives sizes back there. Of the
                                    // extended stream the left and right indents alone, by which tables are placed
    MifParagraphStyle appliedStyle; // what the output was last told; written by text/apply_format alone
    MifExtendedFormatState extended;
};

#endif
