// What the table family keeps: where each table stands in the stream, and the columns of the one being read.
#ifndef MIFREADER_SRC_TABLES_RECORDS_H
#define MIFREADER_SRC_TABLES_RECORDS_H

#include <cstdint>

#include "reader/index.h"
#include "reader/list.h"

// A table of the document, known by the text of its ID. Its content is read anew at every anchor.
struct MifTableEntry : MifIndexNode {
    int32_t startOffset; // of the `<` of its Tbl statement
    char *id;            // owned
    MifTableEntry *next;
};

inline constexpr int32_t autoSizeColumns = 64;

// Owned by tables.cpp and, from columnCount on, by columns.cpp; the inside flags follow their statements. Widths are
// twips. Nothing is reset between tables: each one overwrites what it names.
struct MifTableState {
    uint32_t inTbls;
    uint32_t inTblFormat;
    uint32_t inRow;
    uint32_t inEqualizeWidths;
    int32_t tableStartPosition; // file position of the `<` of the table being read
    MifList<MifTableEntry> tblList;
    MifIndex tblIDs;

    int32_t columnCount;       // of the current table; may be more than widths were allocated
    int32_t allocatedColumns;  // the size of columnWidths
    int32_t *columnWidths;     // what a row layout carries; owned, null for none
    int32_t widthsSet;         // of the first columns, which have one; later ones may have one too
    uint32_t rowLayoutPending; // the widths are complete; the next start tag inside a row writes the layout
    uint32_t autoSizeSeen;     // the table gives its widths as minimum and maximum
    int32_t equalWidth;        // the largest maximum among the columns to be equalized
    int32_t minWidths[autoSizeColumns];
    int32_t maxWidths[autoSizeColumns];
    uint32_t equalizeColumns[autoSizeColumns];
    int32_t rowOffset;        // of the last row layout
    uint32_t rowConstants[4]; // written into every row layout
};

#endif
