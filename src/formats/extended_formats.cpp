#include "formats/extended_formats.h"

#include <cstring>

#include "formats/catalog.h"
#include "formats/extended_properties.h"
#include "formats/names.h"
#include "formats/paragraphs.h"
#include "formats/tab_list.h"
#include "reader/host_memory.h"
#include "reader/losses.h"
#include "reader/statement.h"
#include "text/mif_text.h"

namespace
{

// The entry is selected in the plain stream too, where it may change the indents that tables are placed by.
void selectPlainIndents(MifContext *context)
{
    MifFormatState &formats = context->formats;
    if (formats.currentPgf == nullptr) {
        return;
    }
    const MifFormatEntry &entry = *formats.currentPgf;
    if (entry.statesLeftIndent != 0) {
        formats.currentStyle.leftIndent = entry.leftIndent;
    }
    if (entry.statesRightIndent != 0) {
        formats.currentStyle.rightIndent = entry.rightIndent;
    }
}

// Carries an entry's statements out on the characters that the target is. A font in a font is none.
void applyEntry(MifContext *context, const MifFormatEntry &entry, MifCharacters &target, bool isFont)
{
    context->formats.extended.target = &target;
    const MifStoredStatement *statement = entry.statements.head;
    for (; statement != nullptr; statement = statement->next) {
        if (statement->property != nullptr && !(isFont && statement->property == &mifExtendedFontTag)) {
            statement->property->set(context, {statement->value, statement->number});
        }
    }
}

// Begins from the defaults; a tag that the document does not define goes on with the format before. What the document
// asks for stays where a catalog is read.
void selectParagraphFormat(MifContext *context, MifFormatEntry *entry)
{
    MifFormatState &formats = context->formats;
    MifExtendedStyle &wanted = formats.extended.wanted;
    const char *tag = entry->statements.head->value;
    formats.currentPgf = entry;
    selectPlainIndents(context);
    if (formats.inPgfCatalog != 0) {
        return;
    }
    if (wanted.paragraph.tag == tag && wanted.isChanged == 0) { // it is in force, and nothing has come after it
        mifResetCharacters(context);
        return;
    }
    if (entry->isDefined != 0) {
        wanted.paragraph = {};
        wanted.paragraphCharacters = {};
        wanted.tabs.count = 0;
        applyEntry(context, *entry, wanted.paragraphCharacters, false);
    }
    wanted.paragraph.tag = tag;
    wanted.isChanged = 0;
    mifResetCharacters(context);
}

// What an entry's statements of that property set, a later one will set again: they set nothing any more, so that to
// select a format costs as much as it has properties. Stops of tabs add up.
void forgetProperty(MifFormatEntry &entry, const MifProperty *property)
{
    if (mifAddsUp(property)) {
        return;
    }
    for (MifStoredStatement *statement = entry.statements.head; statement != nullptr; statement = statement->next) {
        if (statement->property == property) {
            statement->property = nullptr;
        }
    }
}

// Keeps a statement of a definition when selecting the format sets something.
int storeProperty(MifContext *context, MifFormatCatalog &catalog)
{
    MifFormatEntry &entry = *catalog.defining;
    const MifProperty *property = context->scanner.row->stored;
    char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    if (entry.statementCount == mostStoredStatements) {
        mifNoteLossHere(context, MIF_LOSS_RECORD);
        return 0;
    }
    if (property == nullptr) {
        ++entry.statementCount; // it sets nothing
        return 1;
    }
    const char *text = mifTextOfValue(context, value);
    if (property->read(text) != mifSetsNothing) {
        forgetProperty(entry, property);
    }
    const int stored = mifAppendStatement(context, entry, text, property);
    if (property == &mifExtendedLeftIndent || property == &mifExtendedRightIndent) {
        const int32_t indent = property->read(value);
        const bool isLeft = property == &mifExtendedLeftIndent;
        (isLeft ? entry.leftIndent : entry.rightIndent) = indent;
        (isLeft ? entry.statesLeftIndent : entry.statesRightIndent) = 1;
    }
    return stored;
}

} // namespace

void mifResetCharacters(MifContext *context)
{
    MifExtendedStyle &wanted = context->formats.extended.wanted;
    wanted.characters = wanted.paragraphCharacters;
}

int mifStoreParagraphProperty(MifContext *context)
{
    return storeProperty(context, context->formats.pgfCatalog);
}

int mifStoreFontProperty(MifContext *context)
{
    return storeProperty(context, context->formats.fontCatalog);
}

// Selects a format; one that is not known is made, and defined by what follows in its Pgf.
int mifTagParagraph(MifContext *context)
{
    MifFormatState &formats = context->formats;
    const char *tag = mifUnquotedValue(context);
    if (tag == nullptr || *tag == '\0') {
        return 0;
    }
    tag = mifTextOfValue(context, tag);
    MifFormatEntry *entry = mifFindFormat(formats.pgfCatalog, tag);
    if (entry == nullptr) {
        entry = mifCreateFormat(context, formats.pgfCatalog, tag);
        if (entry == nullptr) {
            return 0;
        }
        formats.pgfCatalog.pending = formats.inPgf;
        entry->isDefined = formats.inPgf;
    }
    selectParagraphFormat(context, entry);
    return 1;
}

// The end of a definition, which then takes effect, or of properties in the text.
int mifEndPgf(MifContext *context)
{
    MifFormatState &formats = context->formats;
    if (mifIsDefining(context, formats.pgfCatalog)) {
        formats.pgfCatalog.pending = 0;
        selectParagraphFormat(context, formats.pgfCatalog.defining);
    }
    return 1;
}

// A known font is added to the paragraph's own characters, an unknown one only goes back to them. In the font of a
// paragraph's properties nothing goes back.
int mifTagFont(MifContext *context)
{
    MifFormatState &formats = context->formats;
    const char *tag = mifUnquotedValue(context);
    if (tag == nullptr) {
        return 0;
    }
    tag = mifTextOfValue(context, tag);
    const MifFormatEntry *entry = mifFindFormat(formats.fontCatalog, tag);
    if (formats.inFontCatalog != 0) {
        if (entry == nullptr) {
            return mifCreateFormat(context, formats.fontCatalog, tag) != nullptr;
        }
        selectPlainIndents(context);
        return 1;
    }
    if (entry != nullptr || context->pages.inBodyText != 0) {
        selectPlainIndents(context);
    }
    if (formats.inPgf != 0) {
        mifSetFontTag(context, {tag, 0});
        formats.extended.wanted.isChanged = 1;
        mifResetCharacters(context);
        return 1;
    }
    mifResetCharacters(context);
    if (entry != nullptr) {
        applyEntry(context, *entry, formats.extended.wanted.characters, true);
    }
    return 1;
}

int mifEndFont(MifContext *context)
{
    MifFormatState &formats = context->formats;
    if (mifIsDefining(context, formats.fontCatalog)) {
        formats.fontCatalog.pending = 0;
        selectPlainIndents(context);
    }
    return 1;
}

MifChange mifSetFontTag(MifContext *context, MifPropertyValue value)
{
    const MifFormatEntry *entry = mifFindFormat(context->formats.fontCatalog, value.text);
    if (entry != nullptr) {
        applyEntry(context, *entry, context->formats.extended.wanted.paragraphCharacters, true);
    }
    return MifChange::none;
}

// A stop of a definition ends with a statement of its own.
int mifEndTabStop(MifContext *context)
{
    MifFormatState &formats = context->formats;
    if (formats.inPgf != 0 && mifIsDefining(context, formats.pgfCatalog)) {
        MifFormatEntry &entry = *formats.pgfCatalog.defining;
        return entry.statementCount < mostStoredStatements &&
               mifAppendStatement(context, entry, "", &mifExtendedTabStop) != 0;
    }
    formats.extended.wanted.isChanged = 1;
    return mifTakeTabStop(context);
}

int mifSetExtended(MifContext *context)
{
    char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    MifFormatState &formats = context->formats;
    const MifStatementEntry &row = *context->scanner.statementStack->row;
    const char *text = mifTextOfValue(context, value);
    const int32_t number = row.direct->read(text);
    if (row.direct == &mifExtendedLeftIndent) {
        formats.currentStyle.leftIndent = number;
    } else if (row.direct == &mifExtendedRightIndent) {
        formats.currentStyle.rightIndent = number;
    }
    if (formats.inPgfCatalog != 0 || formats.inFontCatalog != 0) {
        return 1; // a second definition of a tag
    }
    MifExtendedStyle &wanted = formats.extended.wanted;
    const bool isParagraphs = formats.inPgf != 0;
    formats.extended.target = isParagraphs ? &wanted.paragraphCharacters : &wanted.characters;
    row.direct->set(context, {text, number});
    wanted.isChanged = 1;
    if (isParagraphs) {
        mifResetCharacters(context);
    }
    return 1;
}

void mifFreeExtendedFormats(MifContext *context)
{
    MifExtendedFormatState &extended = context->formats.extended;
    mifFreeTabs(context, extended.wanted.tabs);
    mifFreeTabs(context, extended.told.tabs);
    mifFreeNames(context);
}
