/* The binary token stream that mifFillBuffer writes: codes and payloads. The numbered conventions at the head of host.h
 * hold here too, and these:
 *  1. A token is one code byte, the length of the whole token (code byte and length included) as an unsigned 32-bit
 *     number, and length - 5 bytes of payload.
 *  2. All numbers are little-endian and unaligned: u8, u32, and i32 for two's complement. Measurements are twips.
 *  3. The stream has no header but its first three tokens (TOKEN_PAGE_SETUP, TOKEN_LINE_SPACING, TOKEN_CHARSET) and no
 *     end mark: it ends where mifFillBuffer reports 100 percent. A token is never split between two calls.
 *  4. Formats are written before the text that they apply to, and only where they differ from what was last written.
 *     Everything starts at 0: indents, alignment, font, size, modes, colour (black), no tab stops.
 *  5. Only the codes below are written. A reader of the stream can pass over an unknown code by its length.
 */
#ifndef MIFREADER_TOKENS_H
#define MIFREADER_TOKENS_H

/* Token codes, each with its whole length in bytes and its payload. */
enum {
    /* 9 + n: u32 n; n bytes of Windows-1252 text without a terminator. n may be 0. */
    TOKEN_TEXT = 0,

    /* 18: i32 left indent; i32 right indent; i32 first-line indent; u8 alignment (MIF_ALIGN_...). The first-line indent
     * is measured from the same edge as the left indent.
     */
    TOKEN_PARA_FORMAT = 1,

    /* 9 + 5k: u32 k; then k times: u8 kind (MIF_TAB_...), i32 position. Replaces all earlier stops. */
    TOKEN_TAB_STOPS = 2,

    /* 6: u8 0. A tab character. */
    TOKEN_TAB = 3,

    /* 9: u32 value. One character mode goes on or off (MIF_MODE_...). */
    TOKEN_ATTRIBUTE = 4,

    /* 30 + 4n: u32 n; n times i32 column width; u32 30; u32 60; u32 30; u32 60; i32 horizontal offset that centres the
     * table from the left indent, negative for a table wider than the space between the indents; u8 0. The columns of
     * the cells that follow. Or 9: u32 0. The end of the table.
     */
    TOKEN_TABLE_ROW = 6,

    /* 5: the end of a table cell. */
    TOKEN_CELL_END = 8,

    /* 5: the end of a paragraph; a TOKEN_LINE_BREAK stands before it. */
    TOKEN_PARA_END = 13,

    /* 5: a line break. */
    TOKEN_LINE_BREAK = 14,

    /* 13: u32 font number, the host's answer to HOST_NOTIFY_FONT minus 1 (0 when it gave none); u32 size in points. */
    TOKEN_FONT = 15,

    /* 38: u8 2; u32 page width; u32 page height; u32 left margin; u32 top margin; u32 right margin; u32 bottom margin;
     * i32 -1; i32 -1. Always the first token.
     */
    TOKEN_PAGE_SETUP = 16,

    /* 6: u8 class (MIF_SPACING_...). */
    TOKEN_LINE_SPACING = 18,

    /* 10: u8 0; u32 colour as 0x00BBGGRR. */
    TOKEN_TEXT_COLOR = 19,

    /* 83 + k: the k digits of the frame's identifier and a zero byte; u32 width; u32 height; u32 kind, 2 when the
     * object's data are embedded and 0 when a file reference follows them; u32 0; u32 100; u32 100; eight u32 0; u32
     * 180; u32 0; u32 180; u32 0; u8 255; four bytes 0. An anchored frame whose embedded object can be opened by that
     * identifier.
     */
    TOKEN_FRAME = 20,

    /* 9: u32, the value that mifCharSet returns. */
    TOKEN_CHARSET = 27
};

/* The bytes that every token begins with: its code and its length. */
enum { MIF_TOKEN_HEADER_SIZE = 5 };

/* Alignments of TOKEN_PARA_FORMAT. */
enum { MIF_ALIGN_LEFT = 0, MIF_ALIGN_RIGHT = 1, MIF_ALIGN_CENTER = 2, MIF_ALIGN_LEFT_RIGHT = 3 };

/* Kinds of TOKEN_TAB_STOPS. */
enum { MIF_TAB_LEFT = 0, MIF_TAB_RIGHT = 1, MIF_TAB_CENTER = 2 };

/* Classes of TOKEN_LINE_SPACING: leading below 120 twips, from 120 to 239, from 240 on. */
enum { MIF_SPACING_SINGLE = 0, MIF_SPACING_ONE_AND_HALF = 1, MIF_SPACING_DOUBLE = 2 };

/* Values of TOKEN_ATTRIBUTE. Six modes carry 0x8000 to go on; small capitals and upper case carry it to go off. */
enum {
    MIF_MODE_BOLD_ON = 0x8001,
    MIF_MODE_BOLD_OFF = 0x0001,
    MIF_MODE_ITALIC_ON = 0x8002,
    MIF_MODE_ITALIC_OFF = 0x0002,
    MIF_MODE_UNDERLINE_ON = 0x8004,
    MIF_MODE_UNDERLINE_OFF = 0x0004,
    MIF_MODE_STRIKE_ON = 0x8008,
    MIF_MODE_STRIKE_OFF = 0x0008,
    MIF_MODE_SUPERSCRIPT_ON = 0x8010,
    MIF_MODE_SUPERSCRIPT_OFF = 0x0010,
    MIF_MODE_SUBSCRIPT_ON = 0x8020,
    MIF_MODE_SUBSCRIPT_OFF = 0x0020,
    MIF_MODE_SMALL_CAPS_ON = 0x0040,
    MIF_MODE_SMALL_CAPS_OFF = 0x8040,
    MIF_MODE_UPPER_CASE_ON = 0x0080,
    MIF_MODE_UPPER_CASE_OFF = 0x8080
};

#endif
