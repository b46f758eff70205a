// Tables of a page.
#ifndef MIFCONVERT_HTML_TABLE_H
#define MIFCONVERT_HTML_TABLE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "mifconvert/html_page.h"
#include "mifhost/token.h"

namespace mifconvert
{

// Fills the grid of one table after the other with cells. A row is full after as many cells as there are columns.
class HtmlTable
{
public:
    // out  what the tables are appended to
    explicit HtmlTable(std::string &out) : out_(out) {}

    bool isOpen() const noexcept
    {
        return !columnWidths_.empty();
    }

    // Begins a table; none may be open.
    //
    // columnWidths  in twips; 0 and less is unknown
    // left          of the table's left edge from that of the column, in twips
    // column        what the table stands in
    void begin(std::span<const std::int32_t> columnWidths, std::int64_t left, const Column &column);

    // Begins a table of the extended stream, whose title, rows and cells are told; none may be open.
    void open(const mifhost::TableOpen &table, const Column &column);

    bool hasRows() const noexcept
    {
        return isExtended_;
    }

    // The title, before the first row.
    void beginTitle();
    void endTitle();

    void beginRow(mifhost::RowKind kind);

    // Begins a cell. One that another covers is none, and what it holds is not shown.
    void beginCell(const mifhost::Cell &cell);

    // Makes sure that a cell is open for content; a table must be. Nothing is to be done in a title.
    //
    // alignment  of the first paragraph in a cell
    void openCell(mifhost::CellAlignment alignment);

    // Where lines may stand in the cell that is open or comes next.
    Column cellColumn() const;

    // Ends a cell, which may be empty; a table must be open.
    void endCell();

    // Ends the table, with empty cells for those that its last row lacks; nothing when none is open.
    void end();

private:
    void appendTableTag(std::int64_t left);
    void appendColumns();
    void closeRow();
    void openCellOfNone();
    void writeCellTag(mifhost::CellAlignment alignment);
    void appendCellStyle(const mifhost::Cell &cell, std::size_t columns, mifhost::CellAlignment alignment);
    const mifhost::Ruling &rulingAbove() const;

    std::string &out_;
    std::vector<std::int32_t> columnWidths_; // clamped; empty when no table is open
    Column column_;
    std::size_t cellsInRow_ = 0; // that are finished
    bool cellIsOpen_ = false;

    // Of a table whose rows are told.
    bool isExtended_ = false;
    bool columnsAreWritten_ = false;
    bool isInTitle_ = false;
    bool rowIsOpen_ = false;
    bool isCovered_ = false; // the cell that was begun last
    bool isFirstRow_ = true;
    bool isSeparated_ = false;                 // the row is the first one of the heading, the body or the footing
    std::optional<mifhost::Cell> pendingCell_; // whose tag is not written yet
    std::string_view group_;                   // the element around the rows
    std::string_view cellTag_;                 // of the open cell
    mifhost::RowKind rowKind_ = mifhost::RowKind::Body;
    mifhost::TitlePlace titlePlace_ = mifhost::TitlePlace::Above;
    std::array<mifhost::Ruling, 8> rulings_{};
    mifhost::Fill bodyFill_{};
    mifhost::Fill headingFill_{};
};

} // namespace mifconvert

#endif
