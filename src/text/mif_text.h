// Strings of the extended stream: from the bytes and escapes of the document to UTF-8.
#ifndef MIFREADER_SRC_TEXT_MIF_TEXT_H
#define MIFREADER_SRC_TEXT_MIF_TEXT_H

#include <cstdint>
#include <string_view>

#include "reader/context.h"

// What a step of a string is.
enum class MifTextStep { end, character, tab, lineBreak };

// Walks through a string. What is undefined becomes U+FFFD and is noted as a loss.
class MifTextReader
{
public:
    // text    as the document has it
    // glyphs  of the font that it is set in, a GLYPHS value
    MifTextReader(MifContext *context, std::string_view text, uint32_t glyphs);

    MifTextStep next();

    // The plain characters that come next, which are taken up; they are written as they stand.
    std::string_view plainRun();

    // The one that the last step is.
    uint32_t character() const
    {
        return character_;
    }

private:
    MifTextStep escape();
    MifTextStep code(uint8_t code);
    MifTextStep own(uint8_t byte);
    MifTextStep is(uint32_t character);
    uint32_t rawCharacter();

    MifContext *context_;
    const char *position_;
    const char *end_;
    uint32_t glyphs_;
    uint32_t encoding_; // of raw bytes, a MIF_ENCODING value but AUTO
    uint32_t character_ = 0;
};

// The room for converted text: a character of the document, of one byte or more, never takes more than three times as
// many.
inline constexpr size_t textRoom = size_t{3} * sourceBufferSize + 4;

// A value of the closing statement as UTF-8, zero-terminated; valid until the next call, and in the source buffer when
// it is the same there. Tabs and line breaks are characters.
const char *mifTextOfValue(MifContext *context, const char *value);

// A copy of the closing statement's value, without its quotes, in UTF-8. Null when it has none or memory is exhausted.
char *mifCopyValue(MifContext *context);

// The same in place of an earlier one, which is released. Returns 1, or 0 with the earlier one kept.
int mifKeepValue(MifContext *context, char *&place);

#endif
