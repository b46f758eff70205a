#include "mifconvert/html_table.h"

#include <algorithm>
#include <numeric>

#include "mifconvert/html_text.h"

namespace mifconvert
{

void HtmlTable::begin(std::span<const std::int32_t> columnWidths, std::int64_t left, const Column &column)
{
    columnWidths_.resize(std::max<std::size_t>(columnWidths.size(), 1));
    std::transform(columnWidths.begin(), columnWidths.end(), columnWidths_.begin(),
                   [](std::int32_t width) { return clampMeasure(width, 0, largestMeasure); });
    column_ = column;
    cellsInRow_ = 0;
    appendTableTag(left);
}

// A table may reach over the edges of the text up to those of the page. A wider one scrolls in its own box.
void HtmlTable::appendTableTag(std::int64_t left)
{
    const std::int64_t width = std::accumulate(columnWidths_.begin(), columnWidths_.end(), std::int64_t{0});
    const bool isKnown = std::find(columnWidths_.begin(), columnWidths_.end(), 0) == columnWidths_.end();
    const std::int32_t start = clampMeasure(left, -column_.leftRoom, std::max(column_.width - leastTextWidth, 0));
    const std::int64_t beyond = std::clamp<std::int64_t>(start + width - column_.width, 0, column_.rightRoom);
    out_ += "<div class=\"table\" style=\"--a:";
    appendPoints(start, out_);
    out_ += ";--z:";
    appendPoints(-beyond, out_);
    out_ += "\"><table";
    if (isKnown) {
        out_ += " style=\"width:";
        appendPoints(width, out_);
        out_ += '"';
    }
    out_ += "><colgroup>";
    for (const std::int32_t columnWidth : columnWidths_) {
        out_ += "<col";
        if (columnWidth > 0) {
            out_ += " style=\"width:";
            appendPoints(columnWidth, out_);
            out_ += '"';
        }
        out_ += '>';
    }
    out_ += "</colgroup>\n";
}

void HtmlTable::openCell()
{
    if (cellIsOpen_) {
        return;
    }
    out_ += cellsInRow_ == 0 ? "<tr><td>" : "<td>";
    cellIsOpen_ = true;
}

Column HtmlTable::cellColumn() const
{
    const std::int32_t width = columnWidths_[cellsInRow_];
    return {width > 0 ? std::max(width - 2 * cellPadding, cellPadding) : column_.width, 0, 0};
}

void HtmlTable::endCell()
{
    openCell();
    out_ += "</td>";
    cellIsOpen_ = false;
    ++cellsInRow_;
    if (cellsInRow_ == columnWidths_.size()) {
        out_ += "</tr>\n";
        cellsInRow_ = 0;
    }
}

void HtmlTable::end()
{
    if (!isOpen()) {
        return;
    }
    if (cellIsOpen_) {
        endCell();
    }
    while (cellsInRow_ > 0) {
        endCell();
    }
    out_ += "</table></div>\n";
    columnWidths_.clear();
}

} // namespace mifconvert
