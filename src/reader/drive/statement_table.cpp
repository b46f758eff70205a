#include "reader/drive/statement_table.h"

#include <numeric>
#include <string_view>

#include "formats/fonts.h"
#include "formats/paragraphs.h"
#include "formats/properties.h"
#include "frames/frames.h"
#include "frames/imported_objects.h"
#include "reader/header.h"
#include "reader/host_memory.h"
#include "reader/units.h"
#include "tables/columns.h"
#include "tables/tables.h"
#include "text/pages.h"
#include "text/strings.h"
#include "text/variables.h"

namespace
{

template <auto group, auto flag>
uint32_t &insideFlag(MifContext &context)
{
    return context.*group.*flag;
}

uint32_t hashOf(std::string_view name)
{
    return std::accumulate(name.begin(), name.end(), 0U,
                           [](uint32_t hash, char byte) { return hash * 37 + static_cast<unsigned char>(byte); });
}

} // namespace

const MifStatementEntry mifUnsupportedStatement = {"", mifUnsupportedMIFStatement};

const MifStatementEntry MifStatementTable[statementCount] = {
    {"TblCatalog", mifUnsupportedMIFStatement},
    {"TblFormat", mifUnsupportedMIFStatement, insideFlag<&MifContext::tables, &MifTableState::inTblFormat>},
    {.name = "Tbl", .handler = mifTbl, .traits = TRAIT_TABLE},
    {"Tbls", mifTbls, insideFlag<&MifContext::tables, &MifTableState::inTbls>},
    {"TblID", mifTblID},
    {"Cell", mifCell},
    {"CellContent", mifUnsupportedMIFStatement},
    {"TblH", mifUnsupportedMIFStatement},
    {"TblBody", mifUnsupportedMIFStatement},
    {"Row", mifUnsupportedMIFStatement, insideFlag<&MifContext::tables, &MifTableState::inRow>},
    {"ATbl", mifATbl},
    {"TblNumColumns", mifTblNumColumns},
    {"TblColumnWidth", mifTblColumnWidth},
    {"TblColumnWidthA", mifTblColumnWidthA},
    {"EqualizeWidths", mifEqualizeWidths, insideFlag<&MifContext::tables, &MifTableState::inEqualizeWidths>},
    {"TblColumnNum", mifTblColumnNum},
    {"MIFFile", mifMIFFile},
    {.name = "Para", .handler = mifPara, .traits = TRAIT_PARAGRAPH},
    {"ParaLine", mifUnsupportedMIFStatement},
    {"String", mifString},
    {"MText", mifMText},
    {"MType", mifMType},
    {"Char", mifChar},
    {"VariableFormats", mifUnsupportedMIFStatement,
     insideFlag<&MifContext::variables, &MifVariableState::inVariableFormats>},
    {"VariableName", mifVariableName},
    {"VariableDef", mifVariableDef},
    {"PgfCatalog", mifUnsupportedMIFStatement, insideFlag<&MifContext::formats, &MifFormatState::inPgfCatalog>},
    {"Pgf", mifPgf, insideFlag<&MifContext::formats, &MifFormatState::inPgf>},
    {"PgfTag", mifPgfTag},
    {"PgfNumString", mifPgfNumString},
    {.name = "PgfFont", .handler = mifUnsupportedMIFStatement, .traits = TRAIT_CONTAINER},
    {.name = "TabStop", .handler = mifUnsupportedMIFStatement, .traits = TRAIT_CONTAINER},
    {.name = "PgfAlignment", .handler = mifSetDirectly, .direct = &mifAlignment, .stored = &mifAlignment},
    {.name = "PgfLeading", .handler = mifSetDirectly, .direct = &mifLeading, .stored = &mifLeading},
    {.name = "PgfFIndent",
     .handler = mifSetDirectly,
     .direct = &mifMeasurement<&MifParagraphStyle::firstIndent>,
     .stored = &mifMeasurement<&MifParagraphStyle::firstIndent>},
    {.name = "PgfLIndent",
     .handler = mifSetDirectly,
     .direct = &mifMeasurement<&MifParagraphStyle::leftIndent>,
     .stored = &mifMeasurement<&MifParagraphStyle::leftIndent>},
    {.name = "PgfRIndent",
     .handler = mifSetDirectly,
     .direct = &mifMeasurement<&MifParagraphStyle::rightIndent>,
     .stored = &mifMeasurement<&MifParagraphStyle::rightIndent>},
    {.name = "PgfSpBefore",
     .handler = mifSetDirectly,
     .direct = &mifMeasurement<&MifParagraphStyle::spaceBefore>,
     .stored = &mifMeasurement<&MifParagraphStyle::spaceBefore>},
    {.name = "PgfSpAfter",
     .handler = mifSetDirectly,
     .direct = &mifMeasurement<&MifParagraphStyle::spaceAfter>,
     .stored = &mifMeasurement<&MifParagraphStyle::spaceAfter>},
    {.name = "PgfNumTabs", .handler = mifSetDirectly, .direct = &mifTabCount, .stored = &mifTabCount},
    {.name = "TSX", .handler = mifSetDirectly, .direct = &mifTabPosition, .stored = &mifTabPosition},
    {.name = "TSType", .handler = mifSetDirectly, .direct = &mifTabKind, .stored = &mifTabKind},
    {"Page", mifPage, insideFlag<&MifContext::pages, &MifPageState::inPage>},
    {"PageNum", mifUnsupportedMIFStatement},
    {"PageSize", mifPageSize},
    {"PageType", mifPageType},
    {"TextRect", mifUnsupportedMIFStatement, insideFlag<&MifContext::pages, &MifPageState::inTextRect>},
    {"TextRectID", mifTextRectID},
    {"AFrames", mifUnsupportedMIFStatement, insideFlag<&MifContext::frames, &MifFrameState::inAFrames>},
    {"AFrame", mifAFrame},
    {"Frame", mifUnsupportedMIFStatement, insideFlag<&MifContext::frames, &MifFrameState::inFrame>},
    {"ID", mifID},
    {.name = "ImportObject",
     .handler = mifUnsupportedMIFStatement,
     .insideFlag = insideFlag<&MifContext::frames, &MifFrameState::inImportObject>,
     .traits = TRAIT_OBJECT},
    {"ShapeRect", mifShapeRect},
    {"FrameType", mifUnsupportedMIFStatement},
    {"NSOffset", mifNSOffset},
    {"AnchorAlign", mifAnchorAlign},
    {"ImportObFileDI", mifImportObFileDI},
    {"Units", mifUnits},
    {"Notes", mifUnsupportedMIFStatement, insideFlag<&MifContext::pages, &MifPageState::inNotes>},
    {"Unique", mifUnsupportedMIFStatement},
    {"FontCatalog", mifUnsupportedMIFStatement, insideFlag<&MifContext::formats, &MifFormatState::inFontCatalog>},
    {"Font", mifFont, insideFlag<&MifContext::formats, &MifFormatState::inFont>},
    {"FTag", mifFTag},
    {.name = "FWeight", .handler = mifSetDirectly, .direct = &mifWeight, .stored = &mifStoredWeight},
    {.name = "FSize", .handler = mifSetDirectly, .direct = &mifSize, .stored = &mifSize},
    {.name = "FFamily", .handler = mifSetDirectly, .direct = &mifFamily, .stored = &mifStoredFamily},
    {.name = "FAngle", .handler = mifSetDirectly, .direct = &mifAngle, .stored = &mifAngle},
    {.name = "FUnderlining", .handler = mifSetDirectly, .direct = &mifUnderlining, .stored = &mifUnderlining},
    {.name = "FUnderline", .handler = mifSetDirectly, .direct = &mifUnderlining, .stored = &mifUnderlining},
    {.name = "FStrike", .handler = mifSetDirectly, .direct = &mifStrike, .stored = &mifStrike},
    {.name = "FColor", .handler = mifSetDirectly, .direct = &mifColor, .stored = &mifColor},
    {.name = "FPosition",
     .handler = mifSetDirectly,
     .direct = &mifPosition,
     .stored = &mifStoredPosition,
     .traits = TRAIT_BODY_TEXT},
    {.name = "FSubScript",
     .handler = mifSetDirectly,
     .direct = &mifSubscript,
     .stored = &mifSubscript,
     .traits = TRAIT_BODY_TEXT},
    {.name = "FSupScript",
     .handler = mifSetDirectly,
     .direct = &mifSuperscript,
     .stored = &mifSuperscript,
     .traits = TRAIT_BODY_TEXT},
    {.name = "FCase", .handler = mifSetDirectly, .direct = &mifCase, .stored = &mifCase},
    {.name = "FPlain", .handler = mifSetDirectly, .direct = &mifPlain, .stored = &mifPlain},
    {.name = "FBold", .handler = mifSetDirectly, .direct = &mifBold, .stored = &mifBold},
    {.name = "FItalic", .handler = mifSetDirectly, .direct = &mifItalic, .stored = &mifStoredItalic},
};

uint32_t mifHashValue(const char *name)
{
    return hashOf(name) % statementBucketCount;
}

int mifCreateHashTable(MifContext *context)
{
    for (const MifStatementEntry &row : MifStatementTable) {
        auto *entry = mifAllocateZeroed<MifLookupEntry>(context);
        if (entry == nullptr) {
            return 0;
        }
        MifLookupEntry *&bucket = context->dispatch.statementBuckets[mifHashValue(row.name)];
        *entry = {&row, bucket};
        bucket = entry;
    }
    return 1;
}

void mifFreeHashTable(MifContext *context)
{
    for (MifLookupEntry *&bucket : context->dispatch.statementBuckets) {
        while (bucket != nullptr) {
            MifLookupEntry *entry = bucket;
            bucket = entry->next;
            mifRelease(context, entry);
        }
    }
}

const MifStatementEntry &mifLookUpStatement(const MifContext *context, std::string_view name)
{
    name = name.substr(0, name.find('\0'));
    const MifLookupEntry *entry = context->dispatch.statementBuckets[hashOf(name) % statementBucketCount];
    for (; entry != nullptr; entry = entry->next) {
        if (name == entry->row->name) {
            return *entry->row;
        }
    }
    return mifUnsupportedStatement;
}

MifStatementHandler mifGetTagFunction(const MifContext *context, const char *name)
{
    return mifLookUpStatement(context, name).handler;
}

int mifUnsupportedMIFStatement(MifContext * /*context*/)
{
    return 1;
}
