// The statements that the reader understands, and the finding of a statement's row by its name.
#ifndef MIFREADER_SRC_READER_STATEMENT_TABLE_H
#define MIFREADER_SRC_READER_STATEMENT_TABLE_H

#include <cstdint>

#include "reader/context.h"

// The flag that a start tag raises. The statement's own handler clears it; it is no counter.
using MifInsideFlag = uint32_t &(*)(MifContext &context);

struct MifStatementEntry {
    char name[32];
    MifStatementHandler handler;
    MifInsideFlag insideFlag; // null for most statements
};

inline constexpr uint32_t statementCount = 79;

// Read-only and shared by all contexts.
extern const MifStatementEntry MifStatementTable[statementCount];

// The bucket of a name, 0 to 40.
uint32_t mifHashValue(const char *name);

// Builds the context's hash table over all rows. Returns 1, or 0 when memory is exhausted: what was built stays, for
// mifFreeHashTable.
int mifCreateHashTable(MifContext *context);

void mifFreeHashTable(MifContext *context);

// The row of a name. A name that has none gets a row whose handler is mifUnsupportedMIFStatement; never null.
const MifStatementEntry *mifFindStatement(const MifContext *context, const char *name);

// The handler of a name, mifUnsupportedMIFStatement for an unknown one.
MifStatementHandler mifGetTagFunction(const MifContext *context, const char *name);

// The handler of every statement that the reader does not know: it is accepted and its value ignored.
int mifUnsupportedMIFStatement(MifContext *context);

#endif
