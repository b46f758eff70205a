#include "frames/extended_frames.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "frames/extended_objects.h"
#include "frames/frames.h"
#include "mifreader/extended.h"
#include "reader/extended_tokens.h"
#include "reader/host_memory.h"
#include "reader/losses.h"
#include "reader/statement.h"
#include "reader/units.h"
#include "text/flow.h"
#include "text/scopes.h"

namespace
{

struct Keyword {
    std::string_view text;
    uint8_t value;
};

constexpr Keyword alignments[] = {
    {"Left", MIF_ANCHOR_LEFT},     {"Center", MIF_ANCHOR_CENTER},   {"Right", MIF_ANCHOR_RIGHT},
    {"Inside", MIF_ANCHOR_INSIDE}, {"Outside", MIF_ANCHOR_OUTSIDE},
};

constexpr Keyword places[] = {
    {"Inline", MIF_FRAME_INLINE},
    {"Below", MIF_FRAME_BELOW},
    {"Top", MIF_FRAME_TOP},
    {"Bottom", MIF_FRAME_BOTTOM},
    {"RunIntoParagraph", MIF_FRAME_RUN_IN},
    {"Left", MIF_FRAME_MARGIN},
    {"Right", MIF_FRAME_MARGIN},
    {"Near", MIF_FRAME_MARGIN},
    {"Far", MIF_FRAME_MARGIN},
    {"Inside", MIF_FRAME_MARGIN},
    {"Outside", MIF_FRAME_MARGIN},
};

// Sets the field of the outermost frame, whose statement this must be.
template <size_t count>
int setKeyword(MifContext *context, const Keyword (&keywords)[count], uint8_t MifPlacedFrame::*field)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    const Keyword *found = std::find_if(std::begin(keywords), std::end(keywords),
                                        [value](const Keyword &row) { return row.text == value; });
    if (found != std::end(keywords) && context->frames.frameDepth == 1) {
        context->frames.placing.*field = found->value;
    }
    return 1;
}

bool isOfOutermostFrame(const MifContext *context)
{
    const MifStatement *around = context->scanner.statementStack->enclosing;
    return context->frames.frameDepth == 1 && around != nullptr && (around->row->traits & TRAIT_FRAME) != 0;
}

int readRectangle(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    if (isOfOutermostFrame(context)) {
        MifPlacedFrame &frame = context->frames.placing;
        MifMeasurementList rectangle = MifMeasurementList::fromFirst(value);
        for (int32_t MifPlacedFrame::*side :
             {&MifPlacedFrame::left, &MifPlacedFrame::top, &MifPlacedFrame::width, &MifPlacedFrame::height}) {
            frame.*side = rectangle.next();
        }
    }
    return 1;
}

MifPlacedFrame *findPlaced(const MifContext *context, int32_t id)
{
    return static_cast<MifPlacedFrame *>(
        context->frames.placedIDs.find(reinterpret_cast<const char *>(&id), sizeof(id)));
}

} // namespace

void mifBeginFrame(MifContext *context)
{
    MifFrameState &frames = context->frames;
    if (frames.frameDepth == 0) {
        mifRelease(context, frames.placing.path);
        frames.placing = {};
        mifBeginDefinitions(context);
    }
    ++frames.frameDepth;
}

// The first frame of an identifier counts.
int mifEndFrame(MifContext *context)
{
    MifFrameState &frames = context->frames;
    mifEndDefinitions(context);
    if (frames.frameDepth == 0 || --frames.frameDepth != 0 || frames.inAFrames == 0 || frames.placing.hasId == 0 ||
        findPlaced(context, frames.placing.id) != nullptr) {
        return 1;
    }
    auto *frame = mifAllocateZeroed<MifPlacedFrame>(context);
    if (frame == nullptr) {
        return 0;
    }
    *frame = frames.placing;
    frames.placing.path = nullptr; // it is the frame's
    frames.placedFrames.append(frame);
    frames.placedIDs.insert(frame, reinterpret_cast<const char *>(&frame->id), sizeof(frame->id));
    return 1;
}

// In an object these are the object's own.
int mifPlaceFrame(MifContext *context)
{
    if (mifIsInObject(context)) {
        return 1;
    }
    context->frames.placing.hasShape |= isOfOutermostFrame(context) ? 1 : 0;
    return readRectangle(context) & mifShapeRect(context);
}

int mifPlaceFrameByBox(MifContext *context)
{
    return context->frames.placing.hasShape == 0 ? readRectangle(context) : 1;
}

int mifShiftFrame(MifContext *context)
{
    return mifIsInObject(context) ? 1 : mifNSOffset(context);
}

int mifAlignFrame(MifContext *context)
{
    return mifIsInObject(context)
               ? 1
               : setKeyword(context, alignments, &MifPlacedFrame::alignment) & mifAnchorAlign(context);
}

int mifTypeFrame(MifContext *context)
{
    return setKeyword(context, places, &MifPlacedFrame::place);
}

// The token of the plain stream comes wherever the anchor is read, as there.
int mifAnchorFrame(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    const MifPlacedFrame *frame = findPlaced(context, mifParseInteger(value));
    if (mifIsWritten(context) && mifIsHidden(context)) {
        mifBeginContent(context); // which notes that it is hidden
        return 1;
    }
    if (frame == nullptr) {
        if (mifIsWritten(context) && mifFindFrame(context, mifParseInteger(value)) == nullptr) {
            mifNoteLossHere(context, MIF_LOSS_REFERENCE);
        }
    } else if (mifBeginText(context)) {
        mifWriteAnchor(context, *frame);
    }
    return mifAFrame(context);
}

void mifNameFrame(MifContext *context, int32_t id)
{
    MifPlacedFrame &frame = context->frames.placing;
    if (context->frames.frameDepth == 1 && frame.hasId == 0) {
        frame.id = id;
        frame.hasId = 1;
    }
}

void mifNamePicture(MifContext *context, char *path)
{
    if (context->frames.frameDepth == 0) {
        mifRelease(context, path);
        return;
    }
    mifRelease(context, std::exchange(context->frames.placing.path, path));
}

void mifFreeFrames(MifContext *context)
{
    MifFrameState &frames = context->frames;
    while (MifPlacedFrame *frame = frames.placedFrames.takeFirst()) {
        mifRelease(context, frame->path);
        mifRelease(context, frame);
    }
    frames.placedIDs.clear();
    mifRelease(context, std::exchange(frames.placing.path, nullptr));
}
