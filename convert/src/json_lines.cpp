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
    explicit Line(std::string &out) : out_(out) {}

    void operator()(const mifhost::Text &text)
    {
        out_ += R"({"type":"text","text":)";
        appendJsonText(text.bytes, out_);
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
        font.number != mifhost::Font::none ? line(R"({{"type":"font","number":{},"size":{}}})", font.number, font.size)
                                           : line(R"({{"type":"font","number":null,"size":{}}})", font.size);
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
        appendJsonText(frame.id, out_);
        line(R"(,"width":{},"height":{},"kind":{}}})", frame.width, frame.height, frame.kind);
    }
    void operator()(const mifhost::Charset &charset)
    {
        line(R"({{"type":"charset","number":{}}})", charset.number);
    }
    void operator()(const mifhost::Paragraph &paragraph)
    {
        json({{"type", "paragraph"},
              {"tag", paragraph.tag},
              {"spaceAbove", paragraph.spaceAbove},
              {"spaceBelow", paragraph.spaceBelow},
              {"leading", paragraph.leading},
              {"keepsWithNext", paragraph.keepsWithNext},
              {"placement", nameOf(placementNames, paragraph.placement)},
              {"outlineLevel", paragraph.outlineLevel},
              {"cellAlignment", nameOf(cellAlignmentNames, paragraph.cellAlignment)},
              {"language", paragraph.language}});
    }
    void operator()(const mifhost::Number &number)
    {
        json({{"type", "number"}, {"text", number.text}});
    }
    void operator()(const mifhost::ModeChange &change)
    {
        json({{"type", "mode"}, {"mode", nameOf(extendedModeNames, change.mode)}, {"on", change.on}});
    }
    void operator()(const mifhost::FontSize &size)
    {
        json({{"type", "font-size"}, {"twips", size.twips}});
    }
    void operator()(const mifhost::TabLeaders &leaders)
    {
        json({{"type", "tab-leaders"}, {"leaders", leaders.leaders}});
    }
    void operator()(const mifhost::NoteBegin &note)
    {
        json({{"type", "note-begin"}, {"id", note.id}});
    }
    void operator()(const mifhost::NoteReference &note)
    {
        json({{"type", "note-reference"}, {"id", note.id}});
    }
    void operator()(const mifhost::Marker &marker)
    {
        json({{"type", "marker"}, {"number", marker.type}, {"name", marker.typeName}, {"text", marker.text}});
    }
    void operator()(const mifhost::XRefBegin &reference)
    {
        json({{"type", "xref-begin"},
              {"format", reference.format},
              {"sourceText", reference.sourceText},
              {"sourceFile", reference.sourceFile}});
    }
    void operator()(const mifhost::TableOpen &table)
    {
        json({{"type", "table-open"},
              {"id", table.id},
              {"tag", table.tag},
              {"alignment", alignmentNames[table.alignment]},
              {"title", nameOf(titlePlaceNames, table.titlePlace)},
              {"indent", table.leftIndent},
              {"widths", table.columnWidths},
              {"rulings", rulingsJson(table.rulings)},
              {"bodyFill", fillJson(table.bodyFill)},
              {"headingFill", fillJson(table.headingFill)}});
    }
    void operator()(const mifhost::Row &row)
    {
        json({{"type", "row"}, {"kind", nameOf(rowKindNames, row.kind)}});
    }
    void operator()(const mifhost::Cell &cell)
    {
        json({{"type", "cell"},
              {"columns", cell.columns},
              {"rows", cell.rows},
              {"states", cell.states},
              {"fill", fillJson(cell.fill)},
              {"rulings", rulingsJson(cell.rulings)},
              {"angle", cell.angle}});
    }
    void operator()(const mifhost::Anchor &anchor)
    {
        json({{"type", "anchor"},
              {"id", anchor.id},
              {"left", anchor.left},
              {"top", anchor.top},
              {"width", anchor.width},
              {"height", anchor.height},
              {"place", nameOf(framePlaceNames, anchor.place)},
              {"alignment", nameOf(anchorAlignmentNames, anchor.alignment)},
              {"drawing", anchor.hasDrawing},
              {"path", anchor.path}});
    }
    void operator()(const mifhost::BoxBegin &box)
    {
        json({{"type", "box-begin"}, {"frame", box.frameId}});
    }
    void operator()(const mifhost::DocumentField &field)
    {
        json({{"type", "document-field"}, {"field", nameOf(documentFieldNames, field.kind)}, {"value", field.value}});
    }
    void operator()(const mifhost::PageSize &size)
    {
        json({{"type", "page-size"}, {"width", size.width}, {"height", size.height}});
    }
    void operator()(const mifhost::Loss &loss)
    {
        json({{"type", "loss"}, {"kind", nameOf(lossKindNames, loss.kind)}, {"position", loss.position}});
    }
    void operator()(const mifhost::LossTotal &total)
    {
        json({{"type", "loss-total"},
              {"kind", nameOf(lossKindNames, total.kind)},
              {"count", total.count},
              {"first", total.first}});
    }
    template <EmptyToken Kind>
    void operator()(const Kind &kind)
    {
        line(R"({{"type":"{}"}})", tokenName(kind));
    }

private:
    static Json fillJson(const mifhost::Fill &fill)
    {
        return {{"pattern", fill.pattern}, {"color", fill.color}};
    }
    static Json rulingsJson(std::span<const mifhost::Ruling> rulings)
    {
        Json list = Json::object();
        for (std::size_t edge = 0; edge < rulings.size(); ++edge) {
            if (rulings[edge].lines > 0) {
                list[std::string(tableEdgeNames[edge])] = {
                    {"lines", rulings[edge].lines}, {"width", rulings[edge].width}, {"color", rulings[edge].color}};
            }
        }
        return list;
    }

    // Texts of the extended stream are UTF-8 already.
    void json(const Json &value)
    {
        out_ += value.dump() + '\n';
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

void JsonLines::begin(const std::string &name, std::uint64_t size)
{
    out_ += dumpJson({{"type", "document"}, {"name", name}, {"size", size}}) + '\n';
}

void JsonLines::append(const mifhost::Token &token)
{
    if (const auto *font = std::get_if<mifhost::Font>(&token)) {
        if (const mifhost::FontFace *face = fonts_.firstUse(font->number)) {
            fmt::format_to(std::back_inserter(out_), R"({{"type":"font-face","number":{},"name":)", font->number);
            appendJsonText(face->name, out_);
            fmt::format_to(std::back_inserter(out_), R"(,"class":"{}"}})", mifhost::fontClassName(face->familyClass));
            out_ += '\n';
        }
    }
    std::visit(Line(out_), token);
}

void JsonLines::beginObject(std::string_view id, std::string_view mimeType)
{
    out_ += R"({"type":"object","id":)";
    appendJsonText(id, out_);
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
