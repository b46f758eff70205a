#include "reader/drive/statement_table.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "formats/fonts.h"
#include "formats/paragraphs.h"
#include "formats/properties.h"
#include "frames/frames.h"
#include "frames/imported_objects.h"
#include "reader/drive/rows.h"
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

uint32_t hashOf(std::string_view name)
{
    return std::accumulate(name.begin(), name.end(), 0U,
                           [](uint32_t hash, char byte) { return hash * 37 + static_cast<unsigned char>(byte); });
}

constexpr MifStatementEntry rows[] = {
    row("TblCatalog", mifUnsupportedMIFStatement),
    inside("TblFormat", mifUnsupportedMIFStatement, insideFlag<&MifContext::tables, &MifTableState::inTblFormat>),
    row("Tbl", mifTbl, TRAIT_TABLE),
    inside("Tbls", mifTbls, insideFlag<&MifContext::tables, &MifTableState::inTbls>),
    row("TblID", mifTblID),
    row("Cell", mifCell),
    row("CellContent", mifUnsupportedMIFStatement),
    row("TblH", mifUnsupportedMIFStatement),
    row("TblBody", mifUnsupportedMIFStatement),
    inside("Row", mifUnsupportedMIFStatement, insideFlag<&MifContext::tables, &MifTableState::inRow>),
    row("ATbl", mifATbl),
    row("TblNumColumns", mifTblNumColumns),
    row("TblColumnWidth", mifTblColumnWidth),
    row("TblColumnWidthA", mifTblColumnWidthA),
    inside("EqualizeWidths", mifEqualizeWidths, insideFlag<&MifContext::tables, &MifTableState::inEqualizeWidths>),
    row("TblColumnNum", mifTblColumnNum),
    row("MIFFile", mifMIFFile),
    row("Para", mifPara, TRAIT_PARAGRAPH),
    row("ParaLine", mifUnsupportedMIFStatement),
    row("String", mifString),
    row("MText", mifMText),
    row("MType", mifMType),
    row("Char", mifChar),
    inside("VariableFormats", mifUnsupportedMIFStatement,
           insideFlag<&MifContext::variables, &MifVariableState::inVariableFormats>),
    row("VariableName", mifVariableName),
    row("VariableDef", mifVariableDef),
    inside("PgfCatalog", mifUnsupportedMIFStatement, insideFlag<&MifContext::formats, &MifFormatState::inPgfCatalog>),
    inside("Pgf", mifPgf, insideFlag<&MifContext::formats, &MifFormatState::inPgf>),
    row("PgfTag", mifPgfTag),
    row("PgfNumString", mifPgfNumString),
    row("PgfFont", mifUnsupportedMIFStatement, TRAIT_CONTAINER),
    row("TabStop", mifUnsupportedMIFStatement, TRAIT_CONTAINER),
    sets("PgfAlignment", mifAlignment),
    sets("PgfLeading", mifLeading),
    sets("PgfFIndent", mifMeasurement<&MifParagraphStyle::firstIndent>),
    sets("PgfLIndent", mifMeasurement<&MifParagraphStyle::leftIndent>),
    sets("PgfRIndent", mifMeasurement<&MifParagraphStyle::rightIndent>),
    sets("PgfSpBefore", mifMeasurement<&MifParagraphStyle::spaceBefore>),
    sets("PgfSpAfter", mifMeasurement<&MifParagraphStyle::spaceAfter>),
    sets("PgfNumTabs", mifTabCount),
    sets("TSX", mifTabPosition),
    sets("TSType", mifTabKind),
    inside("Page", mifPage, insideFlag<&MifContext::pages, &MifPageState::inPage>),
    row("PageNum", mifUnsupportedMIFStatement),
    row("PageSize", mifPageSize),
    row("PageType", mifPageType),
    inside("TextRect", mifUnsupportedMIFStatement, insideFlag<&MifContext::pages, &MifPageState::inTextRect>),
    row("TextRectID", mifTextRectID),
    inside("AFrames", mifUnsupportedMIFStatement, insideFlag<&MifContext::frames, &MifFrameState::inAFrames>),
    row("AFrame", mifAFrame),
    inside("Frame", mifUnsupportedMIFStatement, insideFlag<&MifContext::frames, &MifFrameState::inFrame>),
    row("ID", mifID),
    inside("ImportObject", mifUnsupportedMIFStatement, insideFlag<&MifContext::frames, &MifFrameState::inImportObject>,
           TRAIT_OBJECT),
    row("ShapeRect", mifShapeRect),
    row("FrameType", mifUnsupportedMIFStatement),
    row("NSOffset", mifNSOffset),
    row("AnchorAlign", mifAnchorAlign),
    row("ImportObFileDI", mifImportObFileDI),
    row("Units", mifUnits),
    inside("Notes", mifUnsupportedMIFStatement, insideFlag<&MifContext::pages, &MifPageState::inNotes>),
    row("Unique", mifUnsupportedMIFStatement),
    inside("FontCatalog", mifUnsupportedMIFStatement, insideFlag<&MifContext::formats, &MifFormatState::inFontCatalog>),
    inside("Font", mifFont, insideFlag<&MifContext::formats, &MifFormatState::inFont>),
    row("FTag", mifFTag),
    sets("FWeight", mifWeight, mifStoredWeight),
    sets("FSize", mifSize),
    sets("FFamily", mifFamily, mifStoredFamily),
    sets("FAngle", mifAngle),
    sets("FUnderlining", mifUnderlining),
    sets("FUnderline", mifUnderlining),
    sets("FStrike", mifStrike),
    sets("FColor", mifColor),
    sets("FPosition", mifPosition, mifStoredPosition, mifSetScript),
    sets("FSubScript", mifSubscript, mifSubscript, mifSetScript),
    sets("FSupScript", mifSuperscript, mifSuperscript, mifSetScript),
    sets("FCase", mifCase),
    sets("FPlain", mifPlain),
    sets("FBold", mifBold),
    sets("FItalic", mifItalic, mifStoredItalic),
};

// Takes rows up, the last one to be found first. Returns false when memory is exhausted.
bool takeUp(MifContext *context, std::span<const MifStatementEntry> table)
{
    for (const MifStatementEntry &row : table) {
        auto *entry = mifAllocateZeroed<MifLookupEntry>(context);
        if (entry == nullptr) {
            return false;
        }
        MifLookupEntry *&bucket = context->dispatch.statementBuckets[mifHashValue(row.name)];
        *entry = {&row, bucket};
        bucket = entry;
    }
    return true;
}

} // namespace

const MifStatementEntry mifUnsupportedStatement = row("", mifUnsupportedMIFStatement);
constinit const std::span<const MifStatementEntry> MifStatementTable = rows;

uint32_t mifHashValue(const char *name)
{
    return hashOf(name) % statementBucketCount;
}

int mifCreateHashTable(MifContext *context)
{
    return takeUp(context, MifStatementTable) &&
           (context->extension.version == 0 || takeUp(context, MifExtendedStatementTable));
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
