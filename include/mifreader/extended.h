/* The extended stream: what the author of a document wrote and the plain stream has no place for. A host that asks for
 * it gets more tokens; to a host that does not, nothing differs. The numbered conventions of host.h and tokens.h hold
 * here too, and these:
 *  1. Tokens have the head of the plain ones and codes from 64 up. A host that asks for version 1 knows all tokens of
 *     this header; later versions may add others.
 *  2. All text is UTF-8, well formed, and TOKEN_CHARSET says so with MIF_CHARSET_UTF_8. A text within a payload is a
 *     u32 of its length in bytes and as many bytes, without a terminator.
 *  3. The plain tokens keep their layout. TOKEN_FONT's number is MIF_FONT_NONE where the document states no family, its
 *     size in whole points, cut, and 0 where it states none; TOKEN_ATTRIBUTE tells each change of a mode, on and off,
 *     wherever it happens, and only what changed. Until told there is no font and no mode.
 *  4. Things are told where they stand in the file. What a reader of the document sees elsewhere (a note at its
 *     reference, a text box at its anchor) is the host's to place, by the identifiers.
 *  5. Leaving out the tokens of this header and all that stands between the begin and the end of notes and boxes, the
 *     sequence of TOKEN_PAGE_SETUP, TOKEN_TABLE_ROW, TOKEN_CELL_END, TOKEN_FRAME, TOKEN_LINE_BREAK and TOKEN_PARA_END
 *     is the plain one, in a document without hidden conditions, without line breaks inside strings, and without notes
 *     and anchors of frames in notes. As in the plain stream a TOKEN_FRAME may stand where tables are defined; a frame
 *     that the text anchors has its TOKEN_ANCHOR before it.
 *  6. Begins and ends match and nest. Formats hold on over them: a note, a cell, a title and a box begin with formats
 *     of their own and give the outer ones back, but that too is told as changes, before the text it applies to.
 */
#ifndef MIFREADER_EXTENDED_H
#define MIFREADER_EXTENDED_H

#include "mifreader/reader.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Versions of the extended stream. */
enum { MIF_EXTENDED_VERSION = 1 };

/* What a document's bytes above 0x7F are. */
enum {
    MIF_ENCODING_AUTO = 0,         /* UTF-8 from version 8.00 of the format on, and in strings that are valid UTF-8 */
    MIF_ENCODING_MIF = 1,          /* MIF's own set */
    MIF_ENCODING_WINDOWS_1252 = 2, /* strings that were written as if for the plain stream */
    MIF_ENCODING_UTF_8 = 3
};

/* The value of TOKEN_CHARSET in the extended stream. mifCharSet keeps telling the plain one's. */
enum { MIF_CHARSET_UTF_8 = 65001 };

/* The number in TOKEN_FONT where the document states no family. */
enum { MIF_FONT_NONE = -1 };

/* Why mifFillBuffer or mifInitDoc returned 6. */
enum {
    MIF_REASON_NONE = 0,         /* it did not */
    MIF_REASON_NO_HEADER = 1,    /* the document does not begin as MIF does */
    MIF_REASON_MEMORY = 2,       /* memory is exhausted */
    MIF_REASON_SMALL_BUFFER = 3, /* a token is larger than the whole buffer, or the buffer holds no token */
    MIF_REASON_SIZE = 4          /* the document's size is unknown, or 2 GiB and more */
};

typedef struct MifFailure {
    uint32_t reason;  /* MIF_REASON_... */
    int32_t position; /* the byte of the document that the reader had come to */
} MifFailure;

/* Asks for the extended stream. To be called after mifAllocateContext and before mifInitDoc.
 *
 * version   MIF_EXTENDED_VERSION
 * encoding  MIF_ENCODING_...
 * Returns 0; 6 when the context is null, a value is another one, or the call comes too late: nothing changes then.
 */
MIF_API int32_t mifExtendStream(MifContext *context, uint32_t version, uint32_t encoding);

/* Stores why the context's last call returned 6, in the plain stream too. Returns 0; 6 when the context is null. */
MIF_API int32_t mifGetFailure(const MifContext *context, MifFailure *failure);

/* Token codes of the extended stream, each with its whole length in bytes and its payload; t stands for the bytes of
 * the payload's texts without their lengths.
 */
enum {
    /* 29 + t: i32 space above; i32 space below; i32 leading, the distance of lines beyond the font's size; u8 1 to keep
     * with the next paragraph; u8 placement (MIF_PLACEMENT_...); u8 outline level, 0 for none; u8 alignment in a cell
     * (MIF_CELL_...), which the cell has from its first paragraph; text tag of the format; text language, as in BCP 47,
     * empty for none. Before the first token of every paragraph, its formats included.
     */
    TOKEN_PARAGRAPH = 64,

    /* 9 + t: text. The paragraph's number or bullet, after its formats; tabs in it are characters. */
    TOKEN_NUMBER = 65,

    /* 7: u8 mode (MIF_EXTENDED_...); u8 1 for on, 0 for off. */
    TOKEN_MODE = 66,

    /* 9: u32 font size in twips; after a TOKEN_FONT of a size that is not whole points. */
    TOKEN_FONT_SIZE = 67,

    /* 9 + 4k + t: u32 k; k texts, the leader of each of the stops in force, empty for blanks. After a TOKEN_TAB_STOPS
     * some of whose stops have one.
     */
    TOKEN_TAB_LEADERS = 68,

    /* 9: i32 identifier. The paragraphs of a note follow, to its end. */
    TOKEN_NOTE_BEGIN = 69,

    /* 5 */
    TOKEN_NOTE_END = 70,

    /* 9: i32 identifier. Here the text refers to the note. */
    TOKEN_NOTE_REFERENCE = 71,

    /* 17 + t: i32 type; text name of the type, empty when the document gives none; text. */
    TOKEN_MARKER = 72,

    /* 17 + t: text name of the format; text source text, which a marker at the target has; text source file, in MIF's
     * form of paths, empty for this document. The reference's text follows, to its end.
     */
    TOKEN_XREF_BEGIN = 73,

    /* 5 */
    TOKEN_XREF_END = 74,

    /* 105 + 4n + t: i32 identifier; text tag of the format; u8 alignment (MIF_ALIGN_...); u8 place of the title
     * (MIF_TITLE_...); i32 left indent; u32 n; n times i32 column width; rulings of the left, top, right and bottom
     * edge, between columns, between rows of the body, between those of heading and footing, and between these and the
     * body; u8 fill and u32 colour of the body; u8 fill and u32 colour of heading and footing. A ruling is u8 lines, 0
     * for none; i32 width of a line; u32 colour as 0x00BBGGRR. A fill is 0 solid, 1 to 6 tints of 90, 70, 50, 30, 10
     * and 3 percent, 7 white, 8 to 14 patterns, 15 none.
     */
    TOKEN_TABLE_OPEN = 75,

    /* 5: the paragraphs of the table's title follow, to its end. */
    TOKEN_TITLE_BEGIN = 76,

    /* 5 */
    TOKEN_TITLE_END = 77,

    /* 6: u8 kind (MIF_ROW_...). A row's cells follow. */
    TOKEN_ROW = 78,

    /* 59: u32 columns and u32 rows that it spans, both 0 for one that another covers; u8 what the cell states itself
     * (MIF_CELL_STATES_... added up); u8 fill; u32 colour; rulings of the left, top, right and bottom edge; i32 angle
     * of its text in degrees. TOKEN_CELL_END ends it.
     */
    TOKEN_CELL = 79,

    /* 5: the end of a table, before the plain stream's. */
    TOKEN_TABLE_CLOSE = 80,

    /* 32 + t: i32 identifier of the frame; i32 left, top, width and height; u8 place (MIF_FRAME_...); u8 alignment
     * (MIF_ANCHOR_...); u8 1 when a drawing of this identifier follows; text path of a picture in a file, with slashes,
     * empty for none. Every anchor of a frame; its TOKEN_FRAME, if any, comes next.
     */
    TOKEN_ANCHOR = 81,

    /* 9: i32 identifier of the frame that it stands in. The paragraphs of a text box follow, to its end. */
    TOKEN_BOX_BEGIN = 82,

    /* 5 */
    TOKEN_BOX_END = 83,

    /* 10 + t: u8 field (MIF_DOCUMENT_...); text value. */
    TOKEN_DOCUMENT = 84,

    /* 13: i32 width; i32 height. The size of the document's pages, where no page states one. */
    TOKEN_PAGE_SIZE = 85,

    /* 10: u8 kind (MIF_LOSS_...); i32 byte of the document. At most 1000 of a document are told. */
    TOKEN_LOSS = 86,

    /* 14: u8 kind; u32 how many; i32 byte of the first. At the document's end, one for each kind that there were. */
    TOKEN_LOSS_TOTAL = 87
};

/* Kinds of TOKEN_TAB_STOPS beside those of the plain stream. */
enum { MIF_TAB_DECIMAL = 3 };

/* Modes of TOKEN_MODE. */
enum {
    MIF_EXTENDED_OVERLINE = 0,
    MIF_EXTENDED_DOUBLE_UNDERLINE = 1,
    MIF_EXTENDED_NUMERIC_UNDERLINE = 2,
    MIF_EXTENDED_LOWER_CASE = 3
};

/* Where a paragraph may begin. */
enum {
    MIF_PLACEMENT_ANYWHERE = 0,
    MIF_PLACEMENT_COLUMN = 1,
    MIF_PLACEMENT_PAGE = 2,
    MIF_PLACEMENT_LEFT_PAGE = 3,
    MIF_PLACEMENT_RIGHT_PAGE = 4
};

/* Where in a cell its text stands. */
enum { MIF_CELL_TOP = 0, MIF_CELL_MIDDLE = 1, MIF_CELL_BOTTOM = 2 };

/* Where a table's title stands. */
enum { MIF_TITLE_ABOVE = 0, MIF_TITLE_BELOW = 1, MIF_TITLE_NONE = 2 };

enum { MIF_ROW_HEADING = 0, MIF_ROW_BODY = 1, MIF_ROW_FOOTING = 2 };

/* No fill, for tables and cells. */
enum { MIF_FILL_NONE = 15 };

enum {
    MIF_CELL_STATES_FILL = 1,
    MIF_CELL_STATES_COLOR = 2,
    MIF_CELL_STATES_LEFT = 4,
    MIF_CELL_STATES_TOP = 8,
    MIF_CELL_STATES_RIGHT = 16,
    MIF_CELL_STATES_BOTTOM = 32
};

/* Where an anchored frame stands: in its line, or apart from it. */
enum {
    MIF_FRAME_INLINE = 0,
    MIF_FRAME_BELOW = 1,
    MIF_FRAME_TOP = 2,
    MIF_FRAME_BOTTOM = 3,
    MIF_FRAME_MARGIN = 4,
    MIF_FRAME_RUN_IN = 5
};

enum {
    MIF_ANCHOR_LEFT = 0,
    MIF_ANCHOR_CENTER = 1,
    MIF_ANCHOR_RIGHT = 2,
    MIF_ANCHOR_INSIDE = 3,
    MIF_ANCHOR_OUTSIDE = 4
};

/* Fields of TOKEN_DOCUMENT. */
enum {
    MIF_DOCUMENT_VERSION = 0, /* of the format, as its header has it */
    MIF_DOCUMENT_TITLE = 1,
    MIF_DOCUMENT_AUTHOR = 2,
    MIF_DOCUMENT_SUBJECT = 3,
    MIF_DOCUMENT_KEYWORDS = 4,
    MIF_DOCUMENT_LANGUAGE = 5, /* as in BCP 47; the stated one, or at the document's end that of most paragraphs */
    MIF_DOCUMENT_ENCODING = 6  /* found in its strings, at the document's end: "MIF", "Windows-1252", "UTF-8" */
};

/* Kinds of losses. */
enum {
    MIF_LOSS_STATEMENT = 0, /* a statement, or a line of an object's data, is too long and was passed over */
    MIF_LOSS_COMMENT = 1,   /* so is a comment or a macro */
    MIF_LOSS_END = 2,       /* the document ends inside a statement; the byte is that of the innermost one */
    MIF_LOSS_NUL = 3,       /* a NUL byte ends a value before its end */
    MIF_LOSS_CHARACTER = 4, /* an undefined character became U+FFFD */
    MIF_LOSS_RECORD = 5,    /* a record was left out: memory was refused, or there are too many */
    MIF_LOSS_UNPLACED = 6,  /* text of a rectangle that no page and no frame has, or that comes before any */
    MIF_LOSS_REFERENCE = 7, /* an anchor or a reference names nothing that there is */
    MIF_LOSS_OBJECT = 8     /* an embedded object has no identifier to read it by */
};

#ifdef __cplusplus
}
#endif

#endif
