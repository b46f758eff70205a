// Anchored frames of the extended stream: where they stand, and the pictures that they name.
#ifndef MIFREADER_SRC_FRAMES_EXTENDED_FRAMES_H
#define MIFREADER_SRC_FRAMES_EXTENDED_FRAMES_H

#include "reader/context.h"

// Frame: its beginning, and its handler.
void mifBeginFrame(MifContext *context);
int mifEndFrame(MifContext *context);

// Statement handlers.
int mifPlaceFrame(MifContext *context);      // ShapeRect
int mifPlaceFrameByBox(MifContext *context); // BRect, which older writers have in its place
int mifShiftFrame(MifContext *context);      // NSOffset
int mifAlignFrame(MifContext *context);      // AnchorAlign
int mifTypeFrame(MifContext *context);       // FrameType
int mifAnchorFrame(MifContext *context);     // AFrame

// The outermost frame that is open has that identifier.
void mifNameFrame(MifContext *context, int32_t id);

// Takes over the path, from the host's memory, of a picture in the frame that is open.
void mifNamePicture(MifContext *context, char *path);

void mifFreeFrames(MifContext *context);

#endif
