// Tables of a page.
#ifndef MIFCONVERT_HTML_TABLE_H
#define MIFCONVERT_HTML_TABLE_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "mifconvert/html_page.h"

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

    // Makes sure that a cell is open for content; a table must be.
    void openCell();

    // Where lines may stand in the cell that is open or comes next.
    Column cellColumn() const;

    // Ends a cell, which may be empty; a table must be open.
    void endCell();

    // Ends the table, with empty cells for those that its last row lacks; nothing when none is open.
    void end();

private:
    void appendTableTag(std::int64_t left);

    std::string &out_;
    std::vector<std::int32_t> columnWidths_; // clamped; empty when no table is open
    Column column_;
    std::size_t cellsInRow_ = 0; // that are finished
    bool cellIsOpen_ = false;
};

} // namespace mifconvert

#endif
