#include "text/mif_text.h"

#include <algorithm>
#include <cstring>

#include "mifreader/extended.h"
#include "reader/host_memory.h"
#include "reader/losses.h"
#include "reader/statement.h"
#include "text/character_sets.h"
#include "text/utf8.h"

namespace
{

// What codes below 0x20 stand for.
struct LowCode {
    uint8_t code;
    uint16_t character;
};

constexpr uint8_t nothingCode = 0x05;
constexpr uint8_t tabCode = 0x08;
constexpr uint8_t lineBreakCode = 0x09;

constexpr LowCode lowCodes[] = {
    {0x04, 0x00AD}, {0x06, 0x00AD}, {0x10, 0x2007}, {0x11, 0x00A0},
    {0x12, 0x2009}, {0x13, 0x2002}, {0x14, 0x2003}, {0x15, 0x2011},
};

// From this version on strings are UTF-8.
constexpr double firstUtf8Version = 8.0;

int digitOf(char digit)
{
    const char lower = static_cast<char>(digit | 0x20);
    return digit >= '0' && digit <= '9' ? digit - '0' : lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// The encoding of a string's raw bytes. What documents say and hold is kept for their end.
uint32_t encodingOf(MifContext *context, std::string_view text)
{
    MifExtensionState &extension = context->extension;
    if (extension.encoding != MIF_ENCODING_AUTO) {
        return extension.encoding;
    }
    const bool isAscii = mifIsAscii(text);
    const bool isUtf8 = context->header.version >= firstUtf8Version || (!isAscii && mifIsUtf8(text));
    if (!isAscii) {
        extension.encodingsFound |= isUtf8 ? FOUND_UTF_8 : FOUND_OWN;
    }
    return isUtf8 ? MIF_ENCODING_UTF_8 : MIF_ENCODING_MIF;
}

} // namespace

MifTextReader::MifTextReader(MifContext *context, std::string_view text, uint32_t glyphs)
    : context_(context), position_(text.data()), end_(text.data() + text.size()), glyphs_(glyphs),
      encoding_(encodingOf(context, text))
{
    if (glyphs != GLYPHS_TEXT && encoding_ == MIF_ENCODING_UTF_8 && !mifIsAscii(text)) {
        glyphs_ = GLYPHS_TEXT; // whoever writes UTF-8 means the characters
    }
}

MifTextStep MifTextReader::is(uint32_t character)
{
    if (character == 0) {
        character = replacementCharacter;
        mifNoteLossHere(context_, MIF_LOSS_CHARACTER);
    }
    character_ = character;
    return MifTextStep::character;
}

std::string_view MifTextReader::plainRun()
{
    const std::string_view rest(position_, static_cast<size_t>(end_ - position_));
    const std::string_view run = rest.substr(0, glyphs_ == GLYPHS_TEXT ? mifPlainRun(rest) : 0);
    position_ += run.size();
    return run;
}

MifTextStep MifTextReader::next()
{
    while (position_ != end_) {
        const char byte = *position_;
        if (byte == '\\') {
            if (end_ - position_ == 1) { // nothing is escaped
                break;
            }
            const MifTextStep step = escape();
            if (step != MifTextStep::end) {
                return step;
            }
            continue;
        }
        if (byte == '\t' || byte == '\n' || byte == '\r') {
            ++position_;
            return is(' ');
        }
        return is(rawCharacter());
    }
    return MifTextStep::end;
}

// The end of a string when the escape stands for nothing.
MifTextStep MifTextReader::escape()
{
    const char kind = position_[1];
    position_ += 2;
    switch (kind) {
    case 't':
        return MifTextStep::tab;
    case 'q':
        return is('\'');
    case 'Q':
        return is('`');
    case 'x':
        if (end_ - position_ >= 2 && digitOf(position_[0]) >= 0 && digitOf(position_[1]) >= 0) {
            const auto value = static_cast<uint8_t>(digitOf(position_[0]) * 16 + digitOf(position_[1]));
            position_ += 2;
            position_ += position_ != end_ && *position_ == ' ' ? 1 : 0;
            return code(value);
        }
        break;
    default:
        break;
    }
    --position_;
    return is(rawCharacter());
}

// A code is of MIF's own set, in every encoding.
MifTextStep MifTextReader::code(uint8_t code)
{
    if (code >= 0x20) {
        return own(code);
    }
    switch (code) {
    case nothingCode:
        return MifTextStep::end;
    case tabCode:
        return MifTextStep::tab;
    case lineBreakCode:
        return MifTextStep::lineBreak;
    default:
        break;
    }
    const LowCode *found =
        std::find_if(std::begin(lowCodes), std::end(lowCodes), [code](const LowCode &row) { return row.code == code; });
    return is(found != std::end(lowCodes) ? found->character : 0);
}

MifTextStep MifTextReader::own(uint8_t byte)
{
    if (glyphs_ != GLYPHS_TEXT) {
        return is(mifGlyph(glyphs_, byte));
    }
    return is(byte < 0x80 ? byte : mifOwnCharacters[byte - 0x80]);
}

// The character of the raw bytes at the position, which it passes; 0 for none.
uint32_t MifTextReader::rawCharacter()
{
    const auto byte = static_cast<uint8_t>(*position_);
    if (byte >= 0x20 && glyphs_ != GLYPHS_TEXT) {
        ++position_;
        return mifGlyph(glyphs_, byte);
    }
    if (byte < 0x80) {
        ++position_;
        return byte;
    }
    if (encoding_ == MIF_ENCODING_UTF_8) {
        uint32_t character = 0;
        const size_t length = mifReadCharacter(position_, end_, character);
        position_ += std::max<size_t>(length, 1);
        return length != 0 ? character : 0;
    }
    ++position_;
    if (encoding_ == MIF_ENCODING_WINDOWS_1252) {
        return byte < 0xA0 ? mifWindowsCharacters[byte - 0x80] : byte;
    }
    return mifOwnCharacters[byte - 0x80];
}

const char *mifTextOfValue(MifContext *context, const char *value)
{
    const std::string_view text = value;
    if (mifPlainRun(text) == text.size()) {
        return value;
    }
    MifTextReader reader(context, text, GLYPHS_TEXT);
    char *place = context->text.room;
    for (;;) {
        switch (reader.next()) {
        case MifTextStep::character:
            place = mifStoreCharacter(place, reader.character());
            continue;
        case MifTextStep::tab:
            *place++ = '\t';
            continue;
        case MifTextStep::lineBreak:
            *place++ = '\n';
            continue;
        case MifTextStep::end:
            break;
        }
        break;
    }
    *place = '\0';
    return context->text.room;
}

char *mifCopyValue(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    return value != nullptr ? mifCopyText(context, mifTextOfValue(context, value)) : nullptr;
}

int mifKeepValue(MifContext *context, char *&place)
{
    char *copy = mifCopyValue(context);
    if (copy == nullptr) {
        return 0;
    }
    mifRelease(context, place);
    place = copy;
    return 1;
}
