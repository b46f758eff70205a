#include "mifconvert/html_table.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <numeric>

#include <fmt/format.h>

#include "mifconvert/html_text.h"

namespace mifconvert
{

namespace
{

// The part of a fill's colour that is seen, in percent, by its pattern; of patterns about the half.
constexpr std::array<std::uint32_t, 16> fillParts = {100, 90, 70, 50, 30, 10, 3, 0, 50, 50, 50, 50, 50, 50, 50, 0};
constexpr std::uint32_t largestSpan = 1000; // that browsers take for columns; rows may be more

// The colour on white that a fill looks like, 0xRRGGBB.
std::uint32_t fillColor(const mifhost::Fill &fill)
{
    const std::uint32_t part = fillParts[std::min<std::size_t>(fill.pattern, fillParts.size() - 1)];
    std::uint32_t color = 0;
    for (unsigned channel = 0; channel < 3; ++channel) { // from red on, which is the lowest byte
        const std::uint32_t ink = 255 - (fill.color >> (8 * channel) & 0xFFU);
        color = color << 8U | (255 - ink * part / 100);
    }
    return color;
}

void appendBorder(std::string_view side, const mifhost::Ruling &ruling, std::string &out)
{
    if (ruling.lines == 0) {
        return;
    }
    const std::uint32_t color = fillColor({0, ruling.color});
    fmt::format_to(std::back_inserter(out), "border-{}:", side);
    appendPoints(clampMeasure(std::int64_t{ruling.width} * (ruling.lines > 1 ? 3 : 1), 5, 120), out);
    fmt::format_to(std::back_inserter(out), " {} #{:06x};", ruling.lines > 1 ? "double" : "solid", color);
}

constexpr std::size_t index(mifhost::TableEdge edge)
{
    return static_cast<std::size_t>(edge);
}

} // namespace

void HtmlTable::open(const mifhost::TableOpen &table, const Column &column)
{
    columnWidths_.resize(std::max<std::size_t>(table.columnWidths.size(), 1));
    std::transform(table.columnWidths.begin(), table.columnWidths.end(), columnWidths_.begin(),
                   [](std::int32_t width) { return clampMeasure(width, 0, largestMeasure); });
    column_ = column;
    cellsInRow_ = 0;
    isExtended_ = true;
    columnsAreWritten_ = false;
    isFirstRow_ = true;
    isCovered_ = false;
    rowKind_ = mifhost::RowKind::Body;
    group_ = {};
    titlePlace_ = table.titlePlace;
    rulings_ = table.rulings;
    bodyFill_ = table.bodyFill;
    headingFill_ = table.headingFill;
    const std::int64_t width = std::accumulate(columnWidths_.begin(), columnWidths_.end(), std::int64_t{0});
    const std::int64_t room = column.width - width;
    appendTableTag(table.alignment == MIF_ALIGN_CENTER  ? room / 2
                   : table.alignment == MIF_ALIGN_RIGHT ? room
                                                        : table.leftIndent);
}

void HtmlTable::beginTitle()
{
    if (!isExtended_ || columnsAreWritten_ || isInTitle_) {
        return;
    }
    out_ += titlePlace_ == mifhost::TitlePlace::Below ? "<caption class=\"below\">" : "<caption>";
    isInTitle_ = true;
}

void HtmlTable::endTitle()
{
    if (isInTitle_) {
        out_ += "</caption>";
        isInTitle_ = false;
        appendColumns();
    }
}

void HtmlTable::beginRow(mifhost::RowKind kind)
{
    if (!isExtended_) {
        return;
    }
    endTitle();
    appendColumns();
    closeRow();
    constexpr std::array<std::string_view, 3> groups = {"thead", "tbody", "tfoot"};
    const std::string_view group = groups[static_cast<std::size_t>(kind)];
    isSeparated_ = group != group_ && !group_.empty();
    if (group != group_) {
        if (!group_.empty()) {
            out_.append("</").append(group_).append(">");
        }
        out_.append("<").append(group).append(">");
        group_ = group;
    }
    rowKind_ = kind;
    out_ += "<tr>";
    rowIsOpen_ = true;
    cellsInRow_ = 0;
}

void HtmlTable::closeRow()
{
    if (cellIsOpen_ || pendingCell_) {
        endCell();
    }
    if (rowIsOpen_) {
        out_ += "</tr>\n";
        rowIsOpen_ = false;
        isFirstRow_ = false;
    }
}

void HtmlTable::beginCell(const mifhost::Cell &cell)
{
    if (!isExtended_) {
        return;
    }
    if (!rowIsOpen_) {
        beginRow(rowKind_);
    }
    if (cellIsOpen_ || pendingCell_) {
        endCell();
    }
    isCovered_ = cell.columns == 0;
    if (isCovered_) {
        ++cellsInRow_;
        return;
    }
    pendingCell_ = cell;
}

// The tag of a cell waits for its first paragraph, which says how the cell's text is aligned.
void HtmlTable::writeCellTag(mifhost::CellAlignment alignment)
{
    const mifhost::Cell cell = *pendingCell_;
    pendingCell_.reset();
    const std::uint32_t columns = std::min(cell.columns, largestSpan);
    cellTag_ = rowKind_ == mifhost::RowKind::Heading ? "th" : "td";
    out_.append("<").append(cellTag_);
    if (columns > 1) {
        fmt::format_to(std::back_inserter(out_), " colspan=\"{}\"", columns);
    }
    if (cell.rows > 1) {
        fmt::format_to(std::back_inserter(out_), " rowspan=\"{}\"", std::min(cell.rows, 60 * largestSpan));
    }
    appendCellStyle(cell, columns, alignment);
    out_ += '>';
    cellIsOpen_ = true;
}

const mifhost::Ruling &HtmlTable::rulingAbove() const
{
    return rulings_[isFirstRow_                          ? index(mifhost::TableEdge::Top)
                    : isSeparated_                       ? index(mifhost::TableEdge::Separator)
                    : rowKind_ == mifhost::RowKind::Body ? index(mifhost::TableEdge::BodyRows)
                                                         : index(mifhost::TableEdge::HeadingRows)];
}

// A cell has what it states itself, else what the table has there.
void HtmlTable::appendCellStyle(const mifhost::Cell &cell, std::size_t columns, mifhost::CellAlignment alignment)
{
    const auto states = [&cell](unsigned bit) { return (cell.states & bit) != 0; };
    const bool isLast = cellsInRow_ + columns >= columnWidths_.size();
    const mifhost::Ruling &columnRuling = rulings_[index(mifhost::TableEdge::Columns)];
    const mifhost::Ruling &left = cellsInRow_ == 0 ? rulings_[index(mifhost::TableEdge::Left)] : columnRuling;
    const mifhost::Ruling &right = isLast ? rulings_[index(mifhost::TableEdge::Right)] : columnRuling;
    std::string style;
    appendBorder("left", states(MIF_CELL_STATES_LEFT) ? cell.rulings[0] : left, style);
    appendBorder("top", states(MIF_CELL_STATES_TOP) ? cell.rulings[1] : rulingAbove(), style);
    appendBorder("right", states(MIF_CELL_STATES_RIGHT) ? cell.rulings[2] : right, style);
    appendBorder("bottom", states(MIF_CELL_STATES_BOTTOM) ? cell.rulings[3] : mifhost::Ruling{}, style);
    mifhost::Fill fill = rowKind_ == mifhost::RowKind::Body ? bodyFill_ : headingFill_;
    if (states(MIF_CELL_STATES_FILL)) {
        fill.pattern = cell.fill.pattern;
    }
    if (states(MIF_CELL_STATES_COLOR)) {
        fill.color = cell.fill.color;
    }
    if (fill.pattern != MIF_FILL_NONE) {
        fmt::format_to(std::back_inserter(style), "background:#{:06x};", fillColor(fill));
    }
    if (alignment != mifhost::CellAlignment::Top) {
        style += alignment == mifhost::CellAlignment::Middle ? "vertical-align:middle;" : "vertical-align:bottom;";
    }
    if (!style.empty()) {
        style.pop_back();
        out_.append(" style=\"").append(style).append("\"");
    }
}

void HtmlTable::begin(std::span<const std::int32_t> columnWidths, std::int64_t left, const Column &column)
{
    columnWidths_.resize(std::max<std::size_t>(columnWidths.size(), 1));
    std::transform(columnWidths.begin(), columnWidths.end(), columnWidths_.begin(),
                   [](std::int32_t width) { return clampMeasure(width, 0, largestMeasure); });
    column_ = column;
    cellsInRow_ = 0;
    isExtended_ = false;
    columnsAreWritten_ = false;
    appendTableTag(left);
    appendColumns();
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
    out_ += isExtended_ ? "\"><table class=\"ruled\"" : "\"><table";
    std::string style;
    if (isKnown) {
        style += "width:";
        appendPoints(width, style);
        style += ';';
    }
    if (isExtended_) {
        appendBorder("bottom", rulings_[index(mifhost::TableEdge::Bottom)], style);
    }
    if (!style.empty()) {
        style.pop_back();
        out_.append(" style=\"").append(style).append("\"");
    }
    out_ += '>';
}

void HtmlTable::appendColumns()
{
    if (columnsAreWritten_) {
        return;
    }
    columnsAreWritten_ = true;
    out_ += "<colgroup>";
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

void HtmlTable::openCell(mifhost::CellAlignment alignment)
{
    if (cellIsOpen_ || isInTitle_ || isCovered_) {
        return;
    }
    if (pendingCell_) {
        writeCellTag(alignment);
        return;
    }
    if (isExtended_) {
        openCellOfNone();
        return;
    }
    out_ += cellsInRow_ == 0 ? "<tr><td>" : "<td>";
    cellIsOpen_ = true;
}

// What stands in no cell gets one that takes up the rest of a row.
void HtmlTable::openCellOfNone()
{
    if (!rowIsOpen_ || cellsInRow_ >= columnWidths_.size()) {
        beginRow(rowKind_);
    }
    const std::size_t columns = columnWidths_.size() - std::min(cellsInRow_, columnWidths_.size() - 1);
    cellTag_ = "td";
    fmt::format_to(std::back_inserter(out_), "<td colspan=\"{}\">", std::min<std::size_t>(columns, largestSpan));
    cellIsOpen_ = true;
}

Column HtmlTable::cellColumn() const
{
    if (isInTitle_) {
        return column_;
    }
    const std::int32_t width = columnWidths_[std::min(cellsInRow_, columnWidths_.size() - 1)];
    return {width > 0 ? std::max(width - 2 * cellPadding, cellPadding) : column_.width, 0, 0};
}

void HtmlTable::endCell()
{
    isCovered_ = false;
    if (isExtended_) {
        if (pendingCell_) {
            writeCellTag(mifhost::CellAlignment::Top);
        }
        if (cellIsOpen_) {
            out_.append("</").append(cellTag_).append(">");
            cellIsOpen_ = false;
            ++cellsInRow_;
        }
        return;
    }
    openCell(mifhost::CellAlignment::Top);
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
    if (isExtended_) {
        endTitle();
        appendColumns();
        closeRow();
        if (!group_.empty()) {
            out_.append("</").append(group_).append(">");
        }
        isExtended_ = false;
    } else {
        if (cellIsOpen_) {
            endCell();
        }
        while (cellsInRow_ > 0) {
            endCell();
        }
    }
    out_ += "</table></div>\n";
    columnWidths_.clear();
}

} // namespace mifconvert
