#include "tables/columns.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "reader/host_memory.h"
#include "reader/statement.h"
#include "reader/tokens.h"
#include "reader/units.h"

namespace
{

constexpr int32_t mostColumns = 4096;

bool isAutoSizeColumn(int32_t column)
{
    return column >= 0 && column < autoSizeColumns;
}

// Minimum and maximum widths count only while the tables are read for the first time.
bool isFirstReading(const MifContext *context)
{
    return context->replay.readingStretch == 0 && context->tables.inTblFormat == 0;
}

// Columns are often counted one by one, past the widths that were allocated.
int32_t layoutColumns(const MifTableState &tables)
{
    return std::clamp(tables.columnCount, 0, tables.allocatedColumns);
}

// What the first reading of the tables left over must not keep a replayed table from its widths.
void clearAutoSize(MifTableState &tables)
{
    tables.autoSizeSeen = 0;
    tables.equalWidth = 0;
    memset(tables.minWidths, 0, sizeof(tables.minWidths));
    memset(tables.maxWidths, 0, sizeof(tables.maxWidths));
    memset(tables.equalizeColumns, 0, sizeof(tables.equalizeColumns));
}

// Into the first column without a width; with the last one the row layout is complete.
void fillWidth(MifTableState &tables, int32_t width)
{
    const int32_t columns = layoutColumns(tables);
    int32_t *end = tables.columnWidths + columns;
    int32_t *place = std::find(tables.columnWidths + std::min(tables.widthsSet, columns), end, 0);
    tables.widthsSet = static_cast<int32_t>(place - tables.columnWidths);
    if (place == end) {
        return;
    }
    *place = width;
    if (place - tables.columnWidths == tables.columnCount - 1) {
        tables.rowLayoutPending = 1;
    }
}

void setAutoSize(MifTableState &tables, int32_t minimum, int32_t maximum)
{
    const int32_t column = tables.columnCount - 1;
    if (isAutoSizeColumn(column)) {
        tables.minWidths[column] = minimum;
        tables.maxWidths[column] = maximum;
    }
}

} // namespace

int mifTblNumColumns(MifContext *context)
{
    MifTableState &tables = context->tables;
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    const int32_t count = mifParseInteger(value);
    if (count > mostColumns) {
        return 0;
    }
    if (count <= 0) {
        tables.columnCount = 0;
        mifFreeColumns(context);
        return 1;
    }
    tables.columnCount = count;
    const size_t size = static_cast<size_t>(count) * sizeof(int32_t);
    auto *widths = static_cast<int32_t *>(mifAllocateZeroedBytes(context, size));
    if (widths == nullptr) {
        return 0;
    }
    mifFreeColumns(context);
    tables.columnWidths = widths;
    tables.allocatedColumns = count;
    return 1;
}

int mifTblColumnWidth(MifContext *context)
{
    MifTableState &tables = context->tables;
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    if (tables.inTblFormat != 0) {
        return 1;
    }
    const int32_t width = mifParseTwips(value);
    if (context->replay.readingStretch == 0) {
        setAutoSize(tables, width, width);
        return 1;
    }
    if (tables.autoSizeSeen != 0) {
        clearAutoSize(tables);
    }
    fillWidth(tables, width);
    return 1;
}

int mifTblColumnWidthA(MifContext *context)
{
    MifTableState &tables = context->tables;
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    if (!isFirstReading(context)) {
        return 1;
    }
    // This list begins with its first measurement, without a blank before it.
    const int32_t minimum = mifParseFirstTwips(value);
    MifMeasurementList rest(value);
    setAutoSize(tables, minimum, rest.next());
    tables.autoSizeSeen = 1;
    return 1;
}

int mifTblColumnNum(MifContext *context)
{
    MifTableState &tables = context->tables;
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    if (!isFirstReading(context)) {
        return 1;
    }
    if (tables.inEqualizeWidths == 0) {
        tables.columnCount = std::min(tables.columnCount, std::numeric_limits<int32_t>::max() - 1) + 1;
        return 1;
    }
    const int32_t column = mifParseInteger(value);
    if (isAutoSizeColumn(column)) {
        tables.equalWidth = std::max(tables.equalWidth, tables.maxWidths[column]);
        tables.equalizeColumns[column] = 1;
    }
    return 1;
}

int mifEqualizeWidths(MifContext *context)
{
    MifTableState &tables = context->tables;
    if (context->replay.readingStretch != 0) {
        tables.inEqualizeWidths = 1; // stays up
        return 1;
    }
    const int32_t columns = std::min(layoutColumns(tables), autoSizeColumns);
    for (int32_t column = 0; column < columns; ++column) {
        tables.columnWidths[column] =
            tables.equalizeColumns[column] != 0 ? tables.equalWidth : tables.maxWidths[column];
    }
    tables.widthsSet = 0;
    tables.rowLayoutPending = 1;
    return 1;
}

void mifDefineRow(MifContext *context)
{
    MifTableState &tables = context->tables;
    const MifParagraphStyle &style = context->formats.currentStyle;
    const int32_t columns = layoutColumns(tables);
    int64_t total = 0;
    for (int32_t column = 0; column < columns; ++column) {
        total += tables.columnWidths[column];
    }
    const int64_t room = int64_t{context->pages.pageWidth} - style.leftIndent - style.rightIndent;
    tables.rowOffset = mifSaturate((room - mifSaturate(total)) / 2);
    mifWriteTableRow(context, columns);
}

void mifWriteRowLayout(MifContext *context)
{
    if (context->pages.inBodyText != 0) {
        mifDefineRow(context);
    }
    context->tables.rowLayoutPending = 0;
}

void mifFreeColumns(MifContext *context)
{
    MifTableState &tables = context->tables;
    mifRelease(context, tables.columnWidths);
    tables.columnWidths = nullptr;
    tables.allocatedColumns = 0;
    tables.widthsSet = 0;
}
