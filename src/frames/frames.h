// Anchored frames.
#ifndef MIFREADER_SRC_FRAMES_FRAMES_H
#define MIFREADER_SRC_FRAMES_FRAMES_H

#include "reader/context.h"

// Statement handlers.
int mifAFrames(MifContext *context);
int mifFrame(MifContext *context);

#endif
