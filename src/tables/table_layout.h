// The columns of the table that is being read, in the extended stream.
#ifndef MIFREADER_SRC_TABLES_TABLE_LAYOUT_H
#define MIFREADER_SRC_TABLES_TABLE_LAYOUT_H

#include "reader/context.h"

// Lays the columns out and writes the table's begin.
void mifTellTable(MifContext *context);

#endif
