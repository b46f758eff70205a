#include "text/extended_strings.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "mifreader/extended.h"
#include "reader/extended_tokens.h"
#include "reader/losses.h"
#include "reader/statement.h"
#include "reader/tokens.h"
#include "text/flow.h"
#include "text/mif_text.h"
#include "text/placement.h"
#include "text/utf8.h"
#include "text/variables.h"

namespace
{

struct NamedCharacter {
    std::string_view name;
    uint16_t character;
};

constexpr uint16_t tabCharacter = 0x09;
constexpr uint16_t lineBreakCharacter = 0x0A;

// NoHyphen is none: it stands for nothing.
constexpr NamedCharacter namedCharacters[] = {
    {"Tab", tabCharacter},    {"HardReturn", lineBreakCharacter},
    {"HardSpace", 0x00A0},    {"SoftHyphen", 0x00AD},
    {"DiscHyphen", 0x00AD},   {"HardHyphen", 0x2011},
    {"Cent", 0x00A2},         {"Pound", 0x00A3},
    {"Yen", 0x00A5},          {"EnDash", 0x2013},
    {"EmDash", 0x2014},       {"Dagger", 0x2020},
    {"DoubleDagger", 0x2021}, {"Bullet", 0x2022},
    {"NumberSpace", 0x2007},  {"ThinSpace", 0x2009},
    {"EnSpace", 0x2002},      {"EmSpace", 0x2003},
};

// Writes text of the document. Plain text is written as it stands.
int writeText(MifContext *context, std::string_view text)
{
    const MifFontFamily *family = context->formats.extended.wanted.characters.family;
    const uint32_t glyphs = family != nullptr ? family->glyphs : uint32_t{GLYPHS_TEXT};
    if (glyphs == GLYPHS_TEXT && !text.empty() && mifPlainRun(text) == text.size()) {
        return mifWriteUtf8(context, text);
    }
    MifTextReader reader(context, text, glyphs);
    char *room = context->text.room;
    char *place = room;
    int result = 1;
    const auto flush = [&] {
        if (place != room) {
            result &= mifWriteUtf8(context, {room, static_cast<size_t>(place - room)});
            place = room;
        }
    };
    for (;;) {
        const std::string_view run = reader.plainRun();
        place = std::copy(run.begin(), run.end(), place);
        switch (reader.next()) {
        case MifTextStep::character:
            place = mifStoreCharacter(place, reader.character());
            continue;
        case MifTextStep::tab:
            flush();
            result &= mifWriteTab(context);
            continue;
        case MifTextStep::lineBreak:
            flush();
            result &= mifWriteLineBreak(context);
            continue;
        case MifTextStep::end:
            break;
        }
        flush();
        return result;
    }
}

} // namespace

int mifTakeString(MifContext *context)
{
    const char *text = mifStringValue(context);
    if (text == nullptr) {
        return 0;
    }
    mifNoteTextWithoutPlace(context);
    if (!mifBeginText(context)) {
        return 1;
    }
    const MifStatement &statement = *context->scanner.statementStack;
    const size_t length = strlen(text);
    if (text + length < statement.valueEnd) {
        mifNoteLossHere(context, MIF_LOSS_NUL);
    }
    return writeText(context, {text, length});
}

int mifTakeChar(MifContext *context)
{
    const char *name = mifValue(context);
    if (name == nullptr) {
        return 0;
    }
    const NamedCharacter *found = std::find_if(std::begin(namedCharacters), std::end(namedCharacters),
                                               [name](const NamedCharacter &row) { return row.name == name; });
    if (found == std::end(namedCharacters) || context->tables.inTblFormat != 0) {
        return 1;
    }
    mifNoteTextWithoutPlace(context);
    if (!mifBeginText(context)) {
        return 1;
    }
    switch (found->character) {
    case tabCharacter:
        return mifWriteTab(context);
    case lineBreakCharacter:
        return mifWriteLineBreak(context);
    default: {
        char *room = context->text.room;
        return mifWriteUtf8(context, {room, static_cast<size_t>(mifStoreCharacter(room, found->character) - room)});
    }
    }
}

int mifTakeVariable(MifContext *context)
{
    if (context->variables.inVariableFormats != 0) {
        return mifVariableName(context);
    }
    const char *name = mifInnerValue(context);
    const char *definition = name != nullptr ? mifFindDefinition(context, name) : nullptr;
    if (definition == nullptr) {
        return 0;
    }
    return mifBeginText(context) ? writeText(context, definition) : 1;
}
