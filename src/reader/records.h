// What the reader itself keeps: the host's services, the source buffer, the open statements, the output.
#ifndef MIFREADER_SRC_READER_RECORDS_H
#define MIFREADER_SRC_READER_RECORDS_H

#include <cstdint>

#include "mifreader/extended.h"
#include "reader/list.h"

// A handler runs when its statement's closing `>` is met. It returns nonzero for success and 0 for failure; the scan
// goes on either way.
using MifStatementHandler = int (*)(MifContext *context);

// Runs when a statement's start tag is complete: what follows its name is in the buffer up to the end of its value or
// to the first thing nested in it. The extended stream alone has such statements.
using MifStatementBeginning = void (*)(MifContext *context);

// The flag that a statement raises at its start tag and lowers at its end. It is no counter.
using MifInsideFlag = uint32_t &(*)(MifContext &context);

// What the scanner does otherwise for a statement; most have no trait, so that one test passes over them.
enum : uint32_t {
    TRAIT_PARAGRAPH = 1,  // it is counted in openParagraphs while it is open
    TRAIT_FLAG = 2,       // it has an inside flag
    TRAIT_TABLE = 4,      // where it begins is noted, for its replays
    TRAIT_OBJECT = 8,     // its content is scanned raw, but not on pages
    TRAIT_CONTAINER = 16, // in a paragraph format's definition the statements inside are stored, itself not
    // Of rows of the extended stream alone.
    TRAIT_BEGINNING = 32, // its beginning runs
    TRAIT_BARE = 64,      // its handler runs for `<Name>` too, which opens no statement and has no value
    TRAIT_FRAME = 128,    // an ID in it is a frame's
    TRAIT_NOTE = 256,     // an ID in it is a note's
    TRAIT_TEXT_RECT = 512 // an ID in it is a text rectangle's
};

struct MifProperty;

// All that the reader knows of a statement.
struct MifStatementEntry {
    char name[32];
    MifStatementHandler handler;
    MifInsideFlag insideFlag;  // with TRAIT_FLAG; else null
    const MifProperty *direct; // the property that the statement sets in the text; null for none
    const MifProperty *stored; // the one that it sets when a format it was stored in is selected
    uint32_t traits;
    MifStatementBeginning beginning; // with TRAIT_BEGINNING; else null
};

struct MifHostState {
    HostServices *services;
    HostStream *stream;
    void *notifyCookie;
    HostNotify notifyCallback; // may be null
};

struct MifHeaderState {
    double version;
    char *comment; // the header comment, owned; null when there is none
};

// A token that found no room in the host's buffer. Its bytes follow the record.
struct MifQueuedToken {
    MifQueuedToken *next;
    uint32_t length;
};

// The host's buffer of the current fill call:
//
//     outputStart          outputPosition            outputEnd
//     |--- whole tokens ---|--- room of this call ---|
//
// outputEnd is the buffer's end until a token has to wait in the queue; from then on it stands at outputPosition, so
// that every later token waits too and the order is kept.
struct MifOutputState {
    uint8_t *outputStart;
    uint8_t *outputPosition;
    uint8_t *outputEnd;
    uint32_t bufferSize;
    uint32_t outputLimit;  // bytes after which no step is begun: nine tenths of the buffer
    uint8_t *stopPosition; // where the limit is; outputStart when a token waits or is lost, so that one test tells all
    uint32_t outputFull;   // the last fill call stopped at the limit, in the middle of a stretch
    uint32_t ended;        // a fill call has reported 100 percent
    uint32_t failed;       // a fill call has returned 6, or will: the document is refused, or its stream has a gap
    MifFailure failure;    // why
    MifList<MifQueuedToken> queue;
};

inline constexpr int32_t sourceBufferSize = 4096;

// How far after the text bytes are looked at, with what an earlier stretch has left there.
inline constexpr int32_t sourceBufferMargin = 16;

// The stretch of text that is being scanned:
//
//     buffer            scanPosition                     bufferEnd
//     |--- taken up ----|--- valid, not yet taken up ----|--- free ---|
//
// buffer <= scanPosition <= bufferEnd <= buffer + sourceBufferSize, always. When carryLength is not 0, the carryLength
// bytes from scanPosition to bufferEnd are an unfinished statement that the next read moves to the front.
//
// At bufferEnd, after the text, stands a `>`: it ends names, blanks and values, so that what looks for their end need
// not look for the end of the text as well.
//
// The steps of the scan, the header and the raw scan of objects move scanPosition; drive/ counts bytesRead anew when it
// goes to another place.
struct MifSourceState {
    char buffer[sourceBufferSize + sourceBufferMargin];
    char *scanPosition;
    char *bufferEnd;
    int32_t carryLength;
    int32_t bytesRead; // taken from the stream so far, never more than totalSize
    int32_t totalSize;
    int32_t missing;    // of the stated size, when the stream has ended before it
    uint32_t firstCall; // the next fill call is the document's first one
};

// An open statement. The value is in the source buffer, from valueStart to valueEnd, which is its last byte (so an
// empty value ends before it starts). Both are null for a statement that has no value.
struct MifStatement {
    const MifStatementEntry *row;
    char *valueStart;
    char *valueEnd;
    MifStatement *enclosing; // null at top level
};

// The same in the extended stream, which tells where it began.
struct MifLocatedStatement : MifStatement {
    int32_t position; // of its `<` in the document
};

struct MifScannerState {
    char *nameStart; // the name of the most recent start tag, in the source buffer
    char *nameEnd;
    const MifStatementEntry *row; // its row
    uint32_t insideFlagBefore;    // what the flag that it raised was before
    MifStatement *statementStack; // the innermost open statement
    uint32_t openParagraphs;      // of the statements on the stack
};

// Leaving the flow for a table and coming back. Idle, suspendPending, readingStretch, both readingStretch and
// restorePending, idle again. Changed by replay.h and drive/suspension; source moves stretchPosition on, statement
// forgets savedStatement when that is closed, and the fill cycle ends a replay that the document's end cuts.
struct MifReplayState {
    int32_t startPosition;              // where the table to read begins
    int32_t stretchPosition;            // while reading it: the stream's position
    int32_t savedPosition;              // where the flow goes on
    const MifStatement *savedStatement; // the innermost open statement of the flow
    uint32_t suspendPending;
    uint32_t restorePending;
    uint32_t readingStretch;
};

struct MifUnitState {
    int32_t documentUnit; // twips per unit of the Units statement; no conversion reads it
};

inline constexpr uint32_t lossKinds = MIF_LOSS_OBJECT + 1;

// Losses of one kind.
struct MifLossCount {
    uint32_t count;
    int32_t first; // byte of the document
};

enum : uint32_t { FOUND_OWN = 1, FOUND_UTF_8 = 2 };

// What the host asked for beyond the plain stream, and what of the document was lost. Written by losses.h, the entry
// points and, `encoding` with the header, by text/.
struct MifExtensionState {
    uint32_t version;        // of the extended stream; 0 for the plain one
    uint32_t encoding;       // a MIF_ENCODING value
    uint32_t encodingsFound; // of the strings with bytes above 0x7F, FOUND_OWN and FOUND_UTF_8; written by text/
    uint32_t initialized;    // mifInitDoc was called
    uint32_t ended;          // the tokens of the document's end are written
    uint32_t refusals;       // allocations refused and not yet told as losses
    uint32_t lossesTold;
    int32_t givenUpTo; // where what was given up last ends, as far as it is known
    MifLossCount losses[lossKinds];
};

// One row of the statement table in a hash chain.
struct MifLookupEntry {
    const MifStatementEntry *row;
    MifLookupEntry *next;
};

inline constexpr uint32_t statementBucketCount = 41;

// A name of up to 16 bytes as two words, zeros after it, and the row that was found for it; null for none yet.
struct MifRecentName {
    uint64_t first;
    uint64_t second;
    const MifStatementEntry *row;
};

// The two names met last of those whose words give the same place.
struct MifRecentNames {
    MifRecentName newer;
    MifRecentName older;
};

inline constexpr int recentNamesBits = 7;

struct MifDispatchState {
    MifLookupEntry *statementBuckets[statementBucketCount];
    MifRecentNames recentNames[1 << recentNamesBits];
};

#endif
