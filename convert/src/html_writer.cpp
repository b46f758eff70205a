#include "mifconvert/html_writer.h"

#include <cstddef>
#include <numeric>
#include <utility>
#include <variant>

#include "mifconvert/html_text.h"

namespace mifconvert
{

namespace
{

// More than any paragraph begins with in earnest.
constexpr std::size_t mostLeaders = 16;

// Returns the distance of a table from the left edge of the page, in twips. The offset was computed from the indents
// of the paragraph that holds the table. These need not be announced; where they are not, it is centred on the page,
// as it is between like indents.
std::int64_t tableStart(const mifhost::TableRow &row, const mifhost::ParaFormat &paragraph, const PageLayout &page)
{
    const std::int64_t width = std::accumulate(row.columnWidths.begin(), row.columnWidths.end(), std::int64_t{0});
    const std::int64_t space = std::int64_t{page.width} - paragraph.leftIndent - paragraph.rightIndent - width;
    if (row.offset == space / 2) {
        return std::int64_t{paragraph.leftIndent} + row.offset;
    }
    return (page.width - width) / 2;
}

} // namespace

HtmlWriter::HtmlWriter(std::string title, const mifhost::FontRegistry &fonts, mifhost::TextConverter &charset,
                       ShowFrame showFrame, std::string &out)
    : title_(std::move(title)), charset_(charset), showFrame_(std::move(showFrame)), out_(out),
      fonts_(fonts, charset.isUtf8()), table_(out), line_(out)
{
}

void HtmlWriter::write(const mifhost::Token &token)
{
    if (!pageIsBegun_) {
        beginPage(&token);
    }
    if (lineBreakPending_) {
        lineBreakPending_ = false;
        if (!std::holds_alternative<mifhost::ParaEnd>(token)) {
            writeLineBreak();
        }
    }
    std::visit([this](const auto &kind) { put(kind); }, token);
}

void HtmlWriter::finish()
{
    if (!pageIsBegun_) {
        beginPage(nullptr);
    }
    closeParagraph();
    table_.end();
    appendPageEnd(out_);
}

// The page's measures are in its head, so only those that come first count.
void HtmlWriter::beginPage(const mifhost::Token *first)
{
    const auto *setup = first != nullptr ? std::get_if<mifhost::PageSetup>(first) : nullptr;
    if (setup != nullptr) {
        page_ = layoutOf(*setup);
    }
    appendPageHead(title_, page_, out_);
    pageIsBegun_ = true;
}

void HtmlWriter::put(const mifhost::Text &text)
{
    if (text.bytes.empty()) {
        return;
    }
    openParagraph();
    openRun();
    appendHtmlText(text.bytes, charset_, line_.text());
    lineIsEmpty_ = false;
    if (line_.isMeasured()) {
        line_.advance(estimateWidth(text.bytes, fonts_.find(characters_.font).shape, pageFontSize(characters_.size)));
    }
}

void HtmlWriter::put(const mifhost::ParaFormat &format)
{
    // One paragraph has one format. Another one in the middle belongs to the cell of a table that was not announced.
    if (paragraphIsOpen_) {
        lineIsEmpty_ = false;
        closeParagraph();
        paragraphGoesOn_ = false;
    }
    paragraph_ = format;
}

void HtmlWriter::put(const mifhost::TabStops &tabStops)
{
    line_.setStops(tabStops.stops);
}

void HtmlWriter::put(const mifhost::Tab & /*tab*/)
{
    addLeader({true, {}, 0, 0, 0});
}

void HtmlWriter::put(const mifhost::Attribute &attribute)
{
    const std::uint32_t bit = modeBit(attribute.mode);
    characters_.modes = attribute.on ? characters_.modes | bit : characters_.modes & ~bit;
}

void HtmlWriter::put(const mifhost::TableRow &row)
{
    closeParagraph();
    table_.end();
    table_.begin(row.columnWidths, tableStart(row, paragraph_, page_) - page_.leftMargin, columnOf(page_));
    paragraphGoesOn_ = false;
}

void HtmlWriter::put(const mifhost::TableEnd & /*end*/)
{
    closeParagraph();
    table_.end();
    paragraphGoesOn_ = true;
}

void HtmlWriter::put(const mifhost::CellEnd & /*end*/)
{
    closeParagraph();
    paragraphGoesOn_ = false;
    if (table_.isOpen()) {
        table_.endCell();
    }
}

void HtmlWriter::put(const mifhost::ParaEnd & /*end*/)
{
    if (!paragraphGoesOn_) {
        openParagraph();
    }
    closeParagraph();
    paragraphGoesOn_ = false;
}

void HtmlWriter::put(const mifhost::LineBreak & /*lineBreak*/)
{
    lineBreakPending_ = true;
}

void HtmlWriter::put(const mifhost::Font &font)
{
    characters_.font = font.number;
    characters_.size = font.size;
}

void HtmlWriter::put(const mifhost::PageSetup & /*page*/) {}

void HtmlWriter::put(const mifhost::LineSpacing &spacing)
{
    spacing_ = spacing.spacing;
}

void HtmlWriter::put(const mifhost::TextColor &color)
{
    characters_.color = std::uint32_t{color.red} << 16U | std::uint32_t{color.green} << 8U | color.blue;
}

void HtmlWriter::put(const mifhost::Frame &frame)
{
    addLeader({false, std::string(frame.id), frame.width, frame.height, frame.kind});
}

void HtmlWriter::put(const mifhost::Charset & /*charset*/) {}

// A tab or frame at a paragraph's beginning waits for the paragraph's formats.
void HtmlWriter::addLeader(Leader leader)
{
    leaders_.push_back(std::move(leader));
    if (paragraphIsOpen_) {
        writeLeaders();
    } else if (leaders_.size() == mostLeaders) {
        openParagraph();
    }
}

void HtmlWriter::writeLeaders()
{
    for (const Leader &leader : leaders_) {
        if (leader.isTab) {
            closeRun();
            line_.tab();
            lineIsEmpty_ = false;
        } else {
            writeFrame({leader.id, leader.width, leader.height, leader.kind});
        }
    }
    leaders_.clear();
}

void HtmlWriter::writeFrame(const mifhost::Frame &frame)
{
    closeRun();
    lineIsEmpty_ = false;
    if (!standsAlone(frame)) {
        line_.passBy(clampMeasure(frame.width, 0, largestMeasure));
        showFrame_(frame);
        return;
    }
    line_.end();
    showFrame_(frame);
    line_.begin(edges_, edges_.left);
}

void HtmlWriter::writeLineBreak()
{
    openParagraph();
    closeRun();
    line_.end();
    out_ += "<br>";
    line_.begin(edges_, edges_.left);
    lineIsEmpty_ = true;
}

// Makes sure that there is a paragraph for content, in the formats now in force.
void HtmlWriter::openParagraph()
{
    if (paragraphIsOpen_) {
        return;
    }
    if (table_.isOpen()) {
        table_.openCell();
    }
    const Column column = table_.isOpen() ? table_.cellColumn() : columnOf(page_);
    edges_ = edgesIn(column, paragraph_);
    if (paragraphGoesOn_) {
        edges_.first = edges_.left;
    }
    paragraphCharacters_ = characters_;
    paragraphCharacters_.modes = 0;
    runCharacters_ = paragraphCharacters_;
    appendParagraphTag({edges_, paragraph_.alignment, spacing_, paragraphCharacters_}, column, fonts_, out_);
    line_.begin(edges_, edges_.first);
    lineIsEmpty_ = false;
    paragraphIsOpen_ = true;
    writeLeaders();
}

void HtmlWriter::closeParagraph()
{
    if (lineBreakPending_) {
        lineBreakPending_ = false;
        writeLineBreak();
    }
    if (!leaders_.empty()) {
        openParagraph();
    }
    if (!paragraphIsOpen_) {
        return;
    }
    closeRun();
    line_.end();
    // A line break at the end of a paragraph shows nothing; an empty line of the document does.
    out_ += lineIsEmpty_ ? "<br></p>\n" : "</p>\n";
    paragraphIsOpen_ = false;
}

// Makes sure that text gets the format now in force.
void HtmlWriter::openRun()
{
    if (runCharacters_ == characters_) {
        return;
    }
    closeRun();
    if (characters_ == paragraphCharacters_) {
        return;
    }
    appendRunTag(characters_, paragraphCharacters_, fonts_, line_.text());
    runCharacters_ = characters_;
    runIsOpen_ = true;
}

void HtmlWriter::closeRun()
{
    if (runIsOpen_) {
        line_.text() += "</span>";
        runIsOpen_ = false;
    }
    runCharacters_ = paragraphCharacters_;
}

} // namespace mifconvert
