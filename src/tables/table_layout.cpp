#include "tables/table_layout.h"

#include <algorithm>

#include "reader/extended_tokens.h"
#include "reader/host_memory.h"
#include "reader/units.h"

namespace
{

// The format of each column: the table's own width, else its format's. Null when memory is exhausted.
MifColumnFormat *collectColumns(MifContext *context, int32_t count)
{
    const MifExtendedTableState &tables = context->tables.extended;
    auto *columns = static_cast<MifColumnFormat *>(
        mifAllocateZeroedBytes(context, static_cast<size_t>(count) * sizeof(MifColumnFormat)));
    if (columns == nullptr) {
        return nullptr;
    }
    for (const MifColumnList *list : {&tables.table.columns, &tables.ownColumns}) {
        for (int32_t index = 0; index < list->count; ++index) {
            const MifColumnFormat &format = list->stated[index];
            if (format.column < count && (format.width > 0 || list != &tables.ownColumns)) {
                columns[format.column] = format;
            }
        }
    }
    return columns;
}

// Columns without a width share the page.
void layOutColumns(const MifContext *context, const MifColumnFormat *columns, int32_t count, int32_t *widths)
{
    int64_t stated = 0;
    int64_t shares = 0;
    for (int32_t column = 0; column < count; ++column) {
        (columns[column].isShare != 0 ? shares : stated) += std::max(columns[column].width, 0);
    }
    const int64_t room = int64_t{context->pages.pageWidth} - context->formats.currentStyle.leftIndent -
                         context->formats.currentStyle.rightIndent;
    const int32_t tableWidth = context->tables.extended.table.width;
    const int64_t shared = std::max<int64_t>((tableWidth > 0 ? tableWidth : room) - stated, 0);
    for (int32_t column = 0; column < count; ++column) {
        const MifColumnFormat &format = columns[column];
        const int64_t width = format.width <= 0     ? std::max<int64_t>(room, 0) / count
                              : format.isShare != 0 ? shared * format.width / shares
                                                    : format.width;
        widths[column] = mifSaturate(width);
    }
}

} // namespace

void mifTellTable(MifContext *context)
{
    MifExtendedTableState &tables = context->tables.extended;
    const int32_t stated = std::max(tables.ownColumns.columns, tables.table.columns.columns);
    const int32_t count = tables.ownColumnCount > 0 ? tables.ownColumnCount : stated;
    const size_t size = std::max<size_t>(static_cast<size_t>(count), 1) * sizeof(int32_t);
    MifColumnFormat *columns = collectColumns(context, std::max(count, 1));
    auto *widths = static_cast<int32_t *>(mifAllocateZeroedBytes(context, size));
    mifRelease(context, tables.coveredRows);
    tables.coveredRows = static_cast<int32_t *>(mifAllocateZeroedBytes(context, size));
    const bool isLaidOut = columns != nullptr && widths != nullptr && tables.coveredRows != nullptr;
    tables.shownColumns = isLaidOut ? count : 0;
    if (isLaidOut) {
        layOutColumns(context, columns, count, widths);
    }
    mifWriteTableOpen(context, tables.table, tables.shownColumns, widths);
    mifRelease(context, columns);
    mifRelease(context, widths);
}
