// The token stream as values: one plain record for each kind of token, and the decoder that makes them.
//
// Conventions:
//  1. Measures are twips, 1440 to the inch, and font sizes points. A reader saturates what does not fit; no record
//  promises
//     more than its type does, so a host that draws clamps.
//  2. Text is bytes of Windows-1252 (charset.h converts it), with whatever control characters the document holds.
//  3. Views point into the bytes given to the decoder, or into the decoder, and are valid until its next call.
//  4. Formats hold from where they stand until the next token of their kind, paragraph ends included. A stream begins
//     with PageSetup, LineSpacing and Charset; all other formats begin with zeros: no font, size 0, black, no modes.
//  5. Every enumeration's values are those of the stream, in mifreader/tokens.h.
#ifndef MIFHOST_TOKEN_H
#define MIFHOST_TOKEN_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "mifhost/extended_token.h"
#include "mifreader/tokens.h"

namespace mifhost
{

// Of a paragraph between its indents.
enum class Alignment : std::uint8_t {
    Left = MIF_ALIGN_LEFT,
    Right = MIF_ALIGN_RIGHT,
    Center = MIF_ALIGN_CENTER,
    LeftRight = MIF_ALIGN_LEFT_RIGHT
};

// What stands at a tab stop: the left end, the right end or the middle of the text after the tab.
enum class TabKind : std::uint8_t {
    Left = MIF_TAB_LEFT,
    Right = MIF_TAB_RIGHT,
    Center = MIF_TAB_CENTER,
    Decimal = MIF_TAB_DECIMAL // its point; in the extended stream alone
};

// Of a paragraph's lines, as a multiple of their height.
enum class Spacing : std::uint8_t {
    Single = MIF_SPACING_SINGLE,
    OneAndHalf = MIF_SPACING_ONE_AND_HALF,
    Double = MIF_SPACING_DOUBLE
};

// What characters can be, each on or off apart from the others; but Superscript and Subscript are not on at once, and
// SmallCaps and UpperCase neither.
enum class Mode : std::uint8_t { Bold, Italic, Underline, Strike, Superscript, Subscript, SmallCaps, UpperCase };

// A run of text, which may be empty. Bytes of Windows-1252.
struct Text {
    std::string_view bytes;
};

// Indents and alignment of the paragraphs that follow, in twips. The first line is indented from the same edge as the
// left indent.
struct ParaFormat {
    std::int32_t leftIndent;
    std::int32_t rightIndent;
    std::int32_t firstLineIndent;
    Alignment alignment;
};

struct TabStop {
    TabKind kind;
    std::int32_t position; // twips
};

// The tab stops of the paragraphs that follow; they replace all earlier ones.
struct TabStops {
    std::span<const TabStop> stops;
};

// A tab character, to the next of the tab stops in force.
struct Tab {
};

// A character mode goes on or off. One that is on may be switched on again; at a paragraph's end all go off.
struct Attribute {
    Mode mode;
    bool on;
};

// The columns of the table cells that follow, in twips: once for each table, before its first cell. A table of a
// document that does not state them all has none.
struct TableRow {
    std::span<const std::int32_t> columnWidths;
    std::int32_t offset; // of the table from the left indent; negative for a table that is wider than the text
};

// The end of a table, with or without a TableRow before it.
struct TableEnd {
};

// The end of a cell. Rows have no end of their own: so many cells as there are columns are one.
struct CellEnd {
};

// The end of a paragraph; a LineBreak stands before it.
struct ParaEnd {
};

// The end of a line that the document asks for, or of a paragraph's last one.
struct LineBreak {
};

// The font of the text that follows.
struct Font {
    std::uint32_t number; // as FontRegistry::find takes it
    std::uint32_t size;   // points
};

// Page size and margins in twips. The first token of every stream.
struct PageSetup {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t leftMargin;
    std::uint32_t topMargin;
    std::uint32_t rightMargin;
    std::uint32_t bottomMargin;
};

// The line spacing of the paragraphs that follow.
struct LineSpacing {
    Spacing spacing;
};

// The color of the text that follows, 0 to 255 of each.
struct TextColor {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

// An anchored frame that holds an embedded object.
struct Frame {
    std::string_view id;  // decimal digits; opens the object
    std::uint32_t width;  // twips
    std::uint32_t height; // twips
    std::uint32_t kind;   // 2 when the object's data are embedded, 0 when a file reference follows them
};

// The character set of the text, MIF_CHARSET_WINDOWS_1252.
struct Charset {
    std::uint32_t number;
};

// In the order in which Token::index() counts them.
using Token = std::variant<Text, ParaFormat, TabStops, Tab, Attribute, TableRow, TableEnd, CellEnd, ParaEnd, LineBreak,
                           Font, PageSetup, LineSpacing, TextColor, Frame, Charset,
                           // Of the extended stream.
                           Paragraph, Number, ModeChange, FontSize, TabLeaders, NoteBegin, NoteEnd, NoteReference,
                           Marker, XRefBegin, XRefEnd, TableOpen, TitleBegin, TitleEnd, Row, Cell, TableClose, Anchor,
                           BoxBegin, BoxEnd, DocumentField, PageSize, Loss, LossTotal>;

// Takes a token stream apart. It trusts nothing: whatever the bytes are, it reads within them or throws.
class TokenDecoder
{
public:
    // name  what the messages of StreamError call the stream
    explicit TokenDecoder(std::string name = "token stream");

    // Goes on with further bytes, whole tokens, of the same stream; they must stay until the next call. What earlier
    // bytes still held is given up.
    void decode(std::span<const std::uint8_t> bytes) noexcept;

    // Returns the next token, or null at the end of the bytes. The token and its views are valid until the next call.
    // Throws StreamError, which says what is wrong and at which byte of the stream; the decoder then stays where it is.
    const Token *next();

    // The position of the next token in the stream, over all bytes so far.
    std::uint64_t position() const noexcept
    {
        return position_;
    }

private:
    class Payload;

    std::uint32_t checkedLength() const;
    Token decodeToken(Payload &payload);
    Token decodeTabStops(Payload &payload);
    Token decodeTableRow(Payload &payload);
    Token decodeExtended(Payload &payload);
    Token decodeTablePart(Payload &payload);
    Token decodeTabLeaders(Payload &payload);
    Token decodeTableOpen(Payload &payload);
    [[noreturn]] void fail(std::uint64_t position, const std::string &reason) const;

    std::string name_;
    std::span<const std::uint8_t> bytes_;
    std::uint64_t position_ = 0;
    Token token_;
    // What the spans of a token point to.
    std::vector<TabStop> tabStops_;
    std::vector<std::int32_t> columnWidths_;
    std::vector<std::string_view> leaders_;
};

} // namespace mifhost

#endif
