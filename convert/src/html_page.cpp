#include "mifconvert/html_page.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>

#include "mifconvert/html_fonts.h"
#include "mifconvert/html_text.h"
#include "page_css.h"

namespace mifconvert
{

namespace
{

// Nothing is loaded, and no script runs, whatever comes into the page.
constexpr std::string_view securityPolicy =
    "default-src 'none'; style-src 'unsafe-inline'; img-src data: 'self' file:; base-uri 'none'; form-action 'none'";

std::string points(std::int64_t twips, std::string_view unit = "pt")
{
    std::string text;
    appendPoints(twips, text, unit);
    return text;
}

struct Measure {
    std::string_view name;
    std::string value;
};

constexpr std::int64_t leastMargin = 180; // twips; what a narrow window leaves of a margin

// Appends the style sheet with its measures filled in.
void appendStyleSheet(const PageLayout &page, std::string &out)
{
    const std::int64_t textWidth = columnOf(page).width;
    std::string fonts;
    appendFontRules(fonts);
    const std::array measures = {
        Measure{"fonts", fonts},
        Measure{"page-width", points(page.width)},
        Measure{"page-height", points(page.height)},
        Measure{"top-margin", points(page.topMargin)},
        Measure{"right-margin", points(page.rightMargin)},
        Measure{"bottom-margin", points(page.bottomMargin)},
        Measure{"left-margin", points(page.leftMargin)},
        Measure{"least-margin", points(leastMargin)},
        Measure{"least-margins", points(2 * leastMargin)},
        Measure{"half-text", points(textWidth / 2)},
        Measure{"text-width", points(textWidth, "")},
        Measure{"narrow-page", points(textWidth + 2 * leastMargin)},
        Measure{"cell-padding", points(cellPadding)},
        Measure{"least-shrunk", points(leastShrunk, "")},
    };
    std::string_view rest = pageCss;
    for (std::size_t mark = rest.find('$'); mark != std::string_view::npos; mark = rest.find('$')) {
        out += rest.substr(0, mark);
        rest.remove_prefix(mark + 1);
        const std::string_view name = rest.substr(0, rest.find('$'));
        const auto *found = std::find_if(measures.begin(), measures.end(),
                                         [name](const Measure &measure) { return measure.name == name; });
        if (found == measures.end()) {
            throw std::logic_error("page.css: " + std::string(name));
        }
        out += found->value;
        rest.remove_prefix(name.size() + 1);
    }
    out += rest;
}

} // namespace

PageLayout layoutOf(const mifhost::PageSetup &setup)
{
    PageLayout page;
    page.width = clampMeasure(setup.width, 2 * leastTextWidth, largestMeasure);
    page.height = clampMeasure(setup.height, 2 * leastTextWidth, largestMeasure);
    const std::int32_t widest = (page.width - leastTextWidth) / 2;
    const std::int32_t highest = (page.height - leastTextWidth) / 2;
    page.leftMargin = clampMeasure(setup.leftMargin, 0, widest);
    page.rightMargin = clampMeasure(setup.rightMargin, 0, widest);
    page.topMargin = clampMeasure(setup.topMargin, 0, highest);
    page.bottomMargin = clampMeasure(setup.bottomMargin, 0, highest);
    return page;
}

Column columnOf(const PageLayout &page)
{
    return {page.width - page.leftMargin - page.rightMargin, page.leftMargin, page.rightMargin};
}

bool isLanguage(std::string_view language)
{
    return !language.empty() && std::all_of(language.begin(), language.end(), [](char byte) {
        const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
        return isLetter || (byte >= '0' && byte <= '9') || byte == '-';
    });
}

void appendPageHead(std::string_view title, std::string_view language, std::string_view author, const PageLayout &page,
                    std::string &out)
{
    out += "<!DOCTYPE html>\n<html";
    if (isLanguage(language)) {
        out.append(" lang=\"").append(language).append("\"");
    }
    out += ">\n<head>\n<meta charset=\"utf-8\">\n";
    out.append("<meta http-equiv=\"Content-Security-Policy\" content=\"").append(securityPolicy).append("\">\n");
    out += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>";
    appendHtmlName(title.empty() ? "MIF" : title, out);
    out += "</title>\n";
    if (!author.empty()) {
        out += "<meta name=\"author\" content=\"";
        appendHtmlAttribute(author, out);
        out += "\">\n";
    }
    out += "<style>\n";
    appendStyleSheet(page, out);
    out += "</style>\n</head>\n<body>\n";
}

void appendPageEnd(std::string &out)
{
    out += "</body>\n</html>\n";
}

} // namespace mifconvert
