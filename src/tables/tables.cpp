#include "tables/tables.h"

#include <cstring>

#include "reader/host_memory.h"
#include "reader/replay.h"
#include "reader/source.h"
#include "reader/statement.h"
#include "reader/tokens.h"
#include "tables/columns.h"

namespace
{

bool isWriting(const MifContext *context)
{
    return context->replay.readingStretch != 0 && context->pages.inBodyText != 0;
}

} // namespace

int mifTbls(MifContext *context)
{
    mifCancelReturn(context);
    return 1;
}

// Outside of a replay the pending return has no effect.
int mifTbl(MifContext *context)
{
    mifRequestReturn(context);
    return isWriting(context) ? mifWriteTableEnd(context) : 1;
}

// In a replay the table is known already.
int mifTblID(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    if (context->replay.readingStretch != 0) {
        return 1;
    }
    auto *entry = mifAllocateZeroed<MifTableEntry>(context);
    char *id = entry != nullptr ? mifCopyText(context, value) : nullptr;
    if (id == nullptr) {
        mifRelease(context, entry);
        return 0;
    }
    entry->startOffset = context->tables.tableStartPosition;
    entry->id = id;
    context->tables.tblList.append(entry);
    context->tables.tblIDs.insert(entry, id, strlen(id));
    return 1;
}

// An anchor inside a table, in its definition or in its replay, is ignored: replays do not nest, so that the work of a
// document is bounded by its anchors times its largest table.
int mifATbl(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr || context->replay.readingStretch != 0 || context->tables.inTbls != 0) {
        return 0;
    }
    const auto *entry = static_cast<MifTableEntry *>(context->tables.tblIDs.find(value, strlen(value)));
    if (entry == nullptr) {
        return 0;
    }
    mifRequestReplay(context, entry->startOffset);
    return 1;
}

int mifCell(MifContext *context)
{
    return isWriting(context) ? mifWriteCellEnd(context) : 1;
}

void mifNoteTableStart(MifContext *context)
{
    context->tables.tableStartPosition = mifFilePosition(context);
}

void mifTblFreeTables(MifContext *context)
{
    while (MifTableEntry *entry = context->tables.tblList.takeFirst()) {
        mifRelease(context, entry->id);
        mifRelease(context, entry);
    }
    context->tables.tblIDs.clear();
    mifFreeColumns(context);
}
