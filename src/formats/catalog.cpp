#include "formats/catalog.h"

#include <cstring>

#include "reader/host_memory.h"
#include "reader/statement.h"
#include "text/conversion.h"

namespace
{

// The name of the statement opened last: for a statement with a value that is the closing one.
char *copyStatementName(MifContext *context)
{
    const MifScannerState &scanner = context->scanner;
    return mifCopyBytes(context, scanner.nameStart, static_cast<size_t>(scanner.nameEnd - scanner.nameStart));
}

// Null when memory is exhausted.
MifStoredStatement *makeStatement(MifContext *context, const char *value, const MifProperty *property)
{
    auto *statement = mifAllocateZeroed<MifStoredStatement>(context);
    if (statement == nullptr) {
        return nullptr;
    }
    statement->name = copyStatementName(context);
    statement->value = mifCopyText(context, value);
    if (statement->name == nullptr || statement->value == nullptr) {
        mifFreePgfSubStatement(context, statement);
        return nullptr;
    }
    statement->property = property;
    statement->number = statement->property != nullptr ? statement->property->read(statement->value) : 0;
    return statement;
}

} // namespace

MifFormatEntry *mifFindFormat(const MifFormatCatalog &catalog, const char *tag)
{
    const size_t length = strlen(tag);
    return length != 0 ? static_cast<MifFormatEntry *>(catalog.tags.find(tag, length)) : nullptr;
}

MifFormatEntry *mifCreateFormat(MifContext *context, MifFormatCatalog &catalog, const char *tag)
{
    if (*tag == '\0' && catalog.nameless != nullptr) {
        catalog.defining = catalog.nameless;
        catalog.pending = 1;
        return catalog.nameless;
    }
    auto *entry = mifAllocateZeroed<MifFormatEntry>(context);
    MifStoredStatement *statement = entry != nullptr ? makeStatement(context, tag, nullptr) : nullptr;
    if (statement == nullptr) {
        mifRelease(context, entry);
        return nullptr;
    }
    entry->statements.append(statement);
    entry->statementCount = 1;
    catalog.entries.append(entry);
    catalog.tags.insert(entry, statement->value, strlen(statement->value));
    catalog.defining = entry;
    catalog.pending = 1;
    if (*tag == '\0') {
        catalog.nameless = entry;
    }
    return entry;
}

int mifStoreStatement(MifContext *context, MifFormatCatalog &catalog)
{
    MifFormatEntry *entry = catalog.defining;
    char *value = mifUnquotedValue(context);
    if (value == nullptr || entry->statementCount == mostStoredStatements) {
        return 0;
    }
    mifConvertString(context, value);
    return mifAppendStatement(context, *entry, value, context->scanner.row->stored);
}

int mifAppendStatement(MifContext *context, MifFormatEntry &entry, const char *value, const MifProperty *property)
{
    MifStoredStatement *statement = makeStatement(context, value, property);
    if (statement == nullptr) {
        return 0;
    }
    entry.statements.append(statement);
    ++entry.statementCount;
    return 1;
}

void mifFreePgfSubStatement(MifContext *context, MifStoredStatement *statement)
{
    mifRelease(context, statement->name);
    mifRelease(context, statement->value);
    mifRelease(context, statement);
}

void mifFreeParagraph(MifContext *context, MifFormatEntry *entry)
{
    while (MifStoredStatement *statement = entry->statements.takeFirst()) {
        mifFreePgfSubStatement(context, statement);
    }
    mifRelease(context, entry);
}

void mifFreeFormats(MifContext *context, MifFormatCatalog &catalog)
{
    while (MifFormatEntry *entry = catalog.entries.takeFirst()) {
        mifFreeParagraph(context, entry);
    }
    catalog.tags.clear();
    catalog.defining = nullptr;
    catalog.nameless = nullptr;
}
