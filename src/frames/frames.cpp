#include "frames/frames.h"

int mifAFrames(MifContext *context)
{
    context->frames.inAFrames = 0;
    return 1;
}

int mifFrame(MifContext *context)
{
    context->frames.inFrame = 0;
    return 1;
}
