// What the frame family keeps: the frames, the scan of an imported object's data, and the object that the host has
// open.
#ifndef MIFREADER_SRC_FRAMES_RECORDS_H
#define MIFREADER_SRC_FRAMES_RECORDS_H

#include <cstdint>

#include "reader/index.h"
#include "reader/list.h"

// What is known of the data of a frame's imported object. All of it goes back when a line has to be scanned again.
struct MifObjectData {
    uint32_t kind;           // 2 when data are embedded
    int32_t dataStart;       // stream position after the `&` of the first data line; 0 for no data
    int32_t dataLength;      // decoded bytes of the first facet
    uint32_t facetSeen;      // the first facet has begun
    uint32_t laterFacetSeen; // and a further one, whose data do not count
    uint32_t skipData;       // in the data of a further facet
    uint32_t percentSeen;    // the facet's `&%` line has come
    uint8_t percentChar;     // the character after it
};

// An anchored frame. Positions and sizes are twips.
struct MifFrameRecord : MifIndexNode {
    int32_t id;
    int32_t x;
    int32_t y;
    int32_t width;
    int32_t height;
    MifObjectData object;
    char *facetName; // of the first facet, owned, null for none
    char *fileName;  // the file reference, owned, null for none
    MifFrameRecord *next;
};

// An outermost frame in the extended stream. Measures are twips.
struct MifPlacedFrame : MifIndexNode {
    int32_t id;
    uint32_t hasId;
    uint32_t hasShape; // ShapeRect has come, which counts more than BRect
    int32_t left;
    int32_t top;
    int32_t width;
    int32_t height;
    uint8_t place;     // a MIF_FRAME value
    uint8_t alignment; // a MIF_ANCHOR value
    char *path;        // of a picture in a file, owned; null for none
    MifPlacedFrame *next;
};

// A place in an object's data lines.
struct MifDataCursor {
    int32_t position;     // in the stream
    uint32_t atLineStart; // a line begins there
    uint32_t hexMode;     // of the data from there on
    uint32_t ended;       // the `=` after the facet's data was met
};

// The object that the host has opened last. Its state is apart from the frame's, so that reading it disturbs no scan.
struct MifObjectFile {
    const MifFrameRecord *frame; // null when none has been opened
    MifDataCursor readCursor;    // where the next read decodes
    MifDataCursor rawPosition;   // where the last read or skip came to, also when it stopped short
    int32_t position;            // bytes delivered
};

// Owned by frames.cpp and imported_objects.cpp, `file` by object_file.cpp; the inside flags follow their statements.
struct MifFrameState {
    uint32_t inAFrames;
    uint32_t inFrame;
    uint32_t inImportObject;
    MifList<MifFrameRecord> frameList;
    MifIndex frameIDs;
    MifFrameRecord *currentFrame; // the last one made or anchored, which frame statements apply to
    int32_t insetDepth;           // open brackets of the object being scanned, its own included
    uint32_t hexMode;             // of that scan
    uint32_t scanCut;             // a stretch ended inside the scan; it goes on with the next one
    MifFrameRecord unframed;      // stands in for currentFrame where no anchor finds it: for an object without a
                                  // frame, and for a frame whose ID was there before
    MifObjectFile file;

    // Of the extended stream, owned by extended_frames.cpp and, from isPlainObject on, by extended_objects.cpp.
    MifList<MifPlacedFrame> placedFrames;
    MifIndex placedIDs;
    MifPlacedFrame placing;  // the one that is open
    uint32_t frameDepth;     // of the frames that are open, anchored or not
    uint32_t inTextLine;     // follows its statement
    uint32_t isPlainObject;  // the open object's end mark has come
    uint32_t isSecondObject; // the open object has no identifier of its own; 2 when that is told
};

#endif
