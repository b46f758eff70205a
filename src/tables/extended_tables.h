// Tables of the extended stream: what a table, its rows and cells look like. The tokens of the plain stream come
// beside.
#ifndef MIFREADER_SRC_TABLES_EXTENDED_TABLES_H
#define MIFREADER_SRC_TABLES_EXTENDED_TABLES_H

#include "reader/context.h"

// The table: beginning and end, and the anchor.
void mifBeginTable(MifContext *context);
int mifEndTable(MifContext *context);
int mifNameTable(MifContext *context); // TblID
int mifAnchorTable(MifContext *context);

// Its parts.
void mifBeginTitle(MifContext *context);
int mifEndTitle(MifContext *context);
void mifBeginHeading(MifContext *context);
void mifBeginBody(MifContext *context);
void mifBeginFooting(MifContext *context);
void mifBeginRow(MifContext *context);
int mifEndRow(MifContext *context);
void mifBeginCell(MifContext *context);
int mifEndCell(MifContext *context);
void mifBeginCellContent(MifContext *context);

// Statement handlers, of a cell.
int mifCellColumns(MifContext *context);
int mifCellRows(MifContext *context);
int mifCellFill(MifContext *context);
int mifCellColor(MifContext *context);
int mifCellLeftRuling(MifContext *context);
int mifCellTopRuling(MifContext *context);
int mifCellRightRuling(MifContext *context);
int mifCellBottomRuling(MifContext *context);
int mifCellAngle(MifContext *context);

void mifFreeExtendedTables(MifContext *context);

#endif
