#include "formats/paragraphs.h"

#include <algorithm>
#include <cstring>

#include "formats/catalog.h"
#include "formats/direct.h"
#include "formats/properties.h"
#include "formats/resolution.h"

namespace
{

// Tells the paragraphs of the text flow from those of a replayed table and of footnotes, which stand inside of others.
uint32_t paragraphLevel(const MifContext *context)
{
    return (context->replay.readingStretch != 0 ? 2U : 0U) | (context->pages.inNotes != 0 ? 1U : 0U);
}

} // namespace

int mifPgfCatalog(MifContext *context)
{
    context->formats.inPgfCatalog = 0;
    return 1;
}

// The end of a paragraph's property group, or of a definition, which then takes effect.
int mifPgf(MifContext *context)
{
    MifFormatState &formats = context->formats;
    formats.inPgf = 0;
    if (formats.pgfCatalog.pending != 0) {
        if (mifPgfSetParagraphStyle(context) == 0) {
            return 0;
        }
        formats.pgfCatalog.pending = 0;
    }
    return 1;
}

// Selects a format, or makes one: its definition is what follows in this Pgf or the next one.
int mifPgfTag(MifContext *context)
{
    const char *tag = mifUnquotedValue(context);
    if (tag == nullptr || *tag == '\0') {
        return 0;
    }
    MifFormatEntry *entry = mifFindFormat(context->formats.pgfCatalog, tag);
    if (entry == nullptr) {
        return mifPgfCreateNewPgf(context, tag);
    }
    context->formats.currentPgf = entry;
    return mifPgfSetParagraphStyle(context);
}

int mifPgfCreateNewPgf(MifContext *context, const char *tag)
{
    MifFormatEntry *entry = mifCreateFormat(context, context->formats.pgfCatalog, tag);
    if (entry == nullptr) {
        return 0;
    }
    context->formats.currentPgf = entry;
    return 1;
}

int mifPgfStoreInformation(MifContext *context)
{
    return mifStoreStatement(context, context->formats.pgfCatalog);
}

// The text keeps its escapes until it is written, once, with the next format.
int mifPgfNumString(MifContext *context)
{
    MifFormatState &formats = context->formats;
    const char *value = mifStringValue(context);
    if (value == nullptr) {
        return 0;
    }
    char(&numString)[sizeof(formats.currentStyle.numString)] = formats.currentStyle.numString;
    const size_t length = std::min(strlen(value), sizeof(numString) - 1);
    memcpy(numString, value, length);
    numString[length] = '\0';
    MifPendingNumber &number = mifOwnNumber(context);
    number.pending = length != 0 ? 1 : 0;
    memcpy(number.text, numString, sizeof(number.text));
    if (length != 0) {
        formats.styleChanged = 1; // that of appliedStyle is always empty
    }
    return 1;
}

MifPendingNumber &mifOwnNumber(MifContext *context)
{
    return context->formats.pendingNumbers[paragraphLevel(context)];
}

bool mifInterruptedNumber(const MifContext *context)
{
    const uint32_t own = paragraphLevel(context);
    for (uint32_t level = 0; level < paragraphLevels; ++level) {
        if (level != own && context->formats.pendingNumbers[level].pending != 0) {
            return true;
        }
    }
    return false;
}

int mifPgfFont(MifContext * /*context*/)
{
    return 1;
}

int mifPgfAlignment(MifContext *context)
{
    return mifSetDirectly(context, mifAlignment);
}

int mifPgfLeading(MifContext *context)
{
    return mifSetDirectly(context, mifLeading);
}

int mifPgfFIndent(MifContext *context)
{
    return mifSetDirectly(context, mifMeasurement<&MifParagraphStyle::firstIndent>);
}

int mifPgfLIndent(MifContext *context)
{
    return mifSetDirectly(context, mifMeasurement<&MifParagraphStyle::leftIndent>);
}

int mifPgfRIndent(MifContext *context)
{
    return mifSetDirectly(context, mifMeasurement<&MifParagraphStyle::rightIndent>);
}

int mifPgfSpBefore(MifContext *context)
{
    return mifSetDirectly(context, mifMeasurement<&MifParagraphStyle::spaceBefore>);
}

int mifPgfSpAfter(MifContext *context)
{
    return mifSetDirectly(context, mifMeasurement<&MifParagraphStyle::spaceAfter>);
}

int mifPgfNumTabs(MifContext *context)
{
    return mifSetDirectly(context, mifTabCount);
}

int mifTabStop(MifContext * /*context*/)
{
    return 1;
}

int mifTSX(MifContext *context)
{
    return mifSetDirectly(context, mifTabPosition);
}

int mifTSType(MifContext *context)
{
    return mifSetDirectly(context, mifTabKind);
}

void mifFreeParagraphCatalogs(MifContext *context)
{
    mifFreeFormats(context, context->formats.pgfCatalog);
    context->formats.currentPgf = nullptr;
}
