// What the table family keeps: where each table stands in the stream, and the columns of the one being read.
#ifndef MIFREADER_SRC_TABLES_RECORDS_H
#define MIFREADER_SRC_TABLES_RECORDS_H

#include <cstdint>

#include "formats/extended_style.h"
#include "reader/index.h"
#include "reader/list.h"

// A table of the document, known by the text of its ID. Its content is read anew at every anchor.
struct MifTableEntry : MifIndexNode {
    int32_t startOffset; // of the `<` of its Tbl statement
    char *id;            // owned
    MifTableEntry *next;
};

inline constexpr int32_t autoSizeColumns = 64;

// A ruling by its name, kept once, from its first mention on. Its lines are looked at when it is used.
struct MifRuling : MifIndexNode {
    char *name; // owned
    uint32_t lines;
    int32_t width; // of a line, twips
    const MifColor *color;
    MifRuling *next;
};

enum : uint32_t {
    EDGE_LEFT,
    EDGE_TOP,
    EDGE_RIGHT,
    EDGE_BOTTOM,
    EDGE_COLUMNS,
    EDGE_BODY_ROWS,
    EDGE_HEADING_ROWS,
    EDGE_SEPARATOR
};

inline constexpr uint32_t tableEdges = EDGE_SEPARATOR + 1;
inline constexpr uint32_t cellEdges = EDGE_BOTTOM + 1;

inline constexpr int32_t mostTableColumns = 4096;

struct MifColumnFormat {
    int32_t column; // counted from 0
    int32_t width;  // twips, or parts of what is left when it is a share
    uint32_t isShare;
};

// What is stated of columns, in its order, so that a later statement wins: no more than the document has of it. An
// owned array; null when the capacity is 0.
struct MifColumnList {
    MifColumnFormat *stated;
    int32_t count;
    int32_t capacity;
    int32_t columns; // as many as the last of them asks for
};

// How a table looks. Measures are twips.
struct MifTableFormat : MifIndexNode {
    char *tag;         // owned; null for none
    int32_t id;        // of the table
    uint8_t alignment; // a MIF_ALIGN value
    uint8_t titlePlace;
    int32_t leftIndent;
    int32_t width;         // 0 for none
    MifColumnList columns; // as the format states them
    const MifRuling *rulings[tableEdges];
    uint32_t bodyFill;
    uint32_t headingFill;
    const MifColor *bodyColor;
    const MifColor *headingColor;
    MifTableFormat *next;
};

// What a cell states itself.
struct MifExtendedCell {
    int32_t columns;
    int32_t rows;
    uint32_t states; // MIF_CELL_STATES values
    uint32_t fill;
    const MifColor *color;
    const MifRuling *rulings[cellEdges];
    int32_t angle; // degrees
};

// Tables in the extended stream. Owned by extended_tables.cpp; formats and rulings by table_formats.cpp.
struct MifExtendedTableState {
    MifList<MifTableFormat> formats;
    MifIndex formatTags;
    MifList<MifRuling> rulings;
    MifIndex rulingNames;
    MifRuling *declared;      // the ruling that the catalog's statements are of
    MifTableFormat table;     // the one that is being read; or a format of the catalog
    MifColumnList ownColumns; // the widths that the table itself states
    int32_t ownColumnCount;
    int32_t column;   // that the format's statements are of
    uint32_t inTable; // a table is being read at its anchor, and has a scope
    uint8_t rowKind;  // a MIF_ROW value
    uint32_t isRowTold;
    uint32_t isCellTold;
    uint32_t isCellShown;   // the row is told, and no condition around the cell hides it
    int32_t nextColumn;     // of the next cell in the row
    int32_t coveredColumns; // cells that the one before covers
    int32_t *coveredRows;   // for each column how many rows a cell still covers; owned, null for none
    int32_t shownColumns;
    MifExtendedCell cell;
};

// Owned by tables.cpp and, from columnCount on, by columns.cpp; the inside flags follow their statements. Widths are
// twips. Nothing is reset between tables: each one overwrites what it names.
struct MifTableState {
    uint32_t inTbls;
    uint32_t inTblFormat;
    uint32_t inTblCatalog; // of the extended stream
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
    MifExtendedTableState extended;
};

#endif
