// What the table family keeps: where each table stands in the stream.
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

// Owned by tables.cpp; the scanner raises inTbls, inTblFormat and inRow and notes where a table starts.
struct MifTableState {
    uint32_t inTbls;
    uint32_t inTblFormat;
    uint32_t inRow;
    int32_t tableStartPosition; // file position of the `<` of the table being read
    MifList<MifTableEntry> tblList;
    MifIndex tblIDs;
    uint32_t rowConstants[4]; // written into every row layout
};

#endif
