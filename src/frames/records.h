// What the frame family keeps.
#ifndef MIFREADER_SRC_FRAMES_RECORDS_H
#define MIFREADER_SRC_FRAMES_RECORDS_H

#include <cstdint>

// Owned by frames.cpp; the scanner raises the flags.
struct MifFrameState {
    uint32_t inAFrames;
    uint32_t inFrame;
};

#endif
