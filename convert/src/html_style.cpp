#include "mifconvert/html_style.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include <fmt/format.h>

#include "mifconvert/html_text.h"

namespace mifconvert
{

namespace
{

// Letters above this size, in twips, can be wider than a window.
constexpr std::uint32_t largestCommonSize = 72 * twipsToThePoint;

// The classes of the style sheet, in the order of the enumerations' values.
constexpr std::array<std::string_view, 4> alignmentClasses = {"", "right", "center", "justify"};
constexpr std::array<std::string_view, 3> spacingClasses = {"", "half", "double"};
constexpr std::array<std::string_view, 12> modeClasses = {"b",     "i",     "u", "s",  "sup", "sub",
                                                          "small", "upper", "o", "uu", "u",   "lower"};

// The attributes of a tag under construction.
class Attributes
{
public:
    explicit Attributes(std::string &out) : out_(out) {}

    // All classes come before all style properties.
    void addClass(std::string_view name)
    {
        if (name.empty()) {
            return;
        }
        begin(" class=\"", " ");
        out_ += name;
    }
    void addPoints(std::string_view property, std::int64_t twips)
    {
        begin(style, ";");
        out_.append(property).append(":");
        appendPoints(twips, out_, "");
    }
    void addLength(std::string_view property, std::int64_t twips)
    {
        begin(style, ";");
        out_.append(property).append(":");
        appendPoints(twips, out_);
    }
    template <typename... Fields>
    void addStyle(fmt::format_string<Fields...> format, Fields &&...fields)
    {
        begin(style, ";");
        fmt::format_to(std::back_inserter(out_), format, std::forward<Fields>(fields)...);
    }
    void end()
    {
        out_ += open_.empty() ? ">" : "\">";
    }

private:
    static constexpr std::string_view style = " style=\"";

    void begin(std::string_view attribute, std::string_view separator)
    {
        if (open_ == attribute) {
            out_ += separator;
            return;
        }
        if (!open_.empty()) {
            out_ += '"';
        }
        out_ += attribute;
        open_ = attribute;
    }

    std::string &out_;
    std::string_view open_;
};

double inPoints(std::uint32_t size)
{
    return static_cast<double>(size) / twipsToThePoint;
}

// Adds what the properties of characters have different from those around them.
void addFontStyle(const CharacterFormat &format, const CharacterFormat &around, std::string_view families,
                  Attributes &attributes)
{
    if (!families.empty()) {
        attributes.addStyle("font-family:{}", families);
    }
    if (pageFontSize(format.size) != pageFontSize(around.size)) {
        const std::uint32_t size = pageFontSize(format.size);
        if (size > largestCommonSize) {
            attributes.addStyle("font-size:min({}pt,40vw)", inPoints(size));
        } else {
            attributes.addStyle("font-size:{}pt", inPoints(size));
        }
    }
    if (format.color != around.color) {
        attributes.addStyle("color:#{:06x}", format.color);
    }
}

} // namespace

LineEdges edgesIn(const Column &column, const mifhost::ParaFormat &format)
{
    const std::int32_t room = std::min(leastTextWidth, column.width / 2);
    const std::int32_t lastStart = column.width - room;
    LineEdges edges;
    edges.left = clampMeasure(format.leftIndent, -column.leftRoom, lastStart);
    edges.first = clampMeasure(format.firstLineIndent, -column.leftRoom, lastStart);
    edges.right = clampMeasure(std::int64_t{column.width} - format.rightIndent,
                               std::max(edges.left, edges.first) + room, column.width + column.rightRoom);
    return edges;
}

void appendParagraphTag(const ParagraphFormat &format, const Column &column, FontStyles &fonts, std::string &out)
{
    const FontStyle &font = fonts.find(format.characters.font);
    out += "<p";
    if (!format.language.empty()) {
        out.append(" lang=\"").append(format.language).append("\"");
    }
    Attributes attributes(out);
    if (font.className != pageFontClass) {
        attributes.addClass(font.className);
    }
    attributes.addClass(format.beginsPage ? "newpage" : "");
    attributes.addClass(format.keepsWithNext ? "keep" : "");
    attributes.addClass(alignmentClasses[static_cast<std::size_t>(format.alignment)]);
    attributes.addClass(spacingClasses[static_cast<std::size_t>(format.spacing)]);
    const LineEdges &edges = format.edges;
    if (edges.left != 0) {
        attributes.addPoints("--l", edges.left);
    }
    if (edges.right != column.width) {
        attributes.addPoints("--r", column.width - edges.right);
    }
    if (edges.first != edges.left) {
        attributes.addPoints("--f", edges.first - edges.left);
    }
    if (format.spaceAbove != 0) {
        attributes.addLength("margin-top", format.spaceAbove);
    }
    if (format.spaceBelow != 0) {
        attributes.addLength("margin-bottom", format.spaceBelow);
    }
    addFontStyle(format.characters, {}, font.families, attributes);
    attributes.end();
}

void appendRunTag(const CharacterFormat &run, const CharacterFormat &paragraph, FontStyles &fonts, std::string &out,
                  std::string_view link)
{
    if (link.empty()) {
        out += "<span";
    } else {
        out.append("<a href=\"").append(link).append("\"");
    }
    Attributes attributes(out);
    for (std::size_t i = 0; i < modeClasses.size(); ++i) {
        if ((run.modes >> i & 1U) != 0) {
            attributes.addClass(modeClasses[i]);
        }
    }
    std::string_view families;
    if (run.font != paragraph.font) {
        const FontStyle &font = fonts.find(run.font);
        attributes.addClass(font.className);
        families = font.families;
    }
    addFontStyle(run, paragraph, families, attributes);
    attributes.end();
}

} // namespace mifconvert
