// The source buffer: reading stretches of the document, white space and comments.
#ifndef MIFREADER_SRC_READER_SOURCE_H
#define MIFREADER_SRC_READER_SOURCE_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "reader/context.h"
#include "reader/words.h"

// What a byte means to the scanner, as bits.
enum : uint8_t {
    BYTE_WHITE_SPACE = 1, // blank, tab, line feed, vertical tab, form feed, carriage return
    BYTE_ENDS_NAME = 2,   // white space or `>`
    BYTE_STOPS_VALUE = 4  // outside quotes: backquote, `#`, `<`, `>`, and the first letters of define and include
};

inline constexpr std::array<uint8_t, 256> mifByteClasses = [] {
    std::array<uint8_t, 256> classes{};
    for (const unsigned char byte : {' ', '\t', '\n', '\v', '\f', '\r'}) {
        classes[byte] = BYTE_WHITE_SPACE | BYTE_ENDS_NAME;
    }
    classes['>'] = BYTE_ENDS_NAME | BYTE_STOPS_VALUE;
    for (const unsigned char byte : {'`', '#', '<', 'd', 'i'}) {
        classes[byte] = BYTE_STOPS_VALUE;
    }
    return classes;
}();

inline bool mifByteIs(char byte, uint8_t byteClass)
{
    return (mifByteClasses[static_cast<unsigned char>(byte)] & byteClass) != 0;
}

inline bool mifIsWhiteSpace(char byte)
{
    return mifByteIs(byte, BYTE_WHITE_SPACE);
}

// Whether the byte is a line feed or a carriage return.
inline bool mifNewLine(char byte)
{
    return byte == '\n' || byte == '\r';
}

// The first line-end byte in [begin, end), or end. Both are in the source buffer.
char *mifFindLineEnd(char *begin, char *end);

// Whether the stream may still deliver bytes after the ones in the buffer.
bool mifMoreToRead(const MifContext *context);

// The position in the stream of a byte in the buffer.
int32_t mifPositionOf(const MifContext *context, const char *byte);

// The document offset of the scan position. While a table is replayed it stands still, after the table's anchor.
int32_t mifFilePosition(const MifContext *context);

// Reads up to count bytes from the stream. What a stream should not answer counts as nothing.
size_t mifReadStream(MifContext *context, char *destination, size_t count);

// Reads the next stretch after the carried bytes, and nothing after the document's stated size. Returns the number of
// bytes newly read, 0 at the end of the document. Carried bytes that fill the whole buffer are given up first.
int32_t mifReadSourceFile(MifContext *context);

// Reads the document's first stretch, as much of it as the buffer holds in however many reads, so that the header is
// whole.
void mifReadFirstStretch(MifContext *context);

// The first byte from `position` on that is no white space, or the end of the text: a place in the source buffer, as
// are those below. An indent is passed over in one.
inline char *mifEatWhiteSpace(char *position)
{
    for (;;) {
        const size_t blanks = mifBytesBefore(mifLoadWord(position) ^ mifEveryByte(' '));
        position += blanks;
        if (blanks == sizeof(MifWord)) {
            continue;
        }
        if (!mifIsWhiteSpace(*position)) {
            return position;
        }
        ++position;
    }
}

// The end of the statement name that begins there, or the end of the text.
inline char *mifFindNameEnd(char *name)
{
    for (;;) {
        const MifWord word = mifLoadWord(name);
        const MifWord marks = mifMarkBelow(word, ' ' + 1) | mifMarkByte(word, '>');
        name += mifBytesBefore(marks);
        if (marks == 0) {
            continue;
        }
        if (mifByteIs(*name, BYTE_ENDS_NAME)) {
            return name;
        }
        ++name; // a control byte, part of the name
    }
}

// The stretch ends inside a step that began at `step`. If there is more to read, the bytes from there on are carried
// over and the step is to be scanned again; at the end of the document they are dropped. Returns where the scan
// position belongs: `step`, or the end of the text.
char *mifCarryOver(MifContext *context, char *step);

// Skips the comment whose `#` is at the scan position, its line end and the white space after it. A comment that the
// buffer's end cuts (its line end and one more byte must be there) is carried over if there is more to read. Returns
// the new scan position.
char *mifSkipComments(MifContext *context);

#endif
