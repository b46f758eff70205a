#include "text/strings.h"

#include <cstring>

#include "formats/paragraphs.h"
#include "reader/statement.h"
#include "reader/tokens.h"
#include "reader/units.h"
#include "text/apply_format.h"
#include "text/conversion.h"

namespace
{

struct MifSpecialChar {
    uint8_t byte;
    char name[20];
};

constexpr uint8_t tabByte = 0x09;
constexpr uint8_t lineBreakByte = 0x0A;
constexpr uint8_t noByte = 0x00; // controls hyphenation and is not seen in running text

constexpr MifSpecialChar MifSpecialCharTable[] = {
    {tabByte, "Tab"},       {0x20, "HardSpace"},
    {noByte, "SoftHyphen"}, {noByte, "DiscHyphen"},
    {noByte, "NoHyphen"},   {0xA2, "Cent"},
    {0xA3, "Pound"},        {0xA5, "Yen"},
    {0x2D, "EnDash"},       {0x2D, "EmDash"},
    {0x86, "Dagger"},       {0x87, "DoubleDagger"},
    {0x95, "Bullet"},       {lineBreakByte, "HardReturn"},
    {0x20, "NumberSpace"},  {0x20, "ThinSpace"},
    {0x20, "EnSpace"},      {0x20, "EmSpace"},
};

constexpr int32_t hypertextMarker = 9;

// Text of page layouts, frames, table definitions and footnotes is not document text.
bool isStringSuppressed(const MifContext *context)
{
    return (context->pages.inPage | context->frames.inAFrames | context->tables.inTbls | context->pages.inNotes) != 0;
}

// Unlike strings, special characters and paragraph ends are not written inside a table format either.
bool isBreakSuppressed(const MifContext *context)
{
    return isStringSuppressed(context) || context->tables.inTblFormat != 0;
}

} // namespace

int mifString(MifContext *context)
{
    if (isStringSuppressed(context)) {
        return 1;
    }
    char *text = mifStringValue(context);
    if (text == nullptr) {
        return 0;
    }
    mifConvertString(context, text);
    if (mifApplyPendingFormat(context) == 0) {
        return 0;
    }
    return context->pages.inBodyText != 0 ? mifWriteText(context, text, strlen(text)) : 1;
}

int mifChar(MifContext *context)
{
    if (isBreakSuppressed(context)) {
        return 1;
    }
    const char *name = mifValue(context);
    if (name == nullptr || mifApplyPendingFormat(context) == 0) {
        return 0;
    }
    if (context->pages.inBodyText != 0) {
        mifCharEx(context, name);
    }
    return 1;
}

int mifCharEx(MifContext *context, const char *name)
{
    for (const MifSpecialChar &special : MifSpecialCharTable) {
        if (strcmp(special.name, name) != 0) {
            continue;
        }
        switch (special.byte) {
        case tabByte:
            return mifWriteTab(context);
        case lineBreakByte:
            return mifWriteLineBreak(context);
        case noByte:
            return 0;
        default: {
            const char text = static_cast<char>(special.byte);
            return mifWriteText(context, &text, 1);
        }
        }
    }
    return 0;
}

// A format that waits is not written at a paragraph's end, but with the next text. A number that still waits is, since
// the paragraph has no text that it could begin.
int mifPara(MifContext *context)
{
    const uint32_t paragraph = context->scanner.openParagraphs;
    if (isBreakSuppressed(context) || context->pages.inBodyText == 0) {
        mifDropNumbers(context, paragraph);
        return 1;
    }
    mifDropStrayNumber(context);
    if (mifNumberWaits(context)) {
        mifApplyParagraphStyle(context);
    }
    mifDropNumbers(context, paragraph);
    if (mifClearModes(context) != 0) {
        context->formats.styleChanged = 1;
    }
    return mifWriteLineBreak(context) && mifWriteParaEnd(context);
}

int mifMType(MifContext *context)
{
    const char *value = mifValue(context);
    if (value == nullptr) {
        return 0;
    }
    context->text.markerType = mifParseInteger(value);
    return 1;
}

// No marker writes anything, a hypertext marker neither; the result only tells it from the others.
int mifMText(MifContext *context)
{
    return mifValue(context) != nullptr && context->text.markerType == hypertextMarker;
}
