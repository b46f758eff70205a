#include "formats/fonts.h"

#include "formats/catalog.h"
#include "formats/properties.h"
#include "formats/resolution.h"
#include "reader/statement.h"
#include "text/apply_format.h"

// The end of a font. The definition of a new one brings the paragraph's format back.
int mifFont(MifContext *context)
{
    MifFormatState &formats = context->formats;
    if (mifIsDefining(context, formats.fontCatalog)) {
        if (mifPgfSetParagraphStyle(context) == 0) {
            return 0;
        }
        formats.fontCatalog.pending = 0;
    }
    return 1;
}

int mifFTag(MifContext *context)
{
    MifFormatState &formats = context->formats;
    const char *tag = mifUnquotedValue(context);
    if (tag == nullptr) {
        return 0;
    }
    if (mifFindFormat(formats.fontCatalog, tag) != nullptr) {
        return mifPgfSetParagraphStyle(context);
    }
    if (formats.inFontCatalog != 0) {
        return mifFontCreateNewFont(context, tag);
    }
    if (mifClearModes(context) != 0) {
        formats.styleChanged = 1;
    }
    if (context->pages.inBodyText != 0) {
        mifPgfSetParagraphStyle(context);
    }
    return 1;
}

// Outside of body text a script position is not even read.
int mifSetScript(MifContext *context)
{
    return context->pages.inBodyText != 0 ? mifSetDirectly(context) : 1;
}

int mifFontCreateNewFont(MifContext *context, const char *tag)
{
    return mifCreateFormat(context, context->formats.fontCatalog, tag) != nullptr;
}

int mifFontStoreInformation(MifContext *context)
{
    return mifStoreStatement(context, context->formats.fontCatalog);
}

void mifFreeFontCatalog(MifContext *context)
{
    mifFreeFormats(context, context->formats.fontCatalog);
}
