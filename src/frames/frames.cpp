#include "frames/frames.h"

#include <cstring>

#include "reader/host_memory.h"
#include "reader/statement.h"
#include "reader/tokens.h"
#include "reader/units.h"

// Every ID inside a frame, at any depth, makes a record. Only the first one with an ID is ever found, so no other one
// is kept: a table read again at each anchor must not add to the memory.
int mifFrameID(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    MifFrameState &frames = context->frames;
    const int32_t id = mifParseInteger(value);
    if (mifFindFrame(context, id) != nullptr) {
        frames.currentFrame = &frames.unframed;
        mifClearUnframed(context);
        return 1;
    }
    auto *frame = mifAllocateZeroed<MifFrameRecord>(context);
    if (frame == nullptr) {
        return 0;
    }
    frame->id = id;
    frames.frameList.append(frame);
    frames.frameIDs.insert(frame, reinterpret_cast<const char *>(&frame->id), sizeof(frame->id));
    frames.currentFrame = frame;
    return 1;
}

MifFrameRecord *mifFindFrame(const MifContext *context, int32_t id)
{
    return static_cast<MifFrameRecord *>(
        context->frames.frameIDs.find(reinterpret_cast<const char *>(&id), sizeof(id)));
}

void mifClearUnframed(MifContext *context)
{
    MifFrameRecord &unframed = context->frames.unframed;
    mifRelease(context, unframed.facetName);
    mifRelease(context, unframed.fileName);
    unframed = {};
}

// One inside an imported object replaces the frame's own.
int mifShapeRect(MifContext *context)
{
    const MifFrameState &frames = context->frames;
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    MifFrameRecord *frame = frames.currentFrame;
    if (context->pages.inPage != 0 || (frames.inFrame == 0 && frames.inImportObject == 0) || frame == nullptr) {
        return 1;
    }
    MifMeasurementList rectangle(value);
    frame->x = rectangle.next();
    frame->y = rectangle.next();
    frame->width = rectangle.next();
    frame->height = rectangle.next();
    return 1;
}

int mifNSOffset(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    if (MifFrameRecord *frame = context->frames.currentFrame) {
        frame->x = mifSaturate(int64_t{frame->x} + MifMeasurementList(value).next());
    }
    return 1;
}

int mifAnchorAlign(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    MifFrameRecord *frame = context->frames.currentFrame;
    if (context->frames.inAFrames == 0 || frame == nullptr) {
        return 1;
    }
    const int64_t room = int64_t{context->pages.pageWidth} - frame->width;
    if (strcmp(value, "Center") == 0) {
        frame->x = mifSaturate(room / 2);
    } else if (strcmp(value, "Right") == 0) {
        frame->x = mifSaturate(room);
    }
    return 1;
}

// The anchor. It is written wherever it is read, and only for a frame whose object has data.
int mifAFrame(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    MifFrameRecord *frame = value != nullptr ? mifFindFrame(context, mifParseInteger(value)) : nullptr;
    if (frame == nullptr) {
        return 0;
    }
    if (frame->object.dataLength <= 0) {
        return 1;
    }
    context->frames.currentFrame = frame;
    return mifWriteFrame(context, *frame);
}
