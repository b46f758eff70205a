// What the text family keeps: the text rectangles of the body pages, the flags that decide which text is document text,
// and the variables.
#ifndef MIFREADER_SRC_TEXT_RECORDS_H
#define MIFREADER_SRC_TEXT_RECORDS_H

#include <cstdint>

#include "formats/extended_style.h"
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

struct MifStatement;

// A text rectangle in the extended stream, of whatever page or frame.
struct MifKnownTextRect : MifIndexNode {
    int32_t id;
    uint32_t isInFrame; // of AFrames
    int32_t frameId;
    MifKnownTextRect *next;
};

// A paragraph of the extended stream that is open. What its statement's depth is tells whose it is.
struct MifOpenParagraph {
    MifOpenParagraph *enclosing;
    uint32_t depth;     // how many paragraphs are open in it, itself included
    uint32_t isBegun;   // its token is written
    uint32_t hasHidden; // some of its content is hidden
    uint32_t inXRef;    // the begin of a cross-reference is written, and not its end
    char *number;       // which waits to be written, owned; null for none
};

// What has formats and conditions of its own, and gives the outer ones back.
enum : uint32_t { SCOPE_DEFINITIONS, SCOPE_TABLE, SCOPE_ROW, SCOPE_CELL, SCOPE_TITLE, SCOPE_NOTE, SCOPE_BOX };

struct MifScope {
    MifScope *enclosing;
    const MifStatement *owner; // whose end closes it
    uint32_t kind;             // SCOPE_NOTE ...
    int32_t id;                // of a note, or of a box's frame
    uint32_t paragraphs;       // so many are open around it
    uint32_t isTold;           // its begin is written
    uint32_t isInReplay;       // it goes with the table that is being read
    // Of what is around it.
    uint32_t hidden;
    uint32_t outerHidden;
    MifExtendedStyle style;
};

// So many scopes have formats of their own; further ones share those around them.
inline constexpr uint32_t mostScopes = 32;

// The flow of text in the extended stream. Owned by flow.cpp and scopes.cpp; `isInBody` and those after it by
// placement.cpp, `marker` and `xref` by markers.cpp.
struct MifFlowState {
    MifScope *scopes; // the innermost first
    uint32_t scopeCount;
    uint32_t hidden;      // by the condition in force
    uint32_t outerHidden; // by one of what is around the scope
    MifOpenParagraph *paragraphs;
    uint32_t conditions;      // named by the Conditional that is open
    uint32_t shownConditions; // those of them that are not hidden
    uint32_t isInBody;        // what pages.inBodyText is outside of notes and boxes
    const MifStatement *flow; // the TextFlow that is open; null outside of all
    uint32_t flowParagraphs;  // so many are open around it
    uint32_t hasPlace;        // the flow has named a text rectangle
    uint32_t isPlaceKnown;    // one that there is
    uint32_t isLossTold;      // of text without a place, in this flow
    MifList<MifKnownTextRect> textRects;
    MifIndex textRectIDs;
};

// A note that is told or referred to.
struct MifKnownNote : MifIndexNode {
    int32_t id;
    uint32_t isTold;
    uint32_t isReferredTo;
    int32_t reference; // the byte of the first one
    MifKnownNote *next;
};

// Owned by notes.cpp.
struct MifNoteState {
    MifList<MifKnownNote> notes;
    MifIndex ids;
};

// A condition of the catalog; key and tag are the same. The first one of a name counts.
struct MifCondition : MifIndexNode {
    char *tag; // owned
    uint32_t isHidden;
    MifCondition *next;
};

// Owned by conditions.cpp.
struct MifConditionState {
    MifList<MifCondition> catalog;
    MifIndex tags;
    MifCondition *declared; // the one that CState is of; null for none
};

// What a marker or a cross-reference has said so far; texts are owned. Owned by markers.cpp.
struct MifMarkerState {
    uint32_t inMarker;
    uint32_t inXRef;
    int32_t type;
    char *typeName;
    char *text;
    char *format;
    char *sourceText;
    char *sourceFile;
};

// Owned by document.cpp.
struct MifDocumentState {
    uint32_t inDocument;
    uint32_t inInfo;      // PDFDocInfo is open
    uint32_t hasLanguage; // the document has stated one
    char *infoKey;        // of PDFDocInfo, owned
};

// Owned by strings.cpp; `room` by mif_text.cpp.
struct MifTextState {
    int32_t markerType; // of the most recent MType; never reset
    char *room;         // of the extended stream, for converted text; owned, null in the plain one
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
