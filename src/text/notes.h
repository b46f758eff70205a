// Notes of the extended stream: their paragraphs, where the document has them, and the references to them.
#ifndef MIFREADER_SRC_TEXT_NOTES_H
#define MIFREADER_SRC_TEXT_NOTES_H

#include "reader/context.h"

// FNote: its beginning, and its handler.
void mifBeginNote(MifContext *context);
int mifTakeNote(MifContext *context);

// At the document's end: references to notes that there are not are losses.
void mifTellMissingNotes(MifContext *context);

void mifFreeNotes(MifContext *context);

// The note that is open has that identifier.
void mifNameNote(MifContext *context, int32_t id);

#endif
