// Anchored frames: kept apart from the text, recorded once, written at each anchor.
#ifndef MIFREADER_SRC_FRAMES_FRAMES_H
#define MIFREADER_SRC_FRAMES_FRAMES_H

#include "reader/context.h"

// Statement handlers.
int mifShapeRect(MifContext *context);
int mifNSOffset(MifContext *context);
int mifAnchorAlign(MifContext *context);
int mifAFrame(MifContext *context);

// The handler of an ID inside a frame: makes the frame's record, which becomes the current one.
int mifFrameID(MifContext *context);

// Makes the frame that stands in for others a new one.
void mifClearUnframed(MifContext *context);

// The first frame with that ID, or null.
MifFrameRecord *mifFindFrame(const MifContext *context, int32_t id);

#endif
