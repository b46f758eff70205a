#include "mifconvert/token_listing.h"

#include <iterator>
#include <string_view>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include "mifconvert/token_names.h"

namespace mifconvert
{

namespace
{

// Between quotes, with escapes for what is no printable ASCII.
void quote(std::string_view bytes, std::string &out)
{
    out += '"';
    for (const char byte : bytes) {
        if (byte == '"' || byte == '\\') {
            out += '\\';
            out += byte;
        } else if (byte >= ' ' && byte <= '~') {
            out += byte;
        } else {
            fmt::format_to(std::back_inserter(out), "\\x{:02x}", static_cast<unsigned char>(byte));
        }
    }
    out += '"';
}

// Writes a token's line.
class Line
{
public:
    explicit Line(std::string &out) : out_(out) {}

    void operator()(const mifhost::Text &text)
    {
        out_ += "text ";
        quote(text.bytes, out_);
        out_ += '\n';
    }
    void operator()(const mifhost::ParaFormat &format)
    {
        line("para-format left={} right={} first={} alignment={}", format.leftIndent, format.rightIndent,
             format.firstLineIndent, nameOf(alignmentNames, format.alignment));
    }
    void operator()(const mifhost::TabStops &tabStops)
    {
        out_ += tabStops.stops.empty() ? "tab-stops none" : "tab-stops";
        for (const mifhost::TabStop &stop : tabStops.stops) {
            fmt::format_to(std::back_inserter(out_), " {}={}", nameOf(tabKindNames, stop.kind), stop.position);
        }
        out_ += '\n';
    }
    void operator()(const mifhost::Attribute &attribute)
    {
        line("attribute {} {}", nameOf(modeNames, attribute.mode), attribute.on ? "on" : "off");
    }
    void operator()(const mifhost::TableRow &row)
    {
        line("table-row columns={} widths={} offset={}", row.columnWidths.size(), fmt::join(row.columnWidths, ","),
             row.offset);
    }
    void operator()(const mifhost::Font &font)
    {
        font.number != mifhost::Font::none ? line("font number={} size={}", font.number, font.size)
                                           : line("font number=none size={}", font.size);
    }
    void operator()(const mifhost::PageSetup &page)
    {
        line("page-setup width={} height={} left={} top={} right={} bottom={}", page.width, page.height,
             page.leftMargin, page.topMargin, page.rightMargin, page.bottomMargin);
    }
    void operator()(const mifhost::LineSpacing &spacing)
    {
        line("line-spacing {}", nameOf(spacingNames, spacing.spacing));
    }
    void operator()(const mifhost::TextColor &color)
    {
        line("text-color red={} green={} blue={}", color.red, color.green, color.blue);
    }
    void operator()(const mifhost::Frame &frame)
    {
        out_ += "frame id=";
        quote(frame.id, out_);
        line(" width={} height={} kind={}", frame.width, frame.height, frame.kind);
    }
    void operator()(const mifhost::Charset &charset)
    {
        line("charset {}", charset.number);
    }
    void operator()(const mifhost::Paragraph &paragraph)
    {
        line("paragraph tag={} above={} below={} leading={} keep={} placement={} outline={} cell={} language={}",
             quoted(paragraph.tag), paragraph.spaceAbove, paragraph.spaceBelow, paragraph.leading,
             paragraph.keepsWithNext ? "yes" : "no", nameOf(placementNames, paragraph.placement),
             paragraph.outlineLevel, nameOf(cellAlignmentNames, paragraph.cellAlignment), quoted(paragraph.language));
    }
    void operator()(const mifhost::Number &number)
    {
        line("number {}", quoted(number.text));
    }
    void operator()(const mifhost::ModeChange &change)
    {
        line("mode {} {}", nameOf(extendedModeNames, change.mode), change.on ? "on" : "off");
    }
    void operator()(const mifhost::FontSize &size)
    {
        line("font-size {}", size.twips);
    }
    void operator()(const mifhost::TabLeaders &leaders)
    {
        out_ += "tab-leaders";
        for (const std::string_view leader : leaders.leaders) {
            out_ += ' ';
            quote(leader, out_);
        }
        out_ += '\n';
    }
    void operator()(const mifhost::NoteBegin &note)
    {
        line("note-begin {}", note.id);
    }
    void operator()(const mifhost::NoteReference &note)
    {
        line("note-reference {}", note.id);
    }
    void operator()(const mifhost::Marker &marker)
    {
        line("marker type={} name={} text={}", marker.type, quoted(marker.typeName), quoted(marker.text));
    }
    void operator()(const mifhost::XRefBegin &reference)
    {
        line("xref-begin format={} text={} file={}", quoted(reference.format), quoted(reference.sourceText),
             quoted(reference.sourceFile));
    }
    void operator()(const mifhost::TableOpen &table)
    {
        fmt::format_to(std::back_inserter(out_), "table-open id={} tag={} alignment={} title={} indent={} widths={}",
                       table.id, quoted(table.tag), alignmentNames[table.alignment],
                       nameOf(titlePlaceNames, table.titlePlace), table.leftIndent, fmt::join(table.columnWidths, ","));
        for (std::size_t edge = 0; edge < table.rulings.size(); ++edge) {
            appendRuling(tableEdgeNames[edge], table.rulings[edge]);
        }
        line(" body-fill={} heading-fill={}", fillText(table.bodyFill), fillText(table.headingFill));
    }
    void operator()(const mifhost::Row &row)
    {
        line("row {}", nameOf(rowKindNames, row.kind));
    }
    void operator()(const mifhost::Cell &cell)
    {
        fmt::format_to(std::back_inserter(out_), "cell columns={} rows={} states={} fill={}", cell.columns, cell.rows,
                       cell.states, fillText(cell.fill));
        for (std::size_t edge = 0; edge < cell.rulings.size(); ++edge) {
            appendRuling(tableEdgeNames[edge], cell.rulings[edge]);
        }
        line(" angle={}", cell.angle);
    }
    void operator()(const mifhost::Anchor &anchor)
    {
        line("anchor id={} left={} top={} width={} height={} place={} alignment={} drawing={} path={}", anchor.id,
             anchor.left, anchor.top, anchor.width, anchor.height, nameOf(framePlaceNames, anchor.place),
             nameOf(anchorAlignmentNames, anchor.alignment), anchor.hasDrawing ? "yes" : "no", quoted(anchor.path));
    }
    void operator()(const mifhost::BoxBegin &box)
    {
        line("box-begin {}", box.frameId);
    }
    void operator()(const mifhost::DocumentField &field)
    {
        line("document {} {}", nameOf(documentFieldNames, field.kind), quoted(field.value));
    }
    void operator()(const mifhost::PageSize &size)
    {
        line("page-size width={} height={}", size.width, size.height);
    }
    void operator()(const mifhost::Loss &loss)
    {
        line("loss {} byte={}", nameOf(lossKindNames, loss.kind), loss.position);
    }
    void operator()(const mifhost::LossTotal &total)
    {
        line("loss-total {} count={} first={}", nameOf(lossKindNames, total.kind), total.count, total.first);
    }
    template <EmptyToken Kind>
    void operator()(const Kind &kind)
    {
        line("{}", tokenName(kind));
    }

private:
    static std::string quoted(std::string_view text)
    {
        std::string out;
        quote(text, out);
        return out;
    }
    static std::string fillText(const mifhost::Fill &fill)
    {
        return fill.pattern == MIF_FILL_NONE ? "none" : fmt::format("{}/{:06x}", fill.pattern, fill.color);
    }
    // Edges without lines are left out.
    void appendRuling(std::string_view edge, const mifhost::Ruling &ruling)
    {
        if (ruling.lines > 0) {
            fmt::format_to(std::back_inserter(out_), " {}={}x{}/{:06x}", edge, ruling.lines, ruling.width,
                           ruling.color);
        }
    }

    template <typename... Fields>
    void line(fmt::format_string<Fields...> format, Fields &&...fields)
    {
        fmt::format_to(std::back_inserter(out_), format, std::forward<Fields>(fields)...);
        out_ += '\n';
    }

    std::string &out_;
};

} // namespace

void TokenListing::append(const mifhost::Token &token, std::string &out)
{
    if (const auto *font = std::get_if<mifhost::Font>(&token)) {
        if (const mifhost::FontFace *face = fonts_.firstUse(font->number)) {
            fmt::format_to(std::back_inserter(out), "# font {} ", font->number);
            quote(face->name, out);
            fmt::format_to(std::back_inserter(out), " class={}\n", mifhost::fontClassName(face->familyClass));
        }
    }
    std::visit(Line(out), token);
}

} // namespace mifconvert
