#include "formats/fonts.h"

#include "formats/catalog.h"
#include "formats/direct.h"
#include "formats/properties.h"
#include "formats/resolution.h"
#include "text/apply_format.h"

namespace
{

MifChange setFamilyDirectly(MifContext *context, MifPropertyValue value)
{
    const MifFormatState &formats = context->formats;
    const MifChange change = mifSetFamily(context, value);
    if (formats.inPgfCatalog != 0 || formats.inFont != 0 || formats.fontCatalog.pending != 0 ||
        context->pages.inBodyText != 0) {
        mifRegisterFont(context, value.number);
    }
    return change;
}

constexpr MifProperty directFamily = {mifReadFamilyClass, setFamilyDirectly};

// Outside of body text a script position is not even read.
int setScriptDirectly(MifContext *context, const MifProperty &property)
{
    return context->pages.inBodyText != 0 ? mifSetModeDirectly(context, property) : 1;
}

} // namespace

int mifFontCatalog(MifContext *context)
{
    context->formats.inFontCatalog = 0;
    return 1;
}

// The end of a font. The definition of a new one brings the paragraph's format back.
int mifFont(MifContext *context)
{
    MifFormatState &formats = context->formats;
    formats.inFont = 0;
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

int mifFontCreateNewFont(MifContext *context, const char *tag)
{
    return mifCreateFormat(context, context->formats.fontCatalog, tag) != nullptr;
}

int mifFontStoreInformation(MifContext *context)
{
    return mifStoreStatement(context, context->formats.fontCatalog);
}

int mifFWeight(MifContext *context)
{
    return mifSetModeDirectly(context, mifWeight);
}

int mifFSize(MifContext *context)
{
    return mifSetDirectly(context, mifSize);
}

int mifFFamily(MifContext *context)
{
    return mifSetDirectly(context, directFamily);
}

int mifFAngle(MifContext *context)
{
    return mifSetModeDirectly(context, mifAngle);
}

int mifFUnderlining(MifContext *context)
{
    return mifSetModeDirectly(context, mifUnderlining);
}

int mifFStrike(MifContext *context)
{
    return mifSetModeDirectly(context, mifStrike);
}

int mifFColor(MifContext *context)
{
    return mifSetDirectly(context, mifColor);
}

int mifFPosition(MifContext *context)
{
    return setScriptDirectly(context, mifPosition);
}

int mifFSubScript(MifContext *context)
{
    return setScriptDirectly(context, mifSubscript);
}

int mifFSupScript(MifContext *context)
{
    return setScriptDirectly(context, mifSuperscript);
}

int mifFCase(MifContext *context)
{
    return mifSetModeDirectly(context, mifCase);
}

int mifFPlain(MifContext *context)
{
    return mifSetModeDirectly(context, mifPlain);
}

int mifFBold(MifContext *context)
{
    return mifSetModeDirectly(context, mifBold);
}

int mifFItalic(MifContext *context)
{
    return mifSetModeDirectly(context, mifItalic);
}

void mifFreeFontCatalog(MifContext *context)
{
    mifFreeFormats(context, context->formats.fontCatalog);
}
