#include "formats/fonts.h"

#include "formats/catalog.h"
#include "formats/direct.h"
#include "formats/properties.h"
#include "formats/resolution.h"
#include "text/apply_format.h"

namespace
{

MifChange setFamilyDirectly(MifContext *context, const char *value)
{
    const MifFormatState &formats = context->formats;
    const MifChange change = mifSetFamily(context, value);
    if (formats.inPgfCatalog != 0 || formats.inFont != 0 || formats.fontCatalog.pending != 0 ||
        context->pages.inBodyText != 0) {
        mifRegisterFont(context);
    }
    return change;
}

// Outside of body text a script position is not even read.
int setScriptDirectly(MifContext *context, MifPropertyFunction property)
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
    if (formats.fontCatalog.pending != 0) {
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
    if (formats.appliedStyle.modes != 0) {
        formats.styleChanged = static_cast<uint32_t>(mifClearModes(context));
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
    return mifSetModeDirectly(context, mifSetWeightMode);
}

int mifFSize(MifContext *context)
{
    return mifSetDirectly(context, mifSetSize);
}

int mifFFamily(MifContext *context)
{
    return mifSetDirectly(context, setFamilyDirectly);
}

int mifFAngle(MifContext *context)
{
    return mifSetModeDirectly(context, mifSetAngle);
}

int mifFUnderlining(MifContext *context)
{
    return mifSetModeDirectly(context, mifSetUnderlining);
}

int mifFStrike(MifContext *context)
{
    return mifSetModeDirectly(context, mifSetStrike);
}

int mifFColor(MifContext *context)
{
    return mifSetDirectly(context, mifSetColor);
}

int mifFPosition(MifContext *context)
{
    return setScriptDirectly(context, mifSetPosition);
}

int mifFSubScript(MifContext *context)
{
    return setScriptDirectly(context, mifSetSubscript);
}

int mifFSupScript(MifContext *context)
{
    return setScriptDirectly(context, mifSetSuperscript);
}

int mifFCase(MifContext *context)
{
    return mifSetModeDirectly(context, mifSetCase);
}

int mifFPlain(MifContext *context)
{
    return mifSetModeDirectly(context, mifSetPlain);
}

int mifFBold(MifContext *context)
{
    return mifSetModeDirectly(context, mifSetBold);
}

int mifFItalic(MifContext *context)
{
    return mifSetModeDirectly(context, mifSetItalic);
}

void mifFreeFontCatalog(MifContext *context)
{
    mifFreeFormats(context, context->formats.fontCatalog);
}
