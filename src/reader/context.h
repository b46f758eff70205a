// The state of one document: the groups of all families, each in a member named after its owner.
#ifndef MIFREADER_SRC_READER_CONTEXT_H
#define MIFREADER_SRC_READER_CONTEXT_H

#include <type_traits>

#include "formats/records.h"
#include "frames/records.h"
#include "reader/records.h"
#include "tables/records.h"
#include "text/records.h"

// Born by clearing its bytes; mifInitDoc sets the defaults that are not zero. A group is changed by its owner, by the
// owner's functions for others, or by whom its declaration names.
struct MifContext {
    MifHostState host;
    MifHeaderState header;
    MifOutputState output;
    MifSourceState source;
    MifScannerState scanner;
    MifReplayState replay;
    MifUnitState units;
    MifExtensionState extension;
    MifDispatchState dispatch;
    MifPageState pages;
    MifTextState text;
    MifFlowState flow;
    MifNoteState notes;
    MifConditionState conditions;
    MifMarkerState markers;
    MifDocumentState document;
    MifVariableState variables;
    MifFormatState formats;
    MifTableState tables;
    MifFrameState frames;
};

static_assert(std::is_trivial_v<MifContext>);

#endif
