// Column widths, and the row layout that they make.
//
// A replayed table counts its columns and then gives the width of each. Another way, evaluated only while the tables
// are read for the first time, gives each column a minimum and a maximum and lists columns to be made equal.
#ifndef MIFREADER_SRC_TABLES_COLUMNS_H
#define MIFREADER_SRC_TABLES_COLUMNS_H

#include "reader/context.h"

// Statement handlers.
int mifTblNumColumns(MifContext *context);
int mifTblColumnWidth(MifContext *context);
int mifTblColumnWidthA(MifContext *context);
int mifTblColumnNum(MifContext *context);
int mifEqualizeWidths(MifContext *context);

// Writes the row layout, centred between the current indents.
void mifDefineRow(MifContext *context);

// At a start tag inside a row, once the columns are known: the table's layout, in body text.
void mifWriteRowLayout(MifContext *context);

void mifFreeColumns(MifContext *context);

#endif
