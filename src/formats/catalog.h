// Named formats, kept as the plain list of statements that defined them. Both catalogs work alike.
#ifndef MIFREADER_SRC_FORMATS_CATALOG_H
#define MIFREADER_SRC_FORMATS_CATALOG_H

#include "reader/context.h"

// The first entry with that tag; null when there is none or the tag is empty.
MifFormatEntry *mifFindFormat(const MifFormatCatalog &catalog, const char *tag);

// Appends an entry of that tag, whose definition is from now on being stored. Its first statement is the tag, under the
// name of the statement opened last. Returns the entry, or null when memory is exhausted: then nothing has changed.
MifFormatEntry *mifCreateFormat(MifContext *context, MifFormatCatalog &catalog, const char *tag);

// Whether the statements that are met belong to the definition of an entry. Those of a replayed table do not: they
// would be stored at each anchor again.
inline bool mifIsDefining(const MifContext *context, const MifFormatCatalog &catalog)
{
    return catalog.pending != 0 && context->replay.readingStretch == 0;
}

// Appends the closing statement to the entry being defined. Returns 1, or 0 when it has no value, when the
// entry has mostStoredStatements already, or when memory is exhausted.
int mifStoreStatement(MifContext *context, MifFormatCatalog &catalog);

// Appends a statement of the entry's definition, whose selecting sets the property; null for nothing. Returns 1, or 0
// when memory is exhausted.
int mifAppendStatement(MifContext *context, MifFormatEntry &entry, const char *value, const MifProperty *property);

// Release a stored statement, an entry with its statements, and all entries of a catalog.
void mifFreePgfSubStatement(MifContext *context, MifStoredStatement *statement);
void mifFreeParagraph(MifContext *context, MifFormatEntry *entry);
void mifFreeFormats(MifContext *context, MifFormatCatalog &catalog);

#endif
