#include "tables/table_layout.h"

#include <algorithm>
#include <utility>

#include "reader/extended_tokens.h"
#include "reader/host_memory.h"
#include "reader/units.h"

namespace
{

// The widths of the table being read, as many as it has columns: its own, or its format's, or shares of the page.
// Returns how many, with the widths in shownWidths.
int32_t layOutColumns(MifContext *context)
{
    MifExtendedTableState &tables = context->tables.extended;
    const MifColumnList &own = tables.ownColumns;
    const MifColumnList &formats = tables.table.columns;
    const int32_t count = tables.ownColumnCount > 0 ? tables.ownColumnCount : std::max(own.count, formats.count);
    const size_t size = std::max<size_t>(static_cast<size_t>(count), 1) * sizeof(int32_t);
    auto *widths = static_cast<int32_t *>(mifAllocateZeroedBytes(context, size));
    mifRelease(context, std::exchange(tables.shownWidths, widths));
    if (widths == nullptr) {
        return 0;
    }
    const auto columnOf = [&](int32_t column) -> MifColumnFormat {
        const bool isOwn = column < own.count && own.columns[column].width > 0;
        return isOwn ? own.columns[column] : column < formats.count ? formats.columns[column] : MifColumnFormat{};
    };
    int64_t stated = 0;
    int64_t shares = 0;
    for (int32_t column = 0; column < count; ++column) {
        const MifColumnFormat format = columnOf(column);
        (format.isShare != 0 ? shares : stated) += std::max(format.width, 0);
    }
    const int64_t room = int64_t{context->pages.pageWidth} - context->formats.currentStyle.leftIndent -
                         context->formats.currentStyle.rightIndent;
    const int64_t shared = std::max<int64_t>((tables.table.width > 0 ? tables.table.width : room) - stated, 0);
    for (int32_t column = 0; column < count; ++column) {
        const MifColumnFormat format = columnOf(column);
        const int64_t width = format.width <= 0     ? std::max<int64_t>(room, 0) / count
                              : format.isShare != 0 ? shared * format.width / shares
                                                    : format.width;
        widths[column] = mifSaturate(width);
    }
    return count;
}

} // namespace

void mifTellTable(MifContext *context)
{
    MifExtendedTableState &tables = context->tables.extended;
    tables.shownColumns = layOutColumns(context);
    const size_t size = std::max<size_t>(static_cast<size_t>(tables.shownColumns), 1) * sizeof(int32_t);
    mifRelease(context, tables.coveredRows);
    tables.coveredRows = static_cast<int32_t *>(mifAllocateZeroedBytes(context, size));
    if (tables.coveredRows == nullptr) {
        tables.shownColumns = 0;
    }
    mifWriteTableOpen(context, tables.table, tables.shownColumns, tables.shownWidths);
}
