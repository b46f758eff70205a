#include "mifconvert/html_page.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "mifconvert/html_fonts.h"
#include "mifconvert/html_text.h"

namespace mifconvert
{

namespace
{

// Nothing is loaded, and no script runs, whatever comes into the page.
constexpr std::string_view securityPolicy =
    "default-src 'none'; style-src 'unsafe-inline'; img-src data:; base-uri 'none'; form-action 'none'";

// Measures of a paragraph are numbers, in points: --l, --r and --f are its indents, the last one that of the first line
// from the left indent, and --w is the width of a tab's box. What a point is, --u, depends on the window. --a and --z
// are lengths, the distances of a table from the edges of the text.
//
// A tab inside a box keeps its place in copied text only: the box is as wide as the tab reaches. What stands at a right
// tab is pushed away from the text before the tab by justification, of which the blank between the two takes all, or,
// behind text that wraps, as a flexible item. What stands at a centred tab takes no room; it moves to the left by half
// its width, but not over the text before the tab, and by more where the line ends.
constexpr std::string_view commonRules =
    R"(html{--u:1pt;background:#ddd}
body{margin:0 auto;box-sizing:border-box;background:#fff;color:#000;box-shadow:0 0 6pt #999;-webkit-text-size-adjust:100%;text-size-adjust:100%}
p{margin:0 calc(var(--r,0)*var(--u)) 0 calc(var(--l,0)*var(--u));text-indent:calc(var(--f,0)*var(--u));white-space:pre-wrap;overflow-wrap:break-word;tab-size:36pt}
p:empty::before{content:"\200b"}
.right{text-align:right}
.center{text-align:center}
.justify{text-align:justify}
.half{line-height:1.8}
.double{line-height:2.4}
.b{font-weight:bold}
.i{font-style:italic}
.u{text-decoration:underline}
.s{text-decoration:line-through}
.u.s{text-decoration:underline line-through}
.sup{vertical-align:super;line-height:0}
.sub{vertical-align:sub;line-height:0}
.small{font-variant:small-caps}
.upper{text-transform:uppercase}
.tl,.tr,.th,.tw{--b:min(max(0pt,var(--w)*var(--u) - var(--x,0)*2*(1pt - var(--u))),100%)}
.tl,.th{padding-left:calc(var(--h,0)*1pt);box-sizing:border-box}
.tl{display:inline-block;min-width:var(--b);max-width:100%;padding-right:.2em}
.tr{display:inline-block;width:var(--b);text-align-last:justify}
.th{display:inline-block;min-width:var(--b);white-space:pre}
.tr>*{display:inline-block;max-width:100%;text-align-last:auto}
.tw{display:inline-flex;width:var(--b);align-items:last baseline;justify-content:space-between}
.tw>:last-child{flex-shrink:0;max-width:100%}
.tc{display:inline-block;width:0;white-space:pre}
.tc>*{display:inline-block;transform:translateX(max(min(0pt,var(--h)*1pt + .2em - var(--w)*var(--u)),min(-50%,var(--e)*var(--u) - 100%)))}
.tl,.tr,.tw,.tc{text-align:left;text-indent:0;tab-size:0}
.th{text-align:right;text-indent:0;tab-size:0}
.table{margin:6pt calc(var(--z,0pt) - 1px) 6pt var(--a,0pt);overflow-x:auto}
table{table-layout:fixed;border-collapse:collapse}
td{border:1px solid #999;padding:1.5pt 3pt;vertical-align:top}
td:empty::before{content:"\200b"}
img,.object{max-width:100%;box-sizing:border-box;vertical-align:bottom}
img{object-fit:contain;text-indent:0}
.object{display:inline-flex;align-items:center;justify-content:center;overflow:hidden;border:1px dashed #888;background:#f4f4f4;color:#333;font:9pt/1.2 sans-serif;text-align:center;text-indent:0}
img.alone{display:block}
.object.alone{display:flex}
.right>.alone{margin-left:auto}
.center>.alone{margin:auto}
)";

// On a screen that is narrower than the text column, measures shrink with it, but for short ones, which have a number
// or a bullet to hold. Tables stay inside, and what stands at tab stops moves to the next line where it must.
constexpr std::string_view narrowRules =
    R"(body{min-height:0;padding-top:12pt;padding-bottom:12pt;box-shadow:none}
p{--m:max(0pt,1pt*min(var(--l,0),24),min(var(--l,0)*var(--u),50vw));margin-left:var(--m);margin-right:max(0pt,var(--r,0)*var(--u));text-indent:max(-1*var(--m),min(1pt*max(var(--f,0),-24),var(--f,0)*var(--u)))}
.tl{min-width:min(max(1pt*min(var(--w),24),var(--w)*var(--u)),100%)}
.tr{width:auto;min-width:var(--b)}
.th,.tc{white-space:inherit}
.tc>*{width:max-content;max-width:max(25vw,(var(--w) + var(--e))*var(--u) - var(--h)*1pt - .2em)}
.table{margin-left:0;margin-right:0}
)";

constexpr std::string_view printRules = R"(@media print{
html{background:none}
body{max-width:none;min-height:0;padding:0;box-shadow:none}
.table{overflow:visible}
tr,img,.object{break-inside:avoid}
}
)";

std::string points(std::int64_t twips, std::string_view unit = "pt")
{
    std::string text;
    appendPoints(twips, text, unit);
    return text;
}

// The rules that have the page's measures in them. A window that is too narrow for the page takes from the margins
// first.
void appendPageRules(const PageLayout &page, std::string &out)
{
    constexpr std::int64_t leastMargin = 180; // twips
    const std::int32_t textWidth = columnOf(page).width;
    const std::string width = points(page.width);
    const std::string height = points(page.height);
    const std::string top = points(page.topMargin);
    const std::string right = points(page.rightMargin);
    const std::string bottom = points(page.bottomMargin);
    const std::string left = points(page.leftMargin);
    const std::string least = points(leastMargin);
    const std::string half = points(textWidth / 2);
    auto place = std::back_inserter(out);
    fmt::format_to(place, "@page{{size:{} {};margin:{} {} {} {}}}\n", width, height, top, right, bottom, left);
    fmt::format_to(place,
                   "body{{max-width:{};min-height:{};padding:{} clamp({},50% - {},{}) {} clamp({},50% - {},{})}}\n",
                   width, height, top, least, half, right, bottom, least, half, left);
    const std::string narrow = points(textWidth + 2 * leastMargin);
    fmt::format_to(place,
                   "@media screen and (max-width:{}){{\nhtml{{--u:calc((100vw - {})/{});background:#fff}}\n{}}}\n",
                   narrow, points(2 * leastMargin), points(textWidth, ""), narrowRules);
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

void appendPageHead(std::string_view title, const PageLayout &page, std::string &out)
{
    out += "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n";
    out.append("<meta http-equiv=\"Content-Security-Policy\" content=\"").append(securityPolicy).append("\">\n");
    out += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>";
    appendHtmlName(title.empty() ? "MIF" : title, out);
    out += "</title>\n<style>\n";
    appendFontRules(out);
    out += commonRules;
    appendPageRules(page, out);
    out += printRules;
    out += "</style>\n</head>\n<body>\n";
}

void appendPageEnd(std::string &out)
{
    out += "</body>\n</html>\n";
}

} // namespace mifconvert
