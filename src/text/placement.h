// Where text stands in the extended stream: in the body, in a frame as a text box, on a master or reference page, or
// nowhere.
#ifndef MIFREADER_SRC_TEXT_PLACEMENT_H
#define MIFREADER_SRC_TEXT_PLACEMENT_H

#include "reader/context.h"

// Statement handlers.
void mifBeginTextFlow(MifContext *context);
int mifEndTextFlow(MifContext *context);
int mifPlaceText(MifContext *context); // TextRectID
int mifTakeID(MifContext *context);
int mifEndPage(MifContext *context);

// Notes, once in each flow, that its text is lost: it names no text rectangle, or one that no page and no frame has.
void mifNoteTextWithoutPlace(MifContext *context);

void mifFreeTextRects(MifContext *context);

#endif
