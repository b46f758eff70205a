#include "text/apply_format.h"

#include <cstring>

#include "formats/paragraphs.h"
#include "formats/properties.h"
#include "formats/tab_stops.h"
#include "mifreader/tokens.h"
#include "reader/host_memory.h"
#include "reader/tokens.h"
#include "text/conversion.h"

namespace
{

struct ModeValues {
    uint32_t mode;
    uint32_t on;
    uint32_t off;
};

constexpr ModeValues modeValues[] = {
    {MODE_BOLD, MIF_MODE_BOLD_ON, MIF_MODE_BOLD_OFF},
    {MODE_ITALIC, MIF_MODE_ITALIC_ON, MIF_MODE_ITALIC_OFF},
    {MODE_UNDERLINE, MIF_MODE_UNDERLINE_ON, MIF_MODE_UNDERLINE_OFF},
    {MODE_STRIKE, MIF_MODE_STRIKE_ON, MIF_MODE_STRIKE_OFF},
    {MODE_SUPERSCRIPT, MIF_MODE_SUPERSCRIPT_ON, MIF_MODE_SUPERSCRIPT_OFF},
    {MODE_SUBSCRIPT, MIF_MODE_SUBSCRIPT_ON, MIF_MODE_SUBSCRIPT_OFF},
    {MODE_SMALL_CAPS, MIF_MODE_SMALL_CAPS_ON, MIF_MODE_SMALL_CAPS_OFF},
    {MODE_UPPER_CASE, MIF_MODE_UPPER_CASE_ON, MIF_MODE_UPPER_CASE_OFF},
};

void applyParagraph(MifContext *context, const MifParagraphStyle &current, MifParagraphStyle &applied)
{
    if (current.leftIndent != applied.leftIndent || current.rightIndent != applied.rightIndent ||
        current.firstIndent != applied.firstIndent || current.alignment != applied.alignment) {
        mifWriteParaFormat(context, current);
        applied.leftIndent = current.leftIndent;
        applied.rightIndent = current.rightIndent;
        applied.firstIndent = current.firstIndent;
        applied.alignment = current.alignment;
    }
    if (current.lineSpacing != applied.lineSpacing) {
        mifWriteLineSpacing(context, current.lineSpacing);
        applied.lineSpacing = current.lineSpacing;
    }
}

void applyCharacters(MifContext *context, const MifParagraphStyle &current, MifParagraphStyle &applied)
{
    if (current.hostFontNumber != applied.hostFontNumber || current.fontSize != applied.fontSize ||
        strcmp(current.fontFamily, applied.fontFamily) != 0) {
        mifWriteFont(context, current);
        memcpy(applied.fontFamily, current.fontFamily, sizeof(applied.fontFamily));
        applied.hostFontNumber = current.hostFontNumber;
        applied.fontSize = current.fontSize;
    }
    if (current.modes != applied.modes) {
        mifSetModes(context);
        applied.modes = current.modes;
    }
    if (current.textColor != applied.textColor) {
        mifWriteTextColor(context, current.textColor);
        applied.textColor = current.textColor;
    }
}

// False when memory is exhausted, appliedStyle then has no stops, or when the token is lost.
bool applyTabStops(MifContext *context, const MifParagraphStyle &current, MifParagraphStyle &applied)
{
    return mifSameTabStops(current, applied) ||
           (mifWriteTabStops(context, current) != 0 && mifCopyTabStops(context, current, applied));
}

void writeNumbers(MifContext *context)
{
    while (MifWaitingNumber *number = mifTakeNumber(context)) {
        mifConvertString(context, number->text);
        mifWriteText(context, number->text, strlen(number->text));
        mifRelease(context, number);
    }
}

} // namespace

int mifApplyParagraphStyle(MifContext *context)
{
    if (context->pages.inBodyText == 0) {
        return 1;
    }
    MifFormatState &formats = context->formats;
    applyParagraph(context, formats.currentStyle, formats.appliedStyle);
    applyCharacters(context, formats.currentStyle, formats.appliedStyle);
    if (!applyTabStops(context, formats.currentStyle, formats.appliedStyle)) {
        return 0;
    }
    writeNumbers(context);
    formats.styleChanged = 0;
    return 1;
}

int mifApplyPendingFormat(MifContext *context)
{
    const bool pending = context->formats.styleChanged != 0 || mifNumberWaits(context);
    return !pending || mifApplyParagraphStyle(context) != 0;
}

void mifSetModes(MifContext *context)
{
    for (const ModeValues &values : modeValues) {
        if ((context->formats.currentStyle.modes & values.mode) != 0) {
            mifWriteAttribute(context, values.on);
        }
    }
}

// A script mode that goes off gives the size back that it took.
int mifClearModes(MifContext *context)
{
    MifFormatState &formats = context->formats;
    if (formats.appliedStyle.modes == 0) {
        return 0;
    }
    for (const ModeValues &values : modeValues) {
        if ((formats.appliedStyle.modes & values.mode) == 0) {
            continue;
        }
        mifWriteAttribute(context, values.off);
        if ((values.mode & (MODE_SUPERSCRIPT | MODE_SUBSCRIPT)) != 0) {
            formats.currentStyle.fontSize = mifScaleFontSize(formats.currentStyle.fontSize, 4, 3);
        }
    }
    formats.appliedStyle.modes = 0;
    return 1;
}
