#include "reader/drive/statement_table.h"

#include <numeric>
#include <string_view>

#include "formats/fonts.h"
#include "formats/paragraphs.h"
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

const MifStatementEntry mifUnsupportedStatement = {"", mifUnsupportedMIFStatement, nullptr};

const MifStatementEntry MifStatementTable[statementCount] = {
    {"TblCatalog", mifTblCatalog, nullptr},
    {"TblFormat", mifTblFormat, insideFlag<&MifContext::tables, &MifTableState::inTblFormat>},
    {"Tbl", mifTbl, nullptr},
    {"Tbls", mifTbls, insideFlag<&MifContext::tables, &MifTableState::inTbls>},
    {"TblID", mifTblID, nullptr},
    {"Cell", mifCell, nullptr},
    {"CellContent", mifCellContent, nullptr},
    {"TblH", mifTblH, nullptr},
    {"TblBody", mifTblBody, nullptr},
    {"Row", mifRow, insideFlag<&MifContext::tables, &MifTableState::inRow>},
    {"ATbl", mifATbl, nullptr},
    {"TblNumColumns", mifTblNumColumns, nullptr},
    {"TblColumnWidth", mifTblColumnWidth, nullptr},
    {"TblColumnWidthA", mifTblColumnWidthA, nullptr},
    {"EqualizeWidths", mifEqualizeWidths, insideFlag<&MifContext::tables, &MifTableState::inEqualizeWidths>},
    {"TblColumnNum", mifTblColumnNum, nullptr},
    {"MIFFile", mifMIFFile, nullptr},
    {"Para", mifPara, nullptr, 1},
    {"ParaLine", mifParaLine, nullptr},
    {"String", mifString, nullptr},
    {"MText", mifMText, nullptr},
    {"MType", mifMType, nullptr},
    {"Char", mifChar, nullptr},
    {"VariableFormats", mifVariableFormats, insideFlag<&MifContext::variables, &MifVariableState::inVariableFormats>},
    {"VariableName", mifVariableName, nullptr},
    {"VariableDef", mifVariableDef, nullptr},
    {"PgfCatalog", mifPgfCatalog, insideFlag<&MifContext::formats, &MifFormatState::inPgfCatalog>},
    {"Pgf", mifPgf, insideFlag<&MifContext::formats, &MifFormatState::inPgf>},
    {"PgfTag", mifPgfTag, nullptr},
    {"PgfNumString", mifPgfNumString, nullptr},
    {"PgfFont", mifPgfFont, nullptr},
    {"TabStop", mifTabStop, nullptr},
    {"PgfAlignment", mifPgfAlignment, nullptr},
    {"PgfLeading", mifPgfLeading, nullptr},
    {"PgfFIndent", mifPgfFIndent, nullptr},
    {"PgfLIndent", mifPgfLIndent, nullptr},
    {"PgfRIndent", mifPgfRIndent, nullptr},
    {"PgfSpBefore", mifPgfSpBefore, nullptr},
    {"PgfSpAfter", mifPgfSpAfter, nullptr},
    {"PgfNumTabs", mifPgfNumTabs, nullptr},
    {"TSX", mifTSX, nullptr},
    {"TSType", mifTSType, nullptr},
    {"Page", mifPage, insideFlag<&MifContext::pages, &MifPageState::inPage>},
    {"PageNum", mifPageNum, nullptr},
    {"PageSize", mifPageSize, nullptr},
    {"PageType", mifPageType, nullptr},
    {"TextRect", mifTextRect, insideFlag<&MifContext::pages, &MifPageState::inTextRect>},
    {"TextRectID", mifTextRectID, nullptr},
    {"AFrames", mifAFrames, insideFlag<&MifContext::frames, &MifFrameState::inAFrames>},
    {"AFrame", mifAFrame, nullptr},
    {"Frame", mifFrame, insideFlag<&MifContext::frames, &MifFrameState::inFrame>},
    {"ID", mifID, nullptr},
    {"ImportObject", mifImportObject, insideFlag<&MifContext::frames, &MifFrameState::inImportObject>},
    {"ShapeRect", mifShapeRect, nullptr},
    {"FrameType", mifFrameType, nullptr},
    {"NSOffset", mifNSOffset, nullptr},
    {"AnchorAlign", mifAnchorAlign, nullptr},
    {"ImportObFileDI", mifImportObFileDI, nullptr},
    {"Units", mifUnits, nullptr},
    {"Notes", mifNotes, insideFlag<&MifContext::pages, &MifPageState::inNotes>},
    {"Unique", mifUnique, nullptr},
    {"FontCatalog", mifFontCatalog, insideFlag<&MifContext::formats, &MifFormatState::inFontCatalog>},
    {"Font", mifFont, insideFlag<&MifContext::formats, &MifFormatState::inFont>},
    {"FTag", mifFTag, nullptr},
    {"FWeight", mifFWeight, nullptr},
    {"FSize", mifFSize, nullptr},
    {"FFamily", mifFFamily, nullptr},
    {"FAngle", mifFAngle, nullptr},
    {"FUnderlining", mifFUnderlining, nullptr},
    {"FUnderline", mifFUnderlining, nullptr},
    {"FStrike", mifFStrike, nullptr},
    {"FColor", mifFColor, nullptr},
    {"FPosition", mifFPosition, nullptr},
    {"FSubScript", mifFSubScript, nullptr},
    {"FSupScript", mifFSupScript, nullptr},
    {"FCase", mifFCase, nullptr},
    {"FPlain", mifFPlain, nullptr},
    {"FBold", mifFBold, nullptr},
    {"FItalic", mifFItalic, nullptr},
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
