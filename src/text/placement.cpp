#include "text/placement.h"

#include "frames/extended_frames.h"
#include "frames/extended_objects.h"
#include "mifreader/extended.h"
#include "reader/extended_tokens.h"
#include "reader/host_memory.h"
#include "reader/losses.h"
#include "reader/statement.h"
#include "reader/units.h"
#include "text/flow.h"
#include "text/notes.h"
#include "text/pages.h"
#include "text/scopes.h"

namespace
{

MifKnownTextRect *findTextRect(const MifContext *context, int32_t id)
{
    return static_cast<MifKnownTextRect *>(
        context->flow.textRectIDs.find(reinterpret_cast<const char *>(&id), sizeof(id)));
}

int keepTextRect(MifContext *context, int32_t id)
{
    MifFlowState &flow = context->flow;
    if (findTextRect(context, id) != nullptr) {
        return 1;
    }
    auto *rect = mifAllocateZeroed<MifKnownTextRect>(context);
    if (rect == nullptr) {
        return 0;
    }
    rect->id = id;
    rect->isInFrame = context->frames.inAFrames;
    rect->frameId = context->frames.placing.id;
    flow.textRects.append(rect);
    flow.textRectIDs.insert(rect, reinterpret_cast<const char *>(&rect->id), sizeof(rect->id));
    return 1;
}

// The traits of the statement around the one that is being closed.
uint32_t traitsAround(const MifContext *context)
{
    const MifStatement *around = context->scanner.statementStack->enclosing;
    return around != nullptr ? around->row->traits : 0;
}

} // namespace

void mifBeginTextFlow(MifContext *context)
{
    MifFlowState &flow = context->flow;
    flow.flow = context->scanner.statementStack;
    flow.flowParagraphs = context->scanner.openParagraphs;
    flow.hasPlace = 0;
    flow.isPlaceKnown = 0;
    flow.isLossTold = 0;
}

int mifEndTextFlow(MifContext *context)
{
    MifFlowState &flow = context->flow;
    flow.flow = nullptr;
    if (mifOwnScope(context, SCOPE_BOX) != nullptr) {
        mifCloseScope(context);
    }
    return 1;
}

// The first rectangle of a flow decides whether it is the text of a box.
int mifPlaceText(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    MifFlowState &flow = context->flow;
    const int32_t id = mifParseInteger(value);
    const uint32_t before = context->pages.inBodyText;
    mifTextRectID(context);
    flow.isInBody = context->pages.inBodyText;
    if (mifInNoteOrBox(context)) {
        context->pages.inBodyText = before;
        return 1;
    }
    const MifKnownTextRect *rect = findTextRect(context, id);
    if (flow.hasPlace == 0 && flow.flow != nullptr && flow.scopes == nullptr && rect != nullptr &&
        rect->isInFrame != 0) {
        for (MifOpenParagraph *paragraph = flow.paragraphs; paragraph != nullptr; paragraph = paragraph->enclosing) {
            mifEndReference(context, paragraph); // which would end in the box
        }
        mifOpenScope(context, SCOPE_BOX, flow.flow, rect->frameId);
    }
    flow.hasPlace = 1;
    flow.isPlaceKnown = rect != nullptr ? 1 : 0;
    return 1;
}

int mifTakeID(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    const int32_t id = mifParseInteger(value);
    const uint32_t traits = traitsAround(context);
    int result = 1;
    if ((traits & TRAIT_TEXT_RECT) != 0) {
        result = keepTextRect(context, id);
    } else if ((traits & TRAIT_FRAME) != 0) {
        mifNameFrame(context, id);
    } else if ((traits & TRAIT_NOTE) != 0) {
        mifNameNote(context, id);
    }
    return mifIsInObject(context) ? result : mifID(context) & result; // of the plain stream
}

int mifEndPage(MifContext *context)
{
    return mifPage(context) & mifEndDefinitions(context);
}

void mifNoteTextWithoutPlace(MifContext *context)
{
    MifFlowState &flow = context->flow;
    if (flow.isPlaceKnown != 0 || flow.isLossTold != 0 || mifIsWritten(context) || !mifIsInFlow(context) ||
        mifIsHidden(context)) {
        return;
    }
    flow.isLossTold = 1;
    mifNoteLossHere(context, MIF_LOSS_UNPLACED);
}

void mifFreeTextRects(MifContext *context)
{
    while (MifKnownTextRect *rect = context->flow.textRects.takeFirst()) {
        mifRelease(context, rect);
    }
    context->flow.textRectIDs.clear();
}
