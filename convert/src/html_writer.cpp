#include "mifconvert/html_writer.h"

#include <algorithm>
#include <cstddef>
#include <limits>
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

constexpr std::int32_t largestSpace = 1440; // above and below a paragraph, twips

constexpr std::uint32_t largestPoints = largestFontSize / twipsToThePoint;

// What may come before the page's head is written.
bool isOfHead(const mifhost::Token &token)
{
    return std::holds_alternative<mifhost::PageSetup>(token) || std::holds_alternative<mifhost::LineSpacing>(token) ||
           std::holds_alternative<mifhost::Charset>(token) || std::holds_alternative<mifhost::DocumentField>(token) ||
           std::holds_alternative<mifhost::PageSize>(token) || std::holds_alternative<mifhost::Loss>(token);
}

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

HtmlWriter::HtmlWriter(std::string title, const mifhost::FontRegistry &fonts, ShowFrame showFrame, std::string &out)
    : title_(std::move(title)), showFrame_(std::move(showFrame)), out_(out), fonts_(fonts), line_(body_),
      links_({.write = [this](const mifhost::Token &token) { process(token); },
              .beginLink =
                  [this](const std::string &target) {
                      link_ = target;
                      linkIsReference_ = false;
                  },
              .endLink = [this] { link_.clear(); }})
{
}

void HtmlWriter::write(const mifhost::Token &token)
{
    links_.write(token);
    if (pageIsBegun_ && !isHeld()) {
        hand(out_);
    }
}

void HtmlWriter::process(const mifhost::Token &token)
{
    if (!pageIsBegun_ && !isOfHead(token)) {
        beginPage();
    }
    if (lineBreakPending_) {
        lineBreakPending_ = false;
        if (!std::holds_alternative<mifhost::ParaEnd>(token)) {
            writeLineBreak();
        }
    }
    std::visit([this](const auto &kind) { put(kind); }, token);
}

bool HtmlWriter::isHeld() const
{
    return !outers_.empty() || coveredFrom_;
}

void HtmlWriter::hand(std::string &out)
{
    out += body_;
    body_.clear();
}

void HtmlWriter::finish()
{
    links_.finish();
    if (!pageIsBegun_) {
        beginPage();
    }
    while (!outers_.empty()) { // of a stream that is cut
        leave();
    }
    leaveCell();
    table_->end();
    finishNotes();
    hand(out_);
    appendPageEnd(out_);
}

// The page's measures and what the document says of itself are in its head, so only what comes first counts.
void HtmlWriter::beginPage()
{
    appendPageHead(title_, language_, author_, page_, out_);
    pageIsBegun_ = true;
}

void HtmlWriter::put(const mifhost::Text &text)
{
    if (text.bytes.empty()) {
        return;
    }
    writeText(text.bytes);
}

void HtmlWriter::writeText(std::string_view text)
{
    openParagraph();
    openRun();
    appendHtmlText(text, line_.text());
    lineIsEmpty_ = false;
    if (line_.isMeasured()) {
        line_.advance(estimateWidth(text, fonts_.find(characters_.font).shape, pageFontSize(characters_.size)));
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
    addLeader({LeaderKind::Tab, {}, 0, 0, 0});
}

void HtmlWriter::put(const mifhost::Attribute &attribute)
{
    const std::uint32_t bit = modeBit(attribute.mode);
    characters_.modes = attribute.on ? characters_.modes | bit : characters_.modes & ~bit;
}

void HtmlWriter::put(const mifhost::TableRow &row)
{
    if (table_->hasRows()) { // and more is known of it
        return;
    }
    leaveCell();
    table_->end();
    table_->begin(row.columnWidths, tableStart(row, paragraph_, page_) - page_.leftMargin, columnOf(page_));
    paragraphGoesOn_ = false;
}

void HtmlWriter::put(const mifhost::TableEnd & /*end*/)
{
    leaveCell();
    table_->end();
    paragraphGoesOn_ = true;
}

void HtmlWriter::put(const mifhost::CellEnd & /*end*/)
{
    leaveCell();
    paragraphGoesOn_ = false;
    if (table_->isOpen()) {
        table_->endCell();
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
    const bool isStated = font.size <= std::numeric_limits<std::int32_t>::max(); // and not negative
    characters_.size = isStated ? std::min(font.size, largestPoints) * twipsToThePoint : 0;
}

void HtmlWriter::put(const mifhost::PageSetup &page)
{
    if (!pageIsBegun_) {
        page_ = layoutOf(page);
    }
}

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
    addLeader({LeaderKind::Frame, std::string(frame.id), frame.width, frame.height, frame.kind});
}

void HtmlWriter::put(const mifhost::Charset &charset)
{
    isExtended_ = charset.number == MIF_CHARSET_UTF_8;
    if (isExtended_) {
        characters_.font = mifhost::Font::none; // until the document states one
    }
}

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
        switch (leader.kind) {
        case LeaderKind::Tab:
            closeRun();
            line_.tab();
            lineIsEmpty_ = false;
            break;
        case LeaderKind::Frame:
            writeFrame({leader.id, leader.width, leader.height, leader.frameKind});
            break;
        case LeaderKind::Place:
            closeRun();
            line_.text().append("<a id=\"").append(leader.id).append("\"></a>");
            break;
        case LeaderKind::Picture:
            writePicture(leader);
            break;
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
    } else {
        line_.end();
    }
    // Its data go straight to the output, since they can be large.
    if (!isHeld()) {
        hand(out_);
    }
    showFrame_(frame, isHeld() ? body_ : out_);
    if (!standsAlone(frame)) {
        return;
    }
    line_.begin(edges_, edges_.left);
}

void HtmlWriter::writeLineBreak()
{
    openParagraph();
    closeRun();
    line_.end();
    body_ += "<br>";
    line_.begin(edges_, edges_.left);
    lineIsEmpty_ = true;
}

// Makes sure that there is a paragraph for content, in the formats now in force.
void HtmlWriter::openParagraph()
{
    if (paragraphIsOpen_) {
        return;
    }
    if (table_->isOpen()) {
        table_->openCell(format_.cellAlignment);
    }
    const Column column = table_->isOpen() ? table_->cellColumn() : columnOf(page_);
    edges_ = edgesIn(column, paragraph_);
    if (paragraphGoesOn_) {
        edges_.first = edges_.left;
    }
    paragraphCharacters_ = characters_;
    paragraphCharacters_.modes = 0;
    runCharacters_ = paragraphCharacters_;
    runLink_.clear();
    appendParagraphTag({.edges = edges_,
                        .alignment = paragraph_.alignment,
                        .spacing = spacing_,
                        .characters = paragraphCharacters_,
                        .spaceAbove = clampMeasure(format_.spaceAbove, 0, largestSpace),
                        .spaceBelow = clampMeasure(format_.spaceBelow, 0, largestSpace),
                        .beginsPage = format_.placement >= mifhost::Placement::Page,
                        .keepsWithNext = format_.keepsWithNext,
                        .language = isLanguage(formatLanguage_) && formatLanguage_ != language_ ? formatLanguage_ : ""},
                       column, fonts_, body_);
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
    body_ += lineIsEmpty_ ? "<br></p>\n" : "</p>\n";
    paragraphIsOpen_ = false;
}

// What a covered cell holds is given up.
void HtmlWriter::leaveCell()
{
    closeParagraph();
    if (coveredFrom_) {
        body_.resize(*coveredFrom_);
        coveredFrom_.reset();
    }
}

// In the extended stream raised and lowered text has the size of the rest; a page shows it smaller.
CharacterFormat HtmlWriter::shownCharacters() const
{
    CharacterFormat shown = characters_;
    const std::uint32_t scripts = modeBit(mifhost::Mode::Superscript) | modeBit(mifhost::Mode::Subscript);
    if (isExtended_ && (shown.modes & scripts) != 0) {
        shown.size = pageFontSize(shown.size) * 3 / 4;
    }
    return shown;
}

// Makes sure that text gets the format now in force.
void HtmlWriter::openRun()
{
    const CharacterFormat shown = shownCharacters();
    if (runCharacters_ == shown && runLink_ == link_) {
        return;
    }
    closeRun();
    if (shown == paragraphCharacters_ && link_.empty()) {
        return;
    }
    appendRunTag(shown, paragraphCharacters_, fonts_, line_.text(), link_);
    runCharacters_ = shown;
    runLink_ = link_;
    runIsOpen_ = true;
}

void HtmlWriter::closeRun()
{
    if (runIsOpen_) {
        line_.text() += runLink_.empty() ? "</span>" : "</a>";
        runIsOpen_ = false;
    }
    runCharacters_ = paragraphCharacters_;
    runLink_.clear();
}

} // namespace mifconvert
