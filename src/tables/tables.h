// Tables and their anchors.
//
// A document keeps its tables apart from the text. They are read twice: once in document order, without output, to note
// where each table starts, and again at each anchor, by the replay, with output.
#ifndef MIFREADER_SRC_TABLES_TABLES_H
#define MIFREADER_SRC_TABLES_TABLES_H

#include "reader/context.h"

// Statement handlers.
int mifTbls(MifContext *context);
int mifTbl(MifContext *context);
int mifTblID(MifContext *context);
int mifATbl(MifContext *context);
int mifCell(MifContext *context);

// Notes where the table begins whose start tag is at the scan position.
void mifNoteTableStart(MifContext *context);

// Releases everything that the tables of the document hold.
void mifTblFreeTables(MifContext *context);

#endif
