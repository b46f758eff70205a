// The token stream as values: one plain record for each kind of token, and the decoder that makes them.
//
// Conventions:
//  1. Measures are twips, 1440 to the inch, and font sizes points. A reader saturates what does not fit; no record
//     promises more than its type does, so a host that draws clamps.
//  2. Text is UTF-8 from a Document; in raw tokens bytes of Windows-1252 (charset.h converts it). It has whatever
//  control
//     characters the document holds.
//  3. Views point into the bytes given to the decoder, or into the decoder, and are valid until its next call.
//  4. Formats hold from where they stand until the next token of their kind, paragraph ends included. A stream begins
//     with PageSetup, LineSpacing and Charset; all other formats begin with zeros: no font, size 0, black, no modes.
//  5. Every enumeration's values but Mode's are those of the stream, in mifreader/tokens.h.
//  6. Tokens come in the order in which statements of the document close. Formats stand before the text that they apply
//     to, and only where they differ from what was last written: paragraph format, line spacing, font, modes, colour,
//     tab stops.
//  7. Values are plain copies and may be kept; what they view may not (3). Only the decoder throws.
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

// Of a paragraph between its indents. LeftRight is flush with both, as a justified paragraph is.
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

// Of a paragraph's lines, as a multiple of their height. The reader makes it of the leading that the document states:
// below 120 twips, from 120 to 239, and from 240 on.
enum class Spacing : std::uint8_t {
    Single = MIF_SPACING_SINGLE,
    OneAndHalf = MIF_SPACING_ONE_AND_HALF,
    Double = MIF_SPACING_DOUBLE
};

// What characters can be, each on or off apart from the others; but Superscript and Subscript are not on at once, and
// SmallCaps and UpperCase neither. The values are those of no stream: they are the places of the stream's bits, from
// the lowest, so that a set of modes fits in a byte.
enum class Mode : std::uint8_t { Bold, Italic, Underline, Strike, Superscript, Subscript, SmallCaps, UpperCase };

// A run of text: one string of the document, a paragraph's number, a variable or one special character. Runs are not
// joined, so that a word may be in several.
struct Text {
    // UTF-8 from a Document, unless it was asked for raw tokens, which are Windows-1252; of any length that the buffer
    // for tokens allows; may be empty, and may hold control characters.
    std::string_view bytes;
};

// Indents and alignment of the paragraphs that follow, in twips; any of them may be negative. The first line is
// indented from the same edge as the left indent, not from the left indent.
struct ParaFormat {
    std::int32_t leftIndent;
    std::int32_t rightIndent;
    std::int32_t firstLineIndent;
    Alignment alignment;
};

// One stop of a paragraph.
struct TabStop {
    TabKind kind;
    // Twips from the edge that the indents count from, as the document states it.
    std::int32_t position;
};

// The tab stops of the paragraphs that follow; they replace all earlier ones. In the order of the document, which need
// not be that of their positions; none is a list, too. Stops that the document announces and then does not give are
// Left at 0.
struct TabStops {
    std::span<const TabStop> stops;
};

// A tab character, to the next of the tab stops in force. One inside a string stands before the string's Text, which
// has a blank in its place; one outside of strings stands in its place.
struct Tab {
};

// A character mode goes on or off. One that is on may be switched on again: when one mode changes, all that are on can
// go off and those that stay on again. At a paragraph's end all go off, before its LineBreak.
struct Attribute {
    Mode mode;
    // Whether it goes on, for all modes alike; the stream tells it of two of them the other way round.
    bool on;
};

// The columns of the table cells that follow, in twips: once for each table, before its first cell. A table of a
// document that does not state them all has none.
struct TableRow {
    // One for each column, from the left; 0 and less for one whose width the document does not tell.
    std::span<const std::int32_t> columnWidths;
    // Of the table from the left indent of its paragraph, so that it is centred; negative for a table that is wider
    // than the space between the indents.
    std::int32_t offset;
};

// The end of a table, with or without a TableRow before it. The paragraph that holds the table's anchor goes on.
struct TableEnd {
};

// The end of a cell. Rows have no end of their own: so many cells as there are columns are one.
struct CellEnd {
};

// The end of a paragraph; a LineBreak stands before it.
struct ParaEnd {
};

// The end of a line that the document asks for, or, when ParaEnd is the next token, of a paragraph's last one. Lines
// that only the width of the page ends are not told.
struct LineBreak {
};

// The font of the text that follows, which HOST_NOTIFY_FONT has announced before.
struct Font {
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    // As FontRegistry::find takes it: the host's answer to the announcement minus 1, or 0 when it had none. In the
    // extended stream none where the document states no family.
    std::uint32_t number;
    // Whole points; 0 when the document states none. A negative size of the document wraps: -3 is 4294967293.
    std::uint32_t size;
};

// Page size and margins in twips. The first token of every stream, written before any statement of the document is
// read, and so always with the same values: 12240 by 15840 and four margins of 1440.
struct PageSetup {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t leftMargin;
    std::uint32_t topMargin;
    std::uint32_t rightMargin;
    std::uint32_t bottomMargin;
};

// The line spacing of the paragraphs that follow. The second token of every stream, Single, and again where it changes.
struct LineSpacing {
    Spacing spacing;
};

// The color of the text that follows, 0 to 255 of each; black until the first one.
struct TextColor {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

// An anchored frame that holds an embedded object. It stands in the text where the document anchors it.
struct Frame {
    // Decimal digits, as a rule; any bytes but NUL from a faulty plug-in. Object takes it to open the object.
    std::string_view id;
    // Twips; 0 for a measure that the document does not state, which is then for the host to choose, such as that of
    // the object's data.
    std::uint32_t width;
    std::uint32_t height;
    // 2 when the object's data are embedded, 0 when a file reference follows them.
    std::uint32_t kind;
};

// The character set of the text, MIF_CHARSET_WINDOWS_1252. The third token of every stream, and once only.
struct Charset {
    std::uint32_t number;
};

// In the order in which Token::index() counts them; the order of the codes, but for the gaps between them and TableEnd,
// which shares a code with TableRow.
using Token = std::variant<Text, ParaFormat, TabStops, Tab, Attribute, TableRow, TableEnd, CellEnd, ParaEnd, LineBreak,
                           Font, PageSetup, LineSpacing, TextColor, Frame, Charset,
                           // Of the extended stream.
                           Paragraph, Number, ModeChange, FontSize, TabLeaders, NoteBegin, NoteEnd, NoteReference,
                           Marker, XRefBegin, XRefEnd, TableOpen, TitleBegin, TitleEnd, Row, Cell, TableClose, Anchor,
                           BoxBegin, BoxEnd, DocumentField, PageSize, Loss, LossTotal>;

// Takes a token stream apart, for a host that calls the reader itself or has stored a stream; Document has its own. It
// trusts nothing: whatever the bytes are, it reads within them or throws. Used by one thread at a time.
class TokenDecoder
{
public:
    // name  what the messages of StreamError call the stream; copied
    explicit TokenDecoder(std::string name = "token stream");

    // Goes on with further bytes, whole tokens, of the same stream; they must stay until the next call. What earlier
    // bytes still held is given up.
    void decode(std::span<const std::uint8_t> bytes) noexcept;

    // Returns the next token, or null at the end of the bytes. The token and its views are valid until the next call.
    // Throws StreamError, which says what is wrong and at which byte of the stream; the decoder then stays where it is.
    const Token *next();

    // The position of the next token in bytes from the start of the stream, over all that decode() was given so far.
    std::uint64_t position() const noexcept
    {
        return position_;
    }

private:
    // Reads the fields of one token, one after the other.
    class Payload;

    // Returns the length of the next token, which is one that its code allows and lies within the bytes.
    std::uint32_t checkedLength() const;
    Token decodeToken(Payload &payload);
    // The two kinds whose lists have elements that need decoding; they fill the vectors below.
    Token decodeTabStops(Payload &payload);
    Token decodeTableRow(Payload &payload);
    Token decodeExtended(Payload &payload);
    Token decodeTablePart(Payload &payload);
    Token decodeTabLeaders(Payload &payload);
    Token decodeTableOpen(Payload &payload);
    // Throws StreamError for a byte of the stream, which lies within the token at hand.
    [[noreturn]] void fail(std::uint64_t position, const std::string &reason) const;

    // For messages.
    std::string name_;
    // From the next token on.
    std::span<const std::uint8_t> bytes_;
    // Of the first of them in the stream.
    std::uint64_t position_ = 0;
    // The last one, to which next() points.
    Token token_;
    // What the spans of a token point to.
    std::vector<TabStop> tabStops_;
    std::vector<std::int32_t> columnWidths_;
    std::vector<std::string_view> leaders_;
};

} // namespace mifhost

#endif
