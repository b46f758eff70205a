// What the writer of pages makes of the extended stream.
#include <algorithm>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "mifconvert/html_object.h"
#include "mifconvert/html_text.h"
#include "mifconvert/html_writer.h"

namespace mifconvert
{

namespace
{

// A path that a browser can load from where the page is: relative, and no address.
bool isRelative(std::string_view path)
{
    return !path.empty() && path.front() != '/' && path.front() != '\\' && path.find(':') == std::string_view::npos;
}

// A path as the value of an attribute.
std::string pathReference(std::string_view path)
{
    std::string reference;
    for (const char byte : path) {
        const auto code = static_cast<unsigned char>(byte);
        const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
        const bool isPlain =
            isLetter || (byte >= '0' && byte <= '9') || byte == '/' || byte == '.' || byte == '-' || byte == '_';
        if (isPlain) {
            reference += byte;
        } else {
            fmt::format_to(std::back_inserter(reference), "%{:02X}", code);
        }
    }
    return reference;
}

} // namespace

void HtmlWriter::put(const mifhost::Paragraph &paragraph)
{
    format_ = paragraph;
    formatLanguage_ = paragraph.language;
    format_.tag = {};
    format_.language = {};
}

void HtmlWriter::put(const mifhost::Number &number)
{
    std::string_view rest = number.text;
    while (!rest.empty()) {
        const std::size_t run = std::min(rest.find('\t'), rest.size());
        if (run > 0) {
            writeText(rest.substr(0, run));
        }
        rest.remove_prefix(run);
        if (!rest.empty()) {
            rest.remove_prefix(1);
            put(mifhost::Tab{});
        }
    }
}

void HtmlWriter::put(const mifhost::ModeChange &change)
{
    const std::uint32_t bit = modeBit(change.mode);
    characters_.modes = change.on ? characters_.modes | bit : characters_.modes & ~bit;
}

void HtmlWriter::put(const mifhost::FontSize &size)
{
    characters_.size = size.twips;
}

void HtmlWriter::put(const mifhost::TabLeaders &leaders)
{
    line_.setLeaders(leaders.leaders);
}

// Goes over to what has tables of its own. What is held is not handed out before it is left.
void HtmlWriter::enter(bool isHeld, std::int32_t note)
{
    closeParagraph();
    outers_.push_back({isHeld ? std::exchange(body_, {}) : std::string(), std::move(table_), paragraphGoesOn_, isHeld,
                       note, std::exchange(coveredFrom_, {})});
    table_ = std::make_unique<HtmlTable>(body_);
    paragraphGoesOn_ = false;
}

HtmlWriter::Outer HtmlWriter::leave()
{
    leaveCell();
    table_->end();
    Outer outer = std::move(outers_.back());
    outers_.pop_back();
    table_ = std::move(outer.table);
    paragraphGoesOn_ = outer.paragraphGoesOn;
    coveredFrom_ = outer.coveredFrom;
    if (outer.isHeld) {
        std::swap(body_, outer.body); // which is the note now
        notes_[outer.note].content = std::move(outer.body);
    } else {
        body_ += "</div>\n";
    }
    return outer;
}

void HtmlWriter::put(const mifhost::NoteBegin &note)
{
    enter(true, note.id);
}

void HtmlWriter::put(const mifhost::NoteEnd & /*end*/)
{
    if (!outers_.empty() && outers_.back().isHeld) {
        leave();
    }
}

void HtmlWriter::put(const mifhost::BoxBegin & /*box*/)
{
    enter(false, 0);
    body_ += "<div class=\"box\">\n";
}

void HtmlWriter::put(const mifhost::BoxEnd & /*end*/)
{
    if (!outers_.empty() && !outers_.back().isHeld) {
        leave();
    }
}

// Notes are numbered in the order of their first references.
void HtmlWriter::put(const mifhost::NoteReference &reference)
{
    Note &note = notes_[reference.id];
    const bool isFirst = note.number == 0;
    if (isFirst) {
        note.number = ++references_;
    }
    openParagraph();
    closeRun();
    lineIsEmpty_ = false;
    fmt::format_to(std::back_inserter(line_.text()), "<a class=\"sup\" href=\"#note-{0}\"{1}>{0}</a>", note.number,
                   isFirst ? fmt::format(" id=\"reference-{}\"", note.number) : "");
}

// Those without a reference come last.
void HtmlWriter::finishNotes()
{
    std::vector<std::pair<std::size_t, const Note *>> ordered;
    for (const auto &[id, note] : notes_) {
        if (!note.content.empty()) {
            ordered.emplace_back(note.number != 0 ? note.number : ++references_, &note);
        }
    }
    if (ordered.empty()) {
        return;
    }
    std::sort(ordered.begin(), ordered.end());
    body_ += "<ol class=\"notes\">\n";
    for (const auto &[number, note] : ordered) {
        fmt::format_to(std::back_inserter(body_), "<li id=\"note-{0}\" value=\"{0}\">{1}", number, note->content);
        if (note->number != 0) {
            fmt::format_to(std::back_inserter(body_), "<a href=\"#reference-{}\">\xE2\x86\xA9</a>", number);
        }
        body_ += "</li>\n";
    }
    body_ += "</ol>\n";
}

void HtmlWriter::put(const mifhost::Marker &marker)
{
    if (isHypertext(marker)) {
        const Hypertext hypertext = hypertextOf(marker.text);
        if (hypertext.kind == Hypertext::Kind::Anchor) {
            nameNewPlace(hypertext.target);
        }
    } else if (namesPlace(marker)) {
        nameNewPlace(marker.text);
    }
}

void HtmlWriter::nameNewPlace(std::string_view name)
{
    const auto [place, isNew] = places_.insert(placeId(name));
    if (isNew) {
        addLeader({LeaderKind::Place, *place, 0, 0, 0});
    }
}

// A reference inside of a link leads where the link does.
void HtmlWriter::put(const mifhost::XRefBegin &reference)
{
    if (link_.empty() && !reference.sourceText.empty()) {
        link_ = "#" + placeId(reference.sourceText);
        linkIsReference_ = true;
    }
}

void HtmlWriter::put(const mifhost::XRefEnd & /*end*/)
{
    if (linkIsReference_) {
        link_.clear();
        linkIsReference_ = false;
    }
}

void HtmlWriter::put(const mifhost::TableOpen &table)
{
    leaveCell();
    table_->end();
    table_->open(table, columnOf(page_));
    paragraphGoesOn_ = false;
}

void HtmlWriter::put(const mifhost::TitleBegin & /*begin*/)
{
    leaveCell();
    table_->beginTitle();
}

void HtmlWriter::put(const mifhost::TitleEnd & /*end*/)
{
    leaveCell();
    table_->endTitle();
}

void HtmlWriter::put(const mifhost::Row &row)
{
    leaveCell();
    table_->beginRow(row.kind);
}

void HtmlWriter::put(const mifhost::Cell &cell)
{
    leaveCell();
    if (!table_->hasRows()) {
        return;
    }
    table_->beginCell(cell);
    if (cell.columns == 0) {
        coveredFrom_ = body_.size();
    }
}

void HtmlWriter::put(const mifhost::TableClose & /*end*/)
{
    leaveCell();
    if (table_->hasRows()) {
        table_->end();
    }
    paragraphGoesOn_ = true;
}

void HtmlWriter::put(const mifhost::Anchor &anchor)
{
    if (!anchor.path.empty()) {
        addLeader({LeaderKind::Picture, std::string(anchor.path), static_cast<std::uint32_t>(std::max(anchor.width, 0)),
                   static_cast<std::uint32_t>(std::max(anchor.height, 0)), 0});
    }
}

// A picture that cannot be loaded from the page is named.
void HtmlWriter::writePicture(const Leader &picture)
{
    const mifhost::Frame frame{"", picture.width, picture.height, 0};
    closeRun();
    lineIsEmpty_ = false;
    line_.passBy(clampMeasure(picture.width, 0, largestMeasure));
    std::string &out = line_.text();
    std::string source = pictureSource_ ? pictureSource_(picture.id) : "";
    if (source.empty() && isRelative(picture.id)) {
        source = pathReference(picture.id);
    }
    if (!source.empty()) {
        out += standsAlone(frame) ? "<img class=\"alone\"" : "<img";
        out.append(" src=\"").append(source).append("\" alt=\"");
        appendHtmlAttribute(picture.id, out);
        out += '"';
        appendFrameSize(frame, out);
        out += '>';
        return;
    }
    out += "<span class=\"object\"";
    appendFrameSize(frame, out);
    out += '>';
    appendHtmlName(picture.id, out);
    out += "</span>";
}

void HtmlWriter::put(const mifhost::DocumentField &field)
{
    switch (field.kind) {
    case mifhost::DocumentFieldKind::Title:
        if (!field.value.empty()) {
            title_ = field.value;
        }
        break;
    case mifhost::DocumentFieldKind::Author:
        author_ = field.value;
        break;
    case mifhost::DocumentFieldKind::Language:
        if (!pageIsBegun_) {
            language_ = field.value;
        }
        break;
    default:
        break;
    }
}

void HtmlWriter::put(const mifhost::PageSize &size)
{
    if (!pageIsBegun_ && size.width > 0 && size.height > 0) {
        const auto measure = [](std::int32_t twips) { return static_cast<std::uint32_t>(std::max(twips, 0)); };
        page_ = layoutOf({measure(size.width), measure(size.height), measure(page_.leftMargin),
                          measure(page_.topMargin), measure(page_.rightMargin), measure(page_.bottomMargin)});
    }
}

} // namespace mifconvert
