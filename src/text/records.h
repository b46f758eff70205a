// What the text family keeps: the text rectangles of the body pages, the flags that decide which text is document text,
// and the variables.
#ifndef MIFREADER_SRC_TEXT_RECORDS_H
#define MIFREADER_SRC_TEXT_RECORDS_H

#include <cstdint>

#include "reader/index.h"
#include "reader/list.h"

// A text rectangle of a body page. Text placed in it is document text.
struct MifBodyTextRect : MifIndexNode {
    int32_t id;
    MifBodyTextRect *next;
};

// Pages, text rectangles and notes. Owned by pages.cpp; inPage, inTextRect and inNotes follow their statements.
struct MifPageState {
    uint32_t inPage;
    uint32_t inBodyPage;
    uint32_t inTextRect;
    uint32_t inNotes;
    uint32_t inBodyText; // the current text rectangle belongs to a body page: text output is on
    MifList<MifBodyTextRect> bodyTextRects;
    MifIndex bodyTextRectIDs;
    int32_t pageWidth; // twips, as the margins
    int32_t pageHeight;
    int32_t topMargin;
    int32_t bottomMargin;
};

// Owned by strings.cpp.
struct MifTextState {
    int32_t markerType; // of the most recent MType; never reset
};

// Name and definition are owned copies, with their escapes; the definition has no building blocks and is null until it
// comes.
struct MifVariable : MifIndexNode {
    char *name;
    char *definition;
    MifVariable *next;
};

// Owned by variables.cpp; inVariableFormats follows its statement.
struct MifVariableState {
    uint32_t inVariableFormats;
    MifList<MifVariable> variableCatalog; // in the order of declaration
    MifIndex names;
    MifVariable *declared; // the one declared last, which gets the definition; null when its name was there before
};

#endif
