#include "frames/extended_objects.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "frames/data_lines.h"
#include "mifreader/extended.h"
#include "reader/host_memory.h"
#include "reader/losses.h"
#include "reader/statement.h"

namespace
{

constexpr std::string_view endInset = "=EndInset";
// what stands in place of a path when the data are here
constexpr uint32_t embeddedKind = 2;
constexpr size_t longestFacetName = 255;

MifFrameRecord &objectFrame(MifContext *context)
{
    MifFrameState &frames = context->frames;
    return frames.currentFrame != nullptr ? *frames.currentFrame : frames.unframed;
}

void takeFacet(MifContext *context, std::string_view name)
{
    MifFrameRecord &frame = objectFrame(context);
    context->frames.hexMode = 0;
    if (frame.object.facetSeen != 0) {
        frame.object.laterFacetSeen = 1;
        return;
    }
    mifRelease(context, frame.facetName);
    frame.facetName = mifCopyBytes(context, name.data(), std::min(name.size(), longestFacetName));
    frame.object.facetSeen = 1;
}

void takeData(MifContext *context, const char *position, const char *end)
{
    MifObjectData &object = objectFrame(context).object;
    if (mifIsMarkerLine({position, static_cast<size_t>(end - position)})) {
        object.percentSeen = 1;
        object.percentChar = static_cast<uint8_t>(position[2]);
        return;
    }
    ++position;
    if (object.dataStart == 0) {
        object.dataStart = mifPositionOf(context, position);
        object.kind = embeddedKind;
    }
    uint8_t byte = 0;
    while (position < end) {
        // The line end, which is there, is what tells that a last digit has no fellow.
        object.dataLength += mifDecodeData<true>(position, end + 1, context->frames.hexMode, byte) ? 1 : 0;
    }
}

} // namespace

void mifBeginObject(MifContext *context)
{
    MifFrameState &frames = context->frames;
    if (context->pages.inPage != 0) {
        return;
    }
    frames.insetDepth = 1;
    frames.hexMode = 0;
    frames.isPlainObject = 0;
    const MifFrameRecord &frame = objectFrame(context);
    frames.isSecondObject = frame.object.facetSeen != 0 || frames.currentFrame == nullptr ? 1 : 0;
}

int mifEndObject(MifContext *context)
{
    context->frames.insetDepth = 0;
    context->frames.isPlainObject = 0;
    return 1;
}

bool mifIsInObject(const MifContext *context)
{
    const MifFrameState &frames = context->frames;
    return frames.inImportObject != 0 && frames.insetDepth != 0 && frames.isPlainObject == 0;
}

// After its end mark what else the object holds is seen by the plain stream, too.
char *mifTakeObjectLine(MifContext *context, char *lineEnd)
{
    MifFrameState &frames = context->frames;
    char *position = context->source.scanPosition;
    const std::string_view line(position, static_cast<size_t>(lineEnd - position));
    if (line.starts_with(endInset)) {
        frames.hexMode = 0;
        frames.isPlainObject = 1;
        return position + endInset.size();
    }
    if (frames.isSecondObject != 0) {
        if (frames.isSecondObject == 1) {
            frames.isSecondObject = 2;
            mifNoteLossHere(context, MIF_LOSS_OBJECT);
        }
        return lineEnd;
    }
    if (line.front() == '=') {
        takeFacet(context, line.substr(1));
    } else if (objectFrame(context).object.laterFacetSeen == 0) {
        takeData(context, position, lineEnd);
    }
    return lineEnd;
}
