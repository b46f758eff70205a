#include "text/flow.h"

#include <cstring>
#include <utility>

#include "formats/extended_formats.h"
#include "formats/extended_properties.h"
#include "mifreader/extended.h"
#include "reader/extended_tokens.h"
#include "reader/host_memory.h"
#include "reader/statement.h"
#include "reader/token_bytes.h"
#include "reader/tokens.h"
#include "text/apply_extended.h"
#include "text/mif_text.h"
#include "text/scopes.h"

namespace
{

constexpr size_t longestNumber = 1023;

void writeNumber(MifContext *context, MifOpenParagraph &paragraph)
{
    if (paragraph.number == nullptr) {
        return;
    }
    mifApplyCharacters(context);
    mifWriteRecord(context, TOKEN_NUMBER, {}, {paragraph.number});
    mifRelease(context, std::exchange(paragraph.number, nullptr));
}

void tellParagraph(MifContext *context, MifOpenParagraph *paragraph)
{
    mifTellScopes(context);
    if (paragraph != nullptr && paragraph->isBegun == 0) {
        paragraph->isBegun = 1;
        const MifExtendedParagraph &format = context->formats.extended.wanted.paragraph;
        ++context->formats.extended.paragraphsOf[format.language];
        mifWriteParagraph(context, format, mifLanguageCode(format.language));
    }
    mifApplyParagraph(context);
    if (paragraph != nullptr) {
        writeNumber(context, *paragraph);
    }
}

} // namespace

bool mifIsInFlow(const MifContext *context)
{
    const MifFrameState &frames = context->frames;
    return (context->pages.inPage | frames.inAFrames | frames.frameDepth | frames.inTextLine |
            context->tables.inTbls) == 0;
}

bool mifIsWritten(const MifContext *context)
{
    return mifIsInFlow(context) && context->pages.inBodyText != 0;
}

bool mifBeginContent(MifContext *context)
{
    if (!mifIsWritten(context)) {
        return false;
    }
    MifOpenParagraph *paragraph = mifCurrentParagraph(context);
    if (mifIsHidden(context)) {
        if (paragraph != nullptr) {
            paragraph->hasHidden = 1;
        }
        return false;
    }
    tellParagraph(context, paragraph);
    return true;
}

bool mifBeginText(MifContext *context)
{
    if (!mifBeginContent(context)) {
        return false;
    }
    mifApplyCharacters(context);
    return true;
}

void mifBeginParagraph(MifContext *context)
{
    mifResetCharacters(context);
    MifFlowState &flow = context->flow;
    const uint32_t depth = context->scanner.openParagraphs;
    mifDropParagraphs(context, depth);
    auto *paragraph = static_cast<MifOpenParagraph *>(mifAllocateBytes(context, sizeof(MifOpenParagraph)));
    if (paragraph != nullptr) {
        *paragraph = {flow.paragraphs, depth, 0, 0, 0, nullptr};
        flow.paragraphs = paragraph;
    }
}

// A paragraph whose content is all hidden leaves nothing; one that is hidden in part keeps its end.
int mifEndParagraph(MifContext *context)
{
    MifOpenParagraph *paragraph = mifCurrentParagraph(context);
    const bool isBegun = paragraph != nullptr && paragraph->isBegun != 0;
    const bool isHidden = !isBegun && (mifIsHidden(context) || (paragraph != nullptr && paragraph->hasHidden != 0));
    int result = 1;
    if (mifIsWritten(context) && context->tables.inTblFormat == 0 && !isHidden) {
        if (!isBegun) {
            tellParagraph(context, paragraph);
            mifApplyCharacters(context);
        } else {
            writeNumber(context, *paragraph);
        }
        mifEndReference(context, paragraph);
        result = mifWriteLineBreak(context) && mifWriteParaEnd(context);
    }
    mifDropParagraphs(context, context->scanner.openParagraphs);
    return result;
}

MifOpenParagraph *mifCurrentParagraph(const MifContext *context)
{
    MifOpenParagraph *paragraph = context->flow.paragraphs;
    const MifScope *scope = context->flow.scopes;
    const bool isAround = paragraph != nullptr && scope != nullptr && scope->paragraphs >= paragraph->depth;
    const bool isOwn = paragraph != nullptr && paragraph->depth == context->scanner.openParagraphs;
    return isOwn && !isAround ? paragraph : nullptr;
}

int mifKeepNumber(MifContext *context)
{
    MifOpenParagraph *paragraph = mifCurrentParagraph(context);
    char *value = mifStringValue(context);
    if (value == nullptr || paragraph == nullptr) {
        return 0;
    }
    if (mifIsHidden(context)) {
        paragraph->hasHidden = 1;
        return 1;
    }
    const char *text = mifTextOfValue(context, value);
    size_t length = strlen(text);
    while (length > longestNumber || (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
        --length;
    }
    char *number = length != 0 ? mifCopyBytes(context, text, length) : nullptr;
    mifRelease(context, std::exchange(paragraph->number, number));
    return 1;
}
