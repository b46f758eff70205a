#include <span>

#include "formats/extended_formats.h"
#include "formats/extended_properties.h"
#include "formats/names.h"
#include "frames/extended_frames.h"
#include "frames/extended_objects.h"
#include "frames/picture_paths.h"
#include "reader/drive/rows.h"
#include "reader/drive/statement_table.h"
#include "tables/extended_tables.h"
#include "tables/table_formats.h"
#include "text/conditions.h"
#include "text/document.h"
#include "text/extended_strings.h"
#include "text/flow.h"
#include "text/markers.h"
#include "text/notes.h"
#include "text/placement.h"
#include "text/scopes.h"

namespace
{

// A statement whose beginning counts.
constexpr MifStatementEntry begins(MifStatementEntry entry, MifStatementBeginning beginning)
{
    entry.traits |= TRAIT_BEGINNING;
    entry.beginning = beginning;
    return entry;
}

template <size_t size>
constexpr MifStatementEntry extended(const char (&name)[size], const MifProperty &property)
{
    return sets(name, property, property, mifSetExtended);
}

// A statement that sets a property only where it is stored.
template <size_t size>
constexpr MifStatementEntry stored(const char (&name)[size], MifStatementHandler handler, const MifProperty &property)
{
    MifStatementEntry entry = row(name, handler);
    entry.stored = &property;
    return entry;
}

constexpr MifStatementEntry rows[] = {
    // Formats of paragraphs and characters.
    row("PgfTag", mifTagParagraph),
    inside("Pgf", mifEndPgf, insideFlag<&MifContext::formats, &MifFormatState::inPgf>),
    extended("PgfAlignment", mifExtendedAlignment),
    extended("PgfLeading", mifExtendedLeading),
    extended("PgfFIndent", mifExtendedFirstIndent),
    extended("PgfLIndent", mifExtendedLeftIndent),
    extended("PgfRIndent", mifExtendedRightIndent),
    extended("PgfSpBefore", mifExtendedSpaceAbove),
    extended("PgfSpAfter", mifExtendedSpaceBelow),
    extended("PgfPlacement", mifExtendedPlacement),
    extended("PgfWithNext", mifExtendedWithNext),
    extended("PgfLanguage", mifExtendedLanguage),
    extended("PgfCellAlignment", mifExtendedCellAlignment),
    extended("PgfPDFStructureLevel", mifExtendedOutlineLevel),
    extended("PgfNumTabs", mifExtendedTabCount),
    row("TabStop", mifEndTabStop, TRAIT_CONTAINER),
    extended("TSX", mifExtendedTabPosition),
    extended("TSType", mifExtendedTabKind),
    extended("TSLeaderStr", mifExtendedTabLeader),
    inside("Font", mifEndFont, insideFlag<&MifContext::formats, &MifFormatState::inFont>),
    stored("FTag", mifTagFont, mifExtendedFontTag),
    extended("FFamily", mifExtendedFamily),
    extended("FSize", mifExtendedSize),
    extended("FWeight", mifExtendedWeight),
    extended("FAngle", mifExtendedAngle),
    extended("FUnderlining", mifExtendedUnderlining),
    extended("FUnderline", mifExtendedUnderlining),
    extended("FOverline", mifExtendedOverline),
    extended("FStrike", mifExtendedStrike),
    extended("FColor", mifExtendedColor),
    extended("FSeparation", mifExtendedSeparation),
    extended("FPosition", mifExtendedPosition),
    extended("FSubScript", mifExtendedSubscript),
    extended("FSupScript", mifExtendedSuperscript),
    extended("FCase", mifExtendedCase),
    extended("FPlain", mifExtendedPlain),
    extended("FBold", mifExtendedBold),
    extended("FItalic", mifExtendedItalic),
    row("Color", mifEndColor),
    row("ColorTag", mifColorTag),
    row("ColorCyan", mifColorCyan),
    row("ColorMagenta", mifColorMagenta),
    row("ColorYellow", mifColorYellow),
    row("ColorBlack", mifColorBlack),

    // Text.
    begins(row("TextFlow", mifEndTextFlow), mifBeginTextFlow),
    begins(row("Para", mifEndParagraph, TRAIT_PARAGRAPH), mifBeginParagraph),
    row("PgfNumString", mifKeepNumber),
    row("String", mifTakeString),
    row("Char", mifTakeChar),
    row("VariableName", mifTakeVariable),
    row("TextRectID", mifPlaceText),
    row("ID", mifTakeID),
    inside("TextRect", mifUnsupportedMIFStatement, insideFlag<&MifContext::pages, &MifPageState::inTextRect>,
           TRAIT_TEXT_RECT),
    begins(inside("Page", mifEndPage, insideFlag<&MifContext::pages, &MifPageState::inPage>), mifBeginDefinitions),
    begins(row("FNote", mifTakeNote, TRAIT_NOTE), mifBeginNote),
    inside("Marker", mifEndMarker, insideFlag<&MifContext::markers, &MifMarkerState::inMarker>),
    row("MType", mifMarkerType),
    row("MTypeName", mifMarkerTypeName),
    row("MText", mifMarkerText),
    inside("XRef", mifBeginReference, insideFlag<&MifContext::markers, &MifMarkerState::inXRef>),
    row("XRefName", mifReferenceFormat),
    row("XRefSrcText", mifReferenceText),
    row("XRefSrcFile", mifReferenceFile),
    row("XRefEnd", mifXRefEnd, TRAIT_BARE),
    row("CTag", mifConditionTag),
    row("CState", mifConditionState),
    begins(row("Conditional", mifEndConditional), mifBeginConditional),
    row("InCondition", mifInCondition),
    row("Unconditional", mifUnconditional, TRAIT_BARE),

    // The document.
    inside("Document", mifUnsupportedMIFStatement, insideFlag<&MifContext::document, &MifDocumentState::inDocument>),
    row("DLanguage", mifDocumentLanguage),
    row("DPageSize", mifDocumentPageSize),
    inside("PDFDocInfo", mifUnsupportedMIFStatement, insideFlag<&MifContext::document, &MifDocumentState::inInfo>),
    row("Key", mifDocumentKey),
    row("Value", mifDocumentValue),

    // Tables.
    begins(row("Tbl", mifEndTable, TRAIT_TABLE), mifBeginTable),
    row("TblID", mifNameTable),
    row("ATbl", mifAnchorTable),
    inside("TblCatalog", mifUnsupportedMIFStatement, insideFlag<&MifContext::tables, &MifTableState::inTblCatalog>),
    begins(inside("TblFormat", mifEndTableFormat, insideFlag<&MifContext::tables, &MifTableState::inTblFormat>),
           mifBeginTableFormat),
    row("TblTag", mifTableTag),
    row("TblNumColumns", mifColumnCount),
    row("TblColumnNum", mifColumnNumber),
    row("TblColumnWidth", mifColumnWidth),
    row("TblColumnWidthA", mifColumnWidthA),
    row("TblColumnWidthP", mifColumnWidthP),
    row("TblWidth", mifTableWidth),
    row("TblAlignment", mifTableAlignment),
    row("TblLIndent", mifTableIndent),
    row("TblTitlePlacement", mifTitlePlacement),
    row("TblLRuling", mifTableRuling<EDGE_LEFT>),
    row("TblTRuling", mifTableRuling<EDGE_TOP>),
    row("TblRRuling", mifTableRuling<EDGE_RIGHT>),
    row("TblBRuling", mifTableRuling<EDGE_BOTTOM>),
    row("TblColumnRuling", mifTableRuling<EDGE_COLUMNS>),
    row("TblBodyRowRuling", mifTableRuling<EDGE_BODY_ROWS>),
    row("TblHFRowRuling", mifTableRuling<EDGE_HEADING_ROWS>),
    row("TblSeparatorRuling", mifTableRuling<EDGE_SEPARATOR>),
    row("TblBodyFill", mifBodyFill),
    row("TblBodyColor", mifBodyColor),
    row("TblHFFill", mifHeadingFill),
    row("TblHFColor", mifHeadingColor),
    begins(row("TblTitleContent", mifEndTitle), mifBeginTitle),
    begins(row("TblH", mifUnsupportedMIFStatement), mifBeginHeading),
    begins(row("TblBody", mifUnsupportedMIFStatement), mifBeginBody),
    begins(row("TblF", mifUnsupportedMIFStatement), mifBeginFooting),
    begins(inside("Row", mifEndRow, insideFlag<&MifContext::tables, &MifTableState::inRow>), mifBeginRow),
    begins(row("Cell", mifEndCell), mifBeginCell),
    begins(row("CellContent", mifUnsupportedMIFStatement), mifBeginCellContent),
    row("CellColumns", mifCellColumns),
    row("CellRows", mifCellRows),
    row("CellFill", mifCellFill),
    row("CellColor", mifCellColor),
    row("CellLRuling", mifCellLeftRuling),
    row("CellTRuling", mifCellTopRuling),
    row("CellRRuling", mifCellRightRuling),
    row("CellBRuling", mifCellBottomRuling),
    row("CellAngle", mifCellAngle),
    row("RulingTag", mifRulingTag),
    row("RulingPenWidth", mifRulingWidth),
    row("RulingColor", mifRulingColor),
    row("RulingLines", mifRulingLines),

    // Frames.
    begins(inside("AFrames", mifEndDefinitions, insideFlag<&MifContext::frames, &MifFrameState::inAFrames>),
           mifBeginDefinitions),
    begins(inside("Frame", mifEndFrame, insideFlag<&MifContext::frames, &MifFrameState::inFrame>, TRAIT_FRAME),
           mifBeginFrame),
    inside("TextLine", mifUnsupportedMIFStatement, insideFlag<&MifContext::frames, &MifFrameState::inTextLine>),
    row("ShapeRect", mifPlaceFrame),
    row("BRect", mifPlaceFrameByBox),
    row("NSOffset", mifShiftFrame),
    row("AnchorAlign", mifAlignFrame),
    row("FrameType", mifTypeFrame),
    row("AFrame", mifAnchorFrame),
    begins(inside("ImportObject", mifEndObject, insideFlag<&MifContext::frames, &MifFrameState::inImportObject>,
                  TRAIT_OBJECT),
           mifBeginObject),
    row("ImportObFileDI", mifPicturePath),
    row("ImportObFile", mifPicturePathOfSystem),
};

} // namespace

constinit const std::span<const MifStatementEntry> MifExtendedStatementTable = rows;
