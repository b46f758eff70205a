#include "mifconvert/json_lines.h"

#include <iterator>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include "mifconvert/json_text.h"
#include "mifconvert/token_names.h"

namespace mifconvert
{

namespace
{

// Writes a token's line.
class Line
{
public:
    Line(mifhost::Windows1252 &charset, std::string &out) : charset_(charset), out_(out) {}

    void operator()(const mifhost::Text &text)
    {
        out_ += R"({"type":"text","text":)";
        appendJsonText(text.bytes, charset_, out_);
        out_ += "}\n";
    }
    void operator()(const mifhost::ParaFormat &format)
    {
        line(R"({{"type":"para-format","left":{},"right":{},"first":{},"alignment":"{}"}})", format.leftIndent,
             format.rightIndent, format.firstLineIndent, nameOf(alignmentNames, format.alignment));
    }
    void operator()(const mifhost::TabStops &tabStops)
    {
        out_ += R"({"type":"tab-stops","stops":[)";
        std::string_view separator;
        for (const mifhost::TabStop &stop : tabStops.stops) {
            fmt::format_to(std::back_inserter(out_), R"({}{{"kind":"{}","position":{}}})", separator,
                           nameOf(tabKindNames, stop.kind), stop.position);
            separator = ",";
        }
        out_ += "]}\n";
    }
    void operator()(const mifhost::Attribute &attribute)
    {
        line(R"({{"type":"attribute","mode":"{}","on":{}}})", nameOf(modeNames, attribute.mode), attribute.on);
    }
    void operator()(const mifhost::TableRow &row)
    {
        line(R"({{"type":"table-row","widths":[{}],"offset":{}}})", fmt::join(row.columnWidths, ","), row.offset);
    }
    void operator()(const mifhost::Font &font)
    {
        line(R"({{"type":"font","number":{},"size":{}}})", font.number, font.size);
    }
    void operator()(const mifhost::PageSetup &page)
    {
        line(R"({{"type":"page-setup","width":{},"height":{},"left":{},"top":{},"right":{},"bottom":{}}})", page.width,
             page.height, page.leftMargin, page.topMargin, page.rightMargin, page.bottomMargin);
    }
    void operator()(const mifhost::LineSpacing &spacing)
    {
        line(R"({{"type":"line-spacing","spacing":"{}"}})", nameOf(spacingNames, spacing.spacing));
    }
    void operator()(const mifhost::TextColor &color)
    {
        line(R"({{"type":"text-color","red":{},"green":{},"blue":{}}})", color.red, color.green, color.blue);
    }
    void operator()(const mifhost::Frame &frame)
    {
        out_ += R"({"type":"frame","id":)";
        appendJsonText(frame.id, charset_, out_);
        line(R"(,"width":{},"height":{},"kind":{}}})", frame.width, frame.height, frame.kind);
    }
    void operator()(const mifhost::Charset &charset)
    {
        line(R"({{"type":"charset","number":{}}})", charset.number);
    }
    template <EmptyToken Kind>
    void operator()(const Kind &kind)
    {
        line(R"({{"type":"{}"}})", tokenName(kind));
    }

private:
    template <typename... Fields>
    void line(fmt::format_string<Fields...> format, Fields &&...fields)
    {
        fmt::format_to(std::back_inserter(out_), format, std::forward<Fields>(fields)...);
        out_ += '\n';
    }

    mifhost::Windows1252 &charset_;
    std::string &out_;
};

} // namespace

void JsonLines::begin(const std::string &name, std::uint64_t size)
{
    out_ += dumpJson({{"type", "document"}, {"name", name}, {"size", size}}) + '\n';
}

void JsonLines::append(const mifhost::Token &token)
{
    if (const auto *font = std::get_if<mifhost::Font>(&token)) {
        if (const mifhost::FontFace *face = fonts_.firstUse(font->number)) {
            fmt::format_to(std::back_inserter(out_), R"({{"type":"font-face","number":{},"name":)", font->number);
            appendJsonText(face->name, charset_, out_);
            fmt::format_to(std::back_inserter(out_), R"(,"class":"{}"}})", mifhost::fontClassName(face->familyClass));
            out_ += '\n';
        }
    }
    std::visit(Line(charset_, out_), token);
}

void JsonLines::beginObject(std::string_view id, std::string_view mimeType)
{
    out_ += R"({"type":"object","id":)";
    appendJsonText(id, charset_, out_);
    out_ += R"(,"mimeType":)" + dumpJson(mimeType) + R"(,"data":")";
    objectIsOpen_ = true;
    objectSize_ = 0;
}

void JsonLines::appendData(std::span<const std::uint8_t> block)
{
    encoder_.append(block, out_);
    objectSize_ += block.size();
}

void JsonLines::endObject(bool isComplete)
{
    encoder_.finish(out_);
    fmt::format_to(std::back_inserter(out_), R"(","size":{},"complete":{}}})", objectSize_, isComplete);
    out_ += '\n';
    objectIsOpen_ = false;
}

void JsonLines::end(std::string_view status, const std::vector<std::string> &messages)
{
    if (objectIsOpen_) {
        endObject(false);
    }
    out_ += dumpJson({{"type", "end"}, {"status", status}, {"messages", messages}}) + '\n';
}

} // namespace mifconvert
