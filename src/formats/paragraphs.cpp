#include "formats/paragraphs.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "formats/catalog.h"
#include "formats/resolution.h"
#include "reader/host_memory.h"
#include "reader/statement.h"

namespace
{

// Has the text of numString wait in the innermost open paragraph, in place of the one that waits there.
int keepNumber(MifContext *context)
{
    MifFormatState &formats = context->formats;
    const uint32_t paragraph = context->scanner.openParagraphs;
    if (paragraph != 0) {
        mifDropNumbers(context, paragraph);
    } else {
        mifDropStrayNumber(context);
    }
    if (*formats.currentStyle.numString == '\0') {
        return 1;
    }
    formats.styleChanged = 1; // that of appliedStyle is always empty
    auto *number = mifAllocateZeroed<MifWaitingNumber>(context);
    if (number == nullptr) {
        return 0;
    }
    MifWaitingNumber *&place = paragraph != 0 ? formats.numbers : formats.strayNumber;
    *number = {place, paragraph, {}};
    memcpy(number->text, formats.currentStyle.numString, sizeof(number->text));
    place = number;
    return 1;
}

} // namespace

// The end of a paragraph's property group, or of a definition, which then takes effect.
int mifPgf(MifContext *context)
{
    MifFormatState &formats = context->formats;
    if (mifIsDefining(context, formats.pgfCatalog)) {
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

// The text keeps its escapes until it is written, once, with the next format of its paragraph.
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
    return keepNumber(context);
}

MifWaitingNumber *mifTakeNumber(MifContext *context)
{
    MifFormatState &formats = context->formats;
    if (!mifNumberWaits(context)) {
        return nullptr;
    }
    MifWaitingNumber *&place = formats.strayNumber != nullptr ? formats.strayNumber : formats.numbers;
    return std::exchange(place, place->enclosing);
}

void mifDropNumbers(MifContext *context, uint32_t paragraph)
{
    MifWaitingNumber *&innermost = context->formats.numbers;
    while (innermost != nullptr && innermost->paragraph >= paragraph) {
        mifRelease(context, std::exchange(innermost, innermost->enclosing));
    }
}

void mifDropStrayNumber(MifContext *context)
{
    mifRelease(context, std::exchange(context->formats.strayNumber, nullptr));
}

void mifFreeParagraphCatalogs(MifContext *context)
{
    mifFreeFormats(context, context->formats.pgfCatalog);
    context->formats.currentPgf = nullptr;
    mifDropNumbers(context, 0);
    mifDropStrayNumber(context);
}
