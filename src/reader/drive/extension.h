// The extended stream as a whole: its beginning, the leaving of a table, its end, and what it holds in memory.
#ifndef MIFREADER_SRC_READER_DRIVE_EXTENSION_H
#define MIFREADER_SRC_READER_DRIVE_EXTENSION_H

#include "reader/context.h"

// All of them do nothing in the plain stream.

// Memory for it. Returns 1, or 0 when memory is exhausted.
int mifPrepareExtension(MifContext *context);

// A table's replay ends: what it has left open is closed.
void mifLeaveTable(MifContext *context);

// The document ends: what is open is closed, and what only its end tells is told, once.
void mifTellDocumentEnd(MifContext *context);

void mifFreeExtension(MifContext *context);

#endif
