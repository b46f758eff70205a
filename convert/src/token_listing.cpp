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
        line("font number={} size={}", font.number, font.size);
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
    template <EmptyToken Kind>
    void operator()(const Kind &kind)
    {
        line("{}", tokenName(kind));
    }

private:
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
