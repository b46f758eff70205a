// Formats of tables in the extended stream: those of the catalog, and that of the table being read, which is its own on
// top of one of the catalog's.
#ifndef MIFREADER_SRC_TABLES_TABLE_FORMATS_H
#define MIFREADER_SRC_TABLES_TABLE_FORMATS_H

#include "reader/context.h"

// Statement handlers, of a table's format.
int mifTableTag(MifContext *context);
int mifColumnNumber(MifContext *context);
int mifColumnCount(MifContext *context);
int mifColumnWidth(MifContext *context);
int mifColumnWidthA(MifContext *context);
int mifColumnWidthP(MifContext *context);
int mifTableWidth(MifContext *context);
int mifTableAlignment(MifContext *context);
int mifTableIndent(MifContext *context);
int mifTitlePlacement(MifContext *context);
int mifBodyFill(MifContext *context);
int mifBodyColor(MifContext *context);
int mifHeadingFill(MifContext *context);
int mifHeadingColor(MifContext *context);
void mifBeginTableFormat(MifContext *context);
int mifEndTableFormat(MifContext *context);

// A ruling of the table's format, by its edge.
int mifSetRuling(MifContext *context, uint32_t edge);

template <uint32_t edge>
int mifTableRuling(MifContext *context)
{
    return mifSetRuling(context, edge);
}

// Of the catalog of rulings.
int mifRulingTag(MifContext *context);
int mifRulingWidth(MifContext *context);
int mifRulingColor(MifContext *context);
int mifRulingLines(MifContext *context);

// The ruling of that name, made on its first mention. Null when memory is exhausted.
MifRuling *mifInternRuling(MifContext *context, const char *name);

// The colour of the closing statement's value, null for none.
const MifColor *mifColorOfValue(MifContext *context);

void mifClearTableFormat(MifContext *context, MifTableFormat &format);
void mifFreeTableFormats(MifContext *context);

#endif
