#include "tables/extended_tables.h"

#include <algorithm>
#include <utility>

#include "mifreader/extended.h"
#include "reader/extended_tokens.h"
#include "reader/host_memory.h"
#include "reader/losses.h"
#include "reader/statement.h"
#include "reader/token_bytes.h"
#include "reader/units.h"
#include "tables/columns.h"
#include "tables/table_formats.h"
#include "tables/tables.h"
#include "text/flow.h"
#include "text/mif_text.h"
#include "text/scopes.h"

namespace
{

bool isShown(const MifContext *context)
{
    return context->tables.extended.inTable != 0 && mifIsWritten(context) && !mifIsHidden(context);
}

// Tells the table before its title or its first row.
void tellTable(MifContext *context)
{
    if (isShown(context)) {
        mifTellScopes(context);
    }
}

// Whether a cell before it, or above it, covers the cell of that column; each cell is asked for once.
bool takeCovered(MifExtendedTableState &tables, int32_t column)
{
    int32_t *above = column < tables.shownColumns ? &tables.coveredRows[column] : nullptr;
    const bool isCovered = tables.coveredColumns > 0 || (above != nullptr && *above > 0);
    tables.coveredColumns -= tables.coveredColumns > 0 ? 1 : 0;
    if (above != nullptr && *above > 0) {
        --*above;
    }
    return isCovered;
}

// The cells of this row that it covers are still to be asked for.
void cover(MifExtendedTableState &tables, int32_t column, int32_t columns, int32_t rows)
{
    tables.coveredColumns = columns - 1;
    for (int32_t index = column; index < column + columns && index < tables.shownColumns; ++index) {
        tables.coveredRows[index] = index == column ? rows - 1 : rows;
    }
}

// Tells the cell before its content, or at its end.
void tellCell(MifContext *context)
{
    MifExtendedTableState &tables = context->tables.extended;
    if (tables.inTable == 0 || tables.isCellTold != 0) {
        return;
    }
    tables.isCellTold = 1;
    const int32_t column = tables.nextColumn;
    tables.nextColumn = std::min(column, mostTableColumns) + 1;
    int32_t columns = 0;
    int32_t rows = 0;
    if (!takeCovered(tables, column)) {
        columns = std::clamp(tables.cell.columns, 1, std::max(tables.shownColumns - column, 1));
        rows = std::max(tables.cell.rows, 1);
        cover(tables, column, columns, rows);
    }
    if (tables.isCellShown != 0) {
        mifWriteCell(context, tables.cell, columns, rows);
    }
}

int setRuling(MifContext *context, uint32_t edge, uint32_t states)
{
    const char *value = mifUnquotedValue(context);
    const MifRuling *ruling = value != nullptr ? mifInternRuling(context, mifTextOfValue(context, value)) : nullptr;
    if (ruling == nullptr) {
        return 0;
    }
    MifExtendedCell &cell = context->tables.extended.cell;
    cell.rulings[edge] = ruling;
    cell.states |= states;
    return 1;
}

int setNumber(MifContext *context, int32_t MifExtendedCell::*field)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    context->tables.extended.cell.*field = mifParseInteger(value);
    return 1;
}

} // namespace

void mifBeginTable(MifContext *context)
{
    MifExtendedTableState &tables = context->tables.extended;
    if (context->replay.readingStretch == 0 || tables.inTable != 0 ||
        !mifOpenScope(context, SCOPE_TABLE, context->scanner.statementStack)) {
        return;
    }
    tables.inTable = 1;
    tables.rowKind = MIF_ROW_BODY;
    tables.ownColumns.count = 0;
    tables.ownColumns.columns = 0;
    tables.ownColumnCount = 0;
    mifClearTableFormat(context, tables.table);
}

int mifEndTable(MifContext *context)
{
    if (mifOwnScope(context, SCOPE_TABLE) != nullptr) {
        tellTable(context); // one without rows is one, too
        mifCloseScope(context);
        context->tables.extended.inTable = 0;
    }
    return mifTbl(context);
}

// An anchor that is hidden hides its table.
int mifAnchorTable(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr || context->replay.readingStretch != 0 || context->tables.inTbls != 0) {
        return 0;
    }
    if (!mifBeginText(context) && mifIsWritten(context)) {
        return 1;
    }
    const int result = mifATbl(context);
    if (result == 0 && mifIsWritten(context)) {
        mifNoteLossHere(context, MIF_LOSS_REFERENCE);
    }
    return result;
}

int mifNameTable(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    context->tables.extended.table.id = mifParseInteger(value);
    return mifTblID(context);
}

void mifBeginTitle(MifContext *context)
{
    tellTable(context);
    mifOpenScope(context, SCOPE_TITLE, context->scanner.statementStack);
}

int mifEndTitle(MifContext *context)
{
    if (mifOwnScope(context, SCOPE_TITLE) != nullptr) {
        mifCloseScope(context);
    }
    return 1;
}

void mifBeginHeading(MifContext *context)
{
    context->tables.extended.rowKind = MIF_ROW_HEADING;
}

void mifBeginBody(MifContext *context)
{
    context->tables.extended.rowKind = MIF_ROW_BODY;
}

void mifBeginFooting(MifContext *context)
{
    context->tables.extended.rowKind = MIF_ROW_FOOTING;
}

void mifBeginRow(MifContext *context)
{
    MifExtendedTableState &tables = context->tables.extended;
    tellTable(context);
    mifOpenScope(context, SCOPE_ROW, context->scanner.statementStack);
    tables.isRowTold = 0;
    tables.nextColumn = 0;
    tables.coveredColumns = 0;
}

int mifEndRow(MifContext *context)
{
    if (mifOwnScope(context, SCOPE_ROW) != nullptr) {
        mifCloseScope(context);
    }
    return 1;
}

void mifBeginCell(MifContext *context)
{
    MifExtendedTableState &tables = context->tables.extended;
    mifOpenScope(context, SCOPE_CELL, context->scanner.statementStack);
    tables.cell = {};
    tables.cell.columns = 1;
    tables.cell.rows = 1;
    tables.cell.fill = MIF_FILL_NONE;
    tables.isCellTold = 0;
    if (tables.isRowTold == 0 && isShown(context)) {
        tables.isRowTold = 1;
        mifWriteByteToken(context, TOKEN_ROW, tables.rowKind);
    }
    tables.isCellShown = tables.isRowTold != 0 && isShown(context) ? 1 : 0;
}

void mifBeginCellContent(MifContext *context)
{
    tellCell(context);
}

int mifEndCell(MifContext *context)
{
    if (mifOwnScope(context, SCOPE_CELL) != nullptr) {
        mifCloseScope(context);
    }
    tellCell(context);
    return mifIsHidden(context) ? 1 : mifCell(context); // whatever its own text's condition
}

int mifCellColumns(MifContext *context)
{
    return setNumber(context, &MifExtendedCell::columns);
}

int mifCellRows(MifContext *context)
{
    return setNumber(context, &MifExtendedCell::rows);
}

int mifCellAngle(MifContext *context)
{
    return setNumber(context, &MifExtendedCell::angle);
}

int mifCellFill(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    MifExtendedCell &cell = context->tables.extended.cell;
    cell.fill = static_cast<uint32_t>(std::clamp(mifParseInteger(value), 0, int32_t{MIF_FILL_NONE}));
    cell.states |= MIF_CELL_STATES_FILL;
    return 1;
}

int mifCellColor(MifContext *context)
{
    MifExtendedCell &cell = context->tables.extended.cell;
    cell.color = mifColorOfValue(context);
    cell.states |= MIF_CELL_STATES_COLOR;
    return cell.color != nullptr;
}

int mifCellLeftRuling(MifContext *context)
{
    return setRuling(context, EDGE_LEFT, MIF_CELL_STATES_LEFT);
}

int mifCellTopRuling(MifContext *context)
{
    return setRuling(context, EDGE_TOP, MIF_CELL_STATES_TOP);
}

int mifCellRightRuling(MifContext *context)
{
    return setRuling(context, EDGE_RIGHT, MIF_CELL_STATES_RIGHT);
}

int mifCellBottomRuling(MifContext *context)
{
    return setRuling(context, EDGE_BOTTOM, MIF_CELL_STATES_BOTTOM);
}

void mifFreeExtendedTables(MifContext *context)
{
    mifFreeTableFormats(context);
    mifRelease(context, std::exchange(context->tables.extended.coveredRows, nullptr));
}
