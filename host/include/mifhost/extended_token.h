// The tokens of the extended stream as values. The conventions of token.h hold; text is UTF-8, well formed. Every
// enumeration's values are those of mifreader/extended.h.
#ifndef MIFHOST_EXTENDED_TOKEN_H
#define MIFHOST_EXTENDED_TOKEN_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "mifreader/extended.h"
#include "mifreader/tokens.h"

namespace mifhost
{

// Where a paragraph may begin.
enum class Placement : std::uint8_t { Anywhere, Column, Page, LeftPage, RightPage };

// Where in a cell its text stands.
enum class CellAlignment : std::uint8_t { Top, Middle, Bottom };

// What characters can be beside Mode; of the underlines one at most is on, Mode::Underline among them.
enum class ExtendedMode : std::uint8_t { Overline, DoubleUnderline, NumericUnderline, LowerCase };

// A paragraph begins: before its formats and all else of it.
struct Paragraph {
    std::int32_t spaceAbove; // twips, as the next two
    std::int32_t spaceBelow;
    std::int32_t leading; // between two lines, beyond the font's size
    bool keepsWithNext;   // on one page with the paragraph after it
    Placement placement;
    std::uint8_t outlineLevel;   // from 1; 0 for none
    CellAlignment cellAlignment; // of a cell, stated by its first paragraph
    std::string_view tag;        // of its format; empty for none
    std::string_view language;   // as in BCP 47; empty for none
};

// The number or bullet that the paragraph begins with. Tabs in it are characters.
struct Number {
    std::string_view text;
};

struct ModeChange {
    ExtendedMode mode;
    bool on;
};

// The size of the text that follows, when it is not whole points.
struct FontSize {
    std::uint32_t twips;
};

// What fills the way to the stops of the last TabStops, one text each, empty for blanks.
struct TabLeaders {
    std::span<const std::string_view> leaders;
};

// A note's paragraphs stand between NoteBegin and NoteEnd, wherever it is referred to.
struct NoteBegin {
    std::int32_t id;
};
struct NoteEnd {
};
struct NoteReference {
    std::int32_t id;
};

struct Marker {
    std::int32_t type;
    std::string_view typeName; // empty when the document gives none
    std::string_view text;
};

// The reference's text stands between XRefBegin and XRefEnd.
struct XRefBegin {
    std::string_view format;
    std::string_view sourceText; // what a marker at the target says
    std::string_view sourceFile; // in MIF's form of paths; empty for this document
};
struct XRefEnd {
};

// The lines at an edge.
struct Ruling {
    std::uint8_t lines;  // 0 for none
    std::int32_t width;  // of one line, twips
    std::uint32_t color; // 0x00BBGGRR
};

struct Fill {
    std::uint8_t pattern; // 0 solid, 1 to 6 tints, 7 white, 8 to 14 patterns, MIF_FILL_NONE
    std::uint32_t color;  // 0x00BBGGRR
};

enum class TitlePlace : std::uint8_t { Above, Below, None };

// The rulings of a table, in the order of the stream.
enum class TableEdge : std::uint8_t { Left, Top, Right, Bottom, Columns, BodyRows, HeadingRows, Separator };

// A table's title, rows and cells stand between TableOpen and TableClose.
struct TableOpen {
    std::int32_t id;
    std::string_view tag;   // of its format
    std::uint8_t alignment; // MIF_ALIGN_...
    TitlePlace titlePlace;
    std::int32_t leftIndent;                    // twips
    std::span<const std::int32_t> columnWidths; // twips
    std::array<Ruling, 8> rulings;              // by TableEdge
    Fill bodyFill;
    Fill headingFill; // of heading and footing
};
struct TableClose {
};
struct TitleBegin {
};
struct TitleEnd {
};

enum class RowKind : std::uint8_t { Heading, Body, Footing };

struct Row {
    RowKind kind;
};

// A cell, which CellEnd ends.
struct Cell {
    std::uint32_t columns; // that it spans; 0 for one that another covers
    std::uint32_t rows;
    std::uint8_t states; // what it states itself, MIF_CELL_STATES_...; the rest is the table's
    Fill fill;
    std::array<Ruling, 4> rulings; // left, top, right, bottom
    std::int32_t angle;            // of its text, degrees
};

enum class FramePlace : std::uint8_t { Inline, Below, Top, Bottom, Margin, RunIn };
enum class AnchorAlignment : std::uint8_t { Left, Center, Right, Inside, Outside };

// A frame is anchored here. The Frame of an embedded object, if it has one, comes next.
struct Anchor {
    std::int32_t id;
    std::int32_t left; // twips, as the next three
    std::int32_t top;
    std::int32_t width;
    std::int32_t height;
    FramePlace place;
    AnchorAlignment alignment;
    bool hasDrawing;
    std::string_view path; // of a picture in a file, with slashes; empty for none
};

// The paragraphs of a text box stand between BoxBegin and BoxEnd, wherever its frame is anchored.
struct BoxBegin {
    std::int32_t frameId;
};
struct BoxEnd {
};

enum class DocumentFieldKind : std::uint8_t { Version, Title, Author, Subject, Keywords, Language, Encoding };

struct DocumentField {
    DocumentFieldKind kind;
    std::string_view value;
};

// The size of pages in twips, where no page states one.
struct PageSize {
    std::int32_t width;
    std::int32_t height;
};

enum class LossKind : std::uint8_t { Statement, Comment, End, Nul, Character, Record, Unplaced, Reference, Object };

struct Loss {
    LossKind kind;
    std::int32_t position; // byte of the document
};

// How many losses of a kind there were, told or not; at the document's end.
struct LossTotal {
    LossKind kind;
    std::uint32_t count;
    std::int32_t first; // byte of the document
};

} // namespace mifhost

#endif
