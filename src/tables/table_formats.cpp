#include "tables/table_formats.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "formats/names.h"
#include "mifreader/extended.h"
#include "mifreader/tokens.h"
#include "reader/host_memory.h"
#include "reader/statement.h"
#include "reader/units.h"
#include "tables/columns.h"
#include "text/mif_text.h"
#include "text/scopes.h"

namespace
{

struct Keyword {
    std::string_view text;
    uint8_t value;
};

constexpr Keyword alignments[] = {
    {"Left", MIF_ALIGN_LEFT},
    {"Center", MIF_ALIGN_CENTER},
    {"Right", MIF_ALIGN_RIGHT},
};

constexpr Keyword titlePlaces[] = {
    {"InHeader", MIF_TITLE_ABOVE},
    {"InFooter", MIF_TITLE_BELOW},
    {"None", MIF_TITLE_NONE},
};

constexpr int32_t mostFills = MIF_FILL_NONE;

template <size_t count>
int setKeyword(MifContext *context, const Keyword (&keywords)[count], uint8_t MifTableFormat::*field)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    const Keyword *found = std::find_if(std::begin(keywords), std::end(keywords),
                                        [value](const Keyword &row) { return row.text == value; });
    if (found != std::end(keywords)) {
        context->tables.extended.table.*field = found->value;
    }
    return 1;
}

int setMeasure(MifContext *context, int32_t MifTableFormat::*field)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    context->tables.extended.table.*field = mifParseTwips(value);
    return 1;
}

int setFill(MifContext *context, uint32_t MifTableFormat::*field)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    context->tables.extended.table.*field = static_cast<uint32_t>(std::clamp(mifParseInteger(value), 0, mostFills));
    return 1;
}

int setColor(MifContext *context, const MifColor *MifTableFormat::*field)
{
    const MifColor *color = mifColorOfValue(context);
    if (color == nullptr) {
        return 0;
    }
    context->tables.extended.table.*field = color;
    return 1;
}

bool reserveColumns(MifContext *context, MifColumnList &list, int32_t count)
{
    if (count <= list.capacity) {
        return true;
    }
    const int32_t capacity = std::min(mostTableColumns, std::max(4, count + count / 2));
    auto *stated = static_cast<MifColumnFormat *>(
        mifAllocateZeroedBytes(context, static_cast<size_t>(capacity) * sizeof(MifColumnFormat)));
    if (stated == nullptr) {
        return false;
    }
    std::copy_n(list.stated, list.count, stated);
    mifRelease(context, list.stated);
    list.stated = stated;
    list.capacity = capacity;
    return true;
}

int addColumn(MifContext *context, MifColumnList &list, MifColumnFormat format)
{
    if (format.column < 0 || format.column >= mostTableColumns || list.count == mostTableColumns ||
        !reserveColumns(context, list, list.count + 1)) {
        return 0;
    }
    list.stated[list.count++] = format;
    list.columns = std::max(list.columns, format.column + 1);
    return 1;
}

// Of the format's column, or the table's next one.
int takeColumn(MifContext *context, int32_t width, bool isShare)
{
    MifExtendedTableState &tables = context->tables.extended;
    const uint32_t share = isShare ? 1 : 0;
    if (context->tables.inTblFormat != 0) {
        return addColumn(context, tables.table.columns, {tables.column, width, share});
    }
    return tables.inTable != 0 ? addColumn(context, tables.ownColumns, {tables.ownColumns.count, width, share}) : 1;
}

void freeColumns(MifContext *context, MifColumnList &list)
{
    mifRelease(context, list.stated);
    list = {};
}

MifTableFormat *findFormat(MifContext *context, const char *tag)
{
    return static_cast<MifTableFormat *>(context->tables.extended.formatTags.find(tag, strlen(tag)));
}

// The table looks as the catalog's format says; what it states itself comes after.
int takeOver(MifContext *context, const MifTableFormat &format)
{
    MifTableFormat &table = context->tables.extended.table;
    char *tag = table.tag;
    const int32_t id = table.id;
    freeColumns(context, table.columns);
    table = format;
    table.tag = tag;
    table.id = id;
    table.columns = {};
    int result = 1;
    for (int32_t index = 0; index < format.columns.count && result != 0; ++index) {
        result = addColumn(context, table.columns, format.columns.stated[index]);
    }
    return result;
}

} // namespace

int mifTableTag(MifContext *context)
{
    MifExtendedTableState &tables = context->tables.extended;
    if (mifKeepValue(context, tables.table.tag) == 0) {
        return 0;
    }
    const MifTableFormat *known = findFormat(context, tables.table.tag);
    return tables.inTable != 0 && known != nullptr ? takeOver(context, *known) : 1;
}

void mifBeginTableFormat(MifContext *context)
{
    MifExtendedTableState &tables = context->tables.extended;
    tables.column = 0;
    mifBeginDefinitions(context); // of what its columns begin with
    if (tables.inTable == 0) {
        mifClearTableFormat(context, tables.table);
    }
}

// A format of the catalog; the first one of a tag counts.
int mifEndTableFormat(MifContext *context)
{
    MifExtendedTableState &tables = context->tables.extended;
    MifTableFormat &table = tables.table;
    mifEndDefinitions(context);
    if (tables.inTable != 0 || context->tables.inTblCatalog == 0 || table.tag == nullptr ||
        findFormat(context, table.tag) != nullptr) {
        return 1;
    }
    auto *format = mifAllocateZeroed<MifTableFormat>(context);
    if (format == nullptr) {
        return 0;
    }
    *format = std::exchange(table, {});
    tables.formats.append(format);
    tables.formatTags.insert(format, format->tag, strlen(format->tag));
    return 1;
}

int mifColumnNumber(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    context->tables.extended.column = mifParseInteger(value);
    return mifTblColumnNum(context);
}

int mifColumnCount(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    context->tables.extended.ownColumnCount = std::clamp(mifParseInteger(value), 0, mostTableColumns);
    return mifTblNumColumns(context);
}

int mifColumnWidth(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    return takeColumn(context, mifParseTwips(value), false) & mifTblColumnWidth(context);
}

// The least width and the greatest, which it is.
int mifColumnWidthA(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    MifMeasurementList rest(value);
    return takeColumn(context, rest.next(), false) & mifTblColumnWidthA(context);
}

int mifColumnWidthP(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    return takeColumn(context, std::clamp(mifParseInteger(value), 0, mostTableColumns), true);
}

int mifTableWidth(MifContext *context)
{
    return setMeasure(context, &MifTableFormat::width);
}

int mifTableAlignment(MifContext *context)
{
    return setKeyword(context, alignments, &MifTableFormat::alignment);
}

int mifTableIndent(MifContext *context)
{
    return setMeasure(context, &MifTableFormat::leftIndent);
}

int mifTitlePlacement(MifContext *context)
{
    return setKeyword(context, titlePlaces, &MifTableFormat::titlePlace);
}

int mifBodyFill(MifContext *context)
{
    return setFill(context, &MifTableFormat::bodyFill);
}

int mifBodyColor(MifContext *context)
{
    return setColor(context, &MifTableFormat::bodyColor);
}

int mifHeadingFill(MifContext *context)
{
    return setFill(context, &MifTableFormat::headingFill);
}

int mifHeadingColor(MifContext *context)
{
    return setColor(context, &MifTableFormat::headingColor);
}

int mifSetRuling(MifContext *context, uint32_t edge)
{
    const char *value = mifUnquotedValue(context);
    MifRuling *ruling = value != nullptr ? mifInternRuling(context, mifTextOfValue(context, value)) : nullptr;
    if (ruling == nullptr) {
        return 0;
    }
    context->tables.extended.table.rulings[edge] = ruling;
    return 1;
}

MifRuling *mifInternRuling(MifContext *context, const char *name)
{
    MifExtendedTableState &tables = context->tables.extended;
    const size_t length = strlen(name);
    if (MifIndexNode *known = tables.rulingNames.find(name, length)) {
        return static_cast<MifRuling *>(known);
    }
    auto *ruling = mifAllocateZeroed<MifRuling>(context);
    char *copy = ruling != nullptr ? mifCopyText(context, name) : nullptr;
    if (copy == nullptr) {
        mifRelease(context, ruling);
        return nullptr;
    }
    ruling->name = copy;
    tables.rulings.append(ruling);
    tables.rulingNames.insert(ruling, copy, length);
    return ruling;
}

int mifRulingTag(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    MifExtendedTableState &tables = context->tables.extended;
    tables.declared = value != nullptr ? mifInternRuling(context, mifTextOfValue(context, value)) : nullptr;
    if (tables.declared == nullptr) {
        return 0;
    }
    tables.declared->lines = 1;
    return 1;
}

int mifRulingWidth(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    MifRuling *ruling = context->tables.extended.declared;
    if (value == nullptr || ruling == nullptr) {
        return 0;
    }
    ruling->width = mifParseTwips(value);
    return 1;
}

int mifRulingColor(MifContext *context)
{
    const MifColor *color = mifColorOfValue(context);
    MifRuling *ruling = context->tables.extended.declared;
    if (color == nullptr || ruling == nullptr) {
        return 0;
    }
    ruling->color = color;
    return 1;
}

int mifRulingLines(MifContext *context)
{
    constexpr int32_t mostLines = 255;
    const char *value = mifUnquotedValue(context);
    MifRuling *ruling = context->tables.extended.declared;
    if (value == nullptr || ruling == nullptr) {
        return 0;
    }
    ruling->lines = static_cast<uint32_t>(std::clamp(mifParseInteger(value), 0, mostLines));
    return 1;
}

const MifColor *mifColorOfValue(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    return value != nullptr ? mifInternColor(context, mifTextOfValue(context, value)) : nullptr;
}

void mifClearTableFormat(MifContext *context, MifTableFormat &format)
{
    mifRelease(context, format.tag);
    freeColumns(context, format.columns);
    format = {};
    format.bodyFill = MIF_FILL_NONE;
    format.headingFill = MIF_FILL_NONE;
}

void mifFreeTableFormats(MifContext *context)
{
    MifExtendedTableState &tables = context->tables.extended;
    while (MifTableFormat *format = tables.formats.takeFirst()) {
        mifClearTableFormat(context, *format);
        mifRelease(context, format);
    }
    tables.formatTags.clear();
    while (MifRuling *ruling = tables.rulings.takeFirst()) {
        mifRelease(context, ruling->name);
        mifRelease(context, ruling);
    }
    tables.rulingNames.clear();
    mifClearTableFormat(context, tables.table);
    freeColumns(context, tables.ownColumns);
}
