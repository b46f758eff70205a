// Pages: text that stays text, formats, tables and tokens in any order, tab stops, and the encoding of objects.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "mifconvert/base64.h"
#include "mifconvert/html_text.h"
#include "mifconvert/html_writer.h"
#include "mifhost/fonts.h"
#include "mifhost/token.h"
#include "mifreader/host.h"

using namespace mifhost;

namespace
{

constexpr LineBreak lineBreak;
constexpr ParaEnd paraEnd;
constexpr Tab tab;
constexpr CellEnd cellEnd;
constexpr TableEnd tableEnd;
constexpr PageSetup letterPage{12240, 15840, 1440, 1440, 1440, 1440};

void announce(FontRegistry &fonts, std::string_view name, std::uint8_t familyClass)
{
    MifFontRecord record{};
    record.familyClass = familyClass;
    std::memcpy(record.faceName, name.data(), std::min(name.size(), sizeof record.faceName - 1));
    fonts.add(record);
}

std::string pageOf(const std::vector<Token> &tokens, const std::string &name = "a.mif")
{
    FontRegistry fonts;
    announce(fonts, "Times", MIF_FONT_CLASS_ROMAN);
    announce(fonts, "HELVETICA", MIF_FONT_CLASS_SWISS);
    announce(fonts, "Caf\u00e9 </style>\"';}\x01", MIF_FONT_CLASS_SCRIPT);
    std::string page;
    mifconvert::HtmlWriter writer(
        name, fonts, [](const Frame &frame, std::string &out) { out.append("[").append(frame.id).append("]"); }, page);
    for (const Token &token : tokens) {
        writer.write(token);
    }
    writer.finish();
    return page;
}

std::string between(const std::string &text, std::string_view start, std::string_view end)
{
    const std::size_t from = text.find(start) + start.size();
    return text.substr(from, text.find(end, from) - from);
}

std::string bodyOf(std::vector<Token> tokens)
{
    tokens.insert(tokens.begin(), letterPage);
    return between(pageOf(tokens), "<body>\n", "</body>");
}

// What is wrong with the nesting of the page's elements; nothing if it is right.
std::string nestingFault(const std::string &page)
{
    static const std::vector<std::string> empty = {"!DOCTYPE", "meta", "br", "col", "img"};
    std::vector<std::string> open;
    for (std::size_t at = page.find('<'); at != std::string::npos; at = page.find('<', at + 1)) {
        const std::string tag = page.substr(at + 1, page.find_first_of(" >", at) - at - 1);
        if (tag.starts_with('/')) {
            if (open.empty() || open.back() != tag.substr(1)) {
                return page.substr(at, 40) + " ends no " + (open.empty() ? "element" : open.back());
            }
            open.pop_back();
        } else if (std::find(empty.begin(), empty.end(), tag) == empty.end()) {
            const bool isBlock = tag == "p" || tag == "div";
            if (isBlock && std::find(open.begin(), open.end(), "p") != open.end()) {
                return page.substr(at, 40) + " in a paragraph";
            }
            open.push_back(tag);
        }
    }
    return open.empty() ? "" : open.back() + " is not ended";
}

} // namespace

TEST(Html, TextIsNeverMarkup)
{
    EXPECT_EQ(bodyOf({Text{"<script>a & \"b\"</script>"}}), "<p>&lt;script&gt;a &amp; \"b\"&lt;/script&gt;</p>\n");
    EXPECT_EQ(bodyOf({Text{std::string_view("\0\n\r\x1b\x7f\u20AC", 8)}}),
              "<p>\u2400\u240A\u240D\u241B\u2421\u20AC</p>\n");
    EXPECT_EQ(bodyOf({Font{2, 10}, Text{"x"}}),
              "<p style=\"font-family:'Caf\u00e9 \\3c \\2f style\\3e \\22 \\27 \\3b \\7d \\2401 ',cursive;"
              "font-size:10pt\">x</p>\n");
    const auto titleOf = [](const std::string &name) { return between(pageOf({}, name), "<title>", "</title>"); };
    EXPECT_EQ(titleOf("a b</title>\xC3\xA9.mif"), "a b&lt;/title&gt;\u00e9.mif");
    EXPECT_EQ(titleOf("<b>\x01\xff\xc3"), "&lt;b&gt;\u2401\uFFFD\uFFFD");
    EXPECT_EQ(titleOf(""), "MIF");
}

TEST(Html, RunsOfTheSameFormatAreOne)
{
    const Attribute bold{Mode::Bold, true};
    const Attribute notBold{Mode::Bold, false};
    EXPECT_EQ(bodyOf({bold, Text{"a"}, notBold, bold, Text{"b"}, Text{""}, notBold, Text{"c"}, lineBreak, paraEnd}),
              "<p><span class=\"b\">ab</span>c</p>\n");
    EXPECT_EQ(
        bodyOf({Font{1, 14}, TextColor{255, 0, 0}, Text{"a"}, Font{0, 14}, Text{"b"}, TextColor{0, 0, 0},
                Attribute{Mode::Underline, true}, Attribute{Mode::Strike, true}, Text{"c"}, Font{1, 14},
                TextColor{255, 0, 0}, Attribute{Mode::Underline, false}, Attribute{Mode::Strike, false}, Text{"d"}}),
        "<p class=\"helvetica\" style=\"font-size:14pt;color:#ff0000\">a<span class=\"times\">b</span>"
        "<span class=\"u s times\" style=\"color:#000000\">c</span>d</p>\n");
    EXPECT_EQ(bodyOf({Font{99, 0}, Text{"a"}, lineBreak, paraEnd, Font{0, UINT32_MAX}, Text{"b"}}),
              "<p>a</p>\n<p>b</p>\n"); // a negative size, or none
    EXPECT_EQ(bodyOf({Font{0, INT32_MAX}, Text{"a"}}), "<p style=\"font-size:min(400pt,40vw)\">a</p>\n");
}

TEST(Html, Paragraphs)
{
    EXPECT_EQ(bodyOf({lineBreak, paraEnd, Text{"a"}, lineBreak, lineBreak, Text{"b"}, lineBreak, lineBreak, paraEnd}),
              "<p></p>\n<p>a<br><br>b<br><br></p>\n");
    EXPECT_EQ(bodyOf({ParaFormat{720, 360, 1007, Alignment::LeftRight}, LineSpacing{Spacing::Double}, Text{"a"}}),
              "<p class=\"justify double\" style=\"--l:36;--r:18;--f:14.35\">a</p>\n");
    // Indents leave an inch for text, and the text on the page.
    EXPECT_EQ(bodyOf({ParaFormat{INT32_MAX, INT32_MAX, INT32_MIN, Alignment::Left}, Text{"a"}}),
              "<p style=\"--l:396;--f:-468\">a</p>\n");
    EXPECT_EQ(bodyOf({ParaFormat{0, INT32_MIN, 0, Alignment::Left}, Text{"a"}}), "<p style=\"--r:-72\">a</p>\n");
    // Tabs and frames come before the formats of their paragraph.
    EXPECT_EQ(bodyOf({tab, Frame{"5", 100, 100, 2}, ParaFormat{0, 0, 0, Alignment::Right}, Text{"a"}, lineBreak,
                      paraEnd, Frame{"6", 100, 100, 2}, lineBreak, paraEnd}),
              "<p class=\"right\">\t[5]a</p>\n<p class=\"right\">[6]</p>\n");
    EXPECT_EQ(bodyOf({Text{"a"}, ParaFormat{0, 0, 0, Alignment::Right}, Text{"b"}}),
              "<p>a</p>\n<p class=\"right\">b</p>\n");
}

TEST(Html, Tables)
{
    const std::vector<std::int32_t> widths = {1440, 2880};
    const TableRow row{widths, 3960};
    const std::string start = "<div class=\"table\" style=\"--a:126pt;--z:0pt\"><table style=\"width:216pt\"><colgroup>"
                              "<col style=\"width:72pt\"><col style=\"width:144pt\"></colgroup>\n";
    const std::string end = "</table></div>\n";
    // The paragraph around the table goes on without a first line, or not at all.
    EXPECT_EQ(bodyOf({ParaFormat{0, 0, 360, Alignment::Left}, Text{"a"}, row, Text{"b"}, lineBreak, paraEnd, cellEnd,
                      cellEnd, Text{"c"}, cellEnd, tableEnd, Text{"d"}, lineBreak, paraEnd, row, cellEnd, tableEnd,
                      lineBreak, paraEnd}),
              "<p style=\"--f:18\">a</p>\n" + start +
                  "<tr><td><p style=\"--f:18\">b</p>\n</td><td></td></tr>\n<tr><td><p style=\"--f:18\">c</p>\n"
                  "</td><td></td></tr>\n" +
                  end + "<p>d</p>\n" + start + "<tr><td></td><td></td></tr>\n" + end);
    // Another grid, no end, and ends of nothing.
    EXPECT_EQ(bodyOf({cellEnd, tableEnd, Text{"a"}, cellEnd, row, row, Text{"b"}, tableEnd, tableEnd}),
              "<p>a</p>\n" + start + end + start + "<tr><td><p>b</p>\n</td><td></td></tr>\n" + end);

    const auto tableOf = [](const std::vector<std::int32_t> &columns, std::int32_t offset, const ParaFormat &format) {
        return between(bodyOf({format, TableRow{columns, offset}}), "\"table\" style=\"", "</colgroup>");
    };
    // Between the indents where they are known, in the middle of the page otherwise, never off it.
    EXPECT_TRUE(
        tableOf({1440}, 4680, {1440, 0, 0, Alignment::Left}).starts_with("--a:234pt;")); // 6120 from the page's edge
    EXPECT_TRUE(tableOf({1440}, 5400, {1440, 0, 0, Alignment::Left}).starts_with("--a:198pt;"));
    EXPECT_TRUE(tableOf({15000}, -1380, {}).starts_with("--a:-72pt;--z:-72pt"));
    EXPECT_EQ(tableOf({0, -5, INT32_MAX}, 0, {}),
              "--a:-72pt;--z:-72pt\"><table><colgroup><col><col><col style=\"width:1584pt\">");
    EXPECT_EQ(tableOf({}, 6120, {}), "--a:234pt;--z:0pt\"><table><colgroup><col>");
    // Indents in a cell leave half of it for text.
    EXPECT_NE(bodyOf({ParaFormat{9000, 0, 9000, Alignment::Left}, row, Text{"a"}}).find("<p style=\"--l:33\">"),
              std::string::npos);
}

TEST(Html, AnyOrderOfTokensIsAPage)
{
    const std::vector<std::int32_t> widths = {720, 1440};
    const std::vector<TabStop> stops = {
        {TabKind::Center, 2000}, {TabKind::Left, 700}, {TabKind::Right, 9000}, {TabKind::Right, 700}};
    const std::vector<Token> kinds = {Text{"words & words "},
                                      Text{"<b>"},
                                      ParaFormat{720, 0, 0, Alignment::Left},
                                      ParaFormat{0, -99, 99999, Alignment::Center},
                                      TabStops{stops},
                                      TabStops{},
                                      tab,
                                      tab,
                                      Attribute{Mode::Italic, true},
                                      Attribute{Mode::Italic, false},
                                      TableRow{widths, 0},
                                      TableRow{},
                                      tableEnd,
                                      cellEnd,
                                      cellEnd,
                                      lineBreak,
                                      lineBreak,
                                      paraEnd,
                                      Font{1, 10},
                                      Font{7, 0},
                                      letterPage,
                                      TextColor{1, 2, 3},
                                      Frame{"1", 720, 720, 2},
                                      Frame{"2", 0, 7200, 2},
                                      Charset{7}};
    std::mt19937 random(1); // NOLINT(cert-msc51-cpp,cert-msc32-c): the same pages in every run
    for (int round = 0; round < 2000; ++round) {
        std::vector<Token> tokens;
        const std::size_t count = random() % 40;
        for (std::size_t i = 0; i < count; ++i) {
            tokens.push_back(kinds[random() % kinds.size()]);
        }
        const std::string page = pageOf(tokens);
        ASSERT_EQ(nestingFault(page), "") << page;
        const auto textCount = std::count_if(tokens.begin(), tokens.end(), [](const Token &token) {
            const auto *text = std::get_if<Text>(&token);
            return text != nullptr && text->bytes == "<b>";
        });
        std::ptrdiff_t found = 0;
        for (std::size_t at = page.find("&lt;b&gt;"); at != std::string::npos; at = page.find("&lt;b&gt;", at + 1)) {
            ++found;
        }
        ASSERT_EQ(found, textCount) << page;
    }
}

TEST(Html, TabStops)
{
    const auto lineOf = [](const std::vector<TabStop> &stops, std::vector<Token> tokens, ParaFormat format = {}) {
        tokens.insert(tokens.begin(), {format, TabStops{stops}});
        return between(bodyOf(tokens), ">", "</p>");
    };
    const auto box = [](const std::string &kind, const std::string &width) {
        std::string tag = "<span class=\"t";
        return tag.append(kind).append("\" style=\"--w:").append(width).append("\">");
    };
    const Attribute bold{Mode::Bold, true};
    // A hanging indent, with and without a stop for it.
    const ParaFormat hanging{720, 0, 360, Alignment::Left};
    EXPECT_EQ(lineOf({{TabKind::Left, 720}}, {Text{"-"}, tab, Text{"a"}}, hanging), box("l", "18") + "-\t</span>a");
    EXPECT_EQ(lineOf({}, {Text{"-"}, tab, Text{"a"}, tab, Text{"b"}}, hanging), box("l", "18") + "-\t</span>a\tb");
    // Stops in any order, runs closed at each.
    EXPECT_EQ(lineOf({{TabKind::Right, 7200}, {TabKind::Center, 4320}, {TabKind::Left, 1440}},
                     {bold, Text{"a"}, tab, Text{"b"}, tab, Text{"c"}, tab, Text{"d"}, tab, Text{"e"}}),
              box("l", "72") + "<span class=\"b\">a</span>\t</span>" + box("l", "144") +
                  "<span class=\"b\">b</span>\t</span>" + box("c", "144;--h:6;--e:252") +
                  "<span><span class=\"b\">c</span></span></span>" + box("h", "144;--h:2.65") +
                  "\t<span class=\"b\">d</span></span>\t<span class=\"b\">e</span>");
    // Text beyond a stop takes the next; several stops in one place are taken one after the other.
    EXPECT_EQ(lineOf({{TabKind::Left, 400}, {TabKind::Left, 1440}}, {Text{"mmmm"}, tab}),
              box("l", "72") + "mmmm\t</span>");
    EXPECT_EQ(lineOf({{TabKind::Right, 7200}}, {Text{"a"}, tab, bold, Text{"b"}}),
              box("r", "360") + "<span>a</span>\t <span><span class=\"b\">b</span></span></span>");
    EXPECT_EQ(lineOf({{TabKind::Right, 720}, {TabKind::Left, 720}}, {tab, Text{"1."}, tab, Text{"a"}}),
              box("h", "36") + "\t1.</span>" + box("l", "0") + "\t</span>a");
    // Text that does not get its half before the stop takes more behind it.
    EXPECT_EQ(lineOf({{TabKind::Center, 200}, {TabKind::Left, 1440}}, {Text{"m"}, tab, Text{"mm"}, tab}),
              box("l", "10") + "m\t</span>" + box("c", "10;--h:9.3;--e:458") + "<span>mm</span></span>" +
                  box("l", "62;--h:17.95") + "\t</span>");
    // Text before a stop that fills a narrow window's share is at the cost of the next box.
    EXPECT_EQ(lineOf({{TabKind::Left, 720}, {TabKind::Right, 9360}}, {Text{"mmm"}, tab, Text{"a"}, tab, Text{"b"}}),
              box("l", "36") + "mmm\t</span>" + box("r", "432;--x:13") + "<span>a</span>\t <span>b</span></span>");
    // Behind a line break the line begins at the left indent.
    EXPECT_EQ(lineOf({{TabKind::Left, 1440}}, {Text{"a"}, lineBreak, Text{"b"}, tab}, hanging),
              "a<br>" + box("l", "36") + "b\t</span>");
    // Text that fills the line stays out of boxes, but for that of a right tab.
    const std::string words(120, 'm');
    EXPECT_EQ(lineOf({{TabKind::Left, 9000}}, {Text{words}, tab, Text{"a"}}), words + "\ta");
    EXPECT_EQ(lineOf({{TabKind::Right, 9360}}, {Text{words}, tab, Text{"a"}}),
              box("w", "468") + "<span>" + words + "</span>\t <span>a</span></span>");
    EXPECT_EQ(lineOf({{TabKind::Right, 99999}}, {tab, Text{"a"}}), box("h", "468") + "\ta</span>");
    // Nothing of any size is kept back.
    const std::string manyWords(20000, 'i');
    EXPECT_EQ(lineOf({{TabKind::Right, 9360}}, {Text{manyWords}, tab, Text{"a"}}), manyWords + "\ta");
    EXPECT_EQ(lineOf({{TabKind::Left, 1440}}, {Text{"a"}, Frame{"3", 360, 360, 2}, tab, Text{"b"}},
                     {240, 0, 240, Alignment::Left}),
              "a[3]" + box("l", "36.7") + "\t</span>b");
}

TEST(Html, Base64)
{
    const std::string text = "any carnal pleas";
    const std::span<const std::uint8_t> bytes(reinterpret_cast<const std::uint8_t *>(text.data()), text.size());
    const std::vector<std::string> codes = {"", "YQ==", "YW4=", "YW55", "YW55IA=="};
    for (std::size_t size = 0; size < codes.size(); ++size) {
        std::string out;
        mifconvert::Base64Encoder encoder;
        encoder.append(bytes.first(size), out);
        encoder.finish(out);
        EXPECT_EQ(out, codes[size]);
    }
    for (std::size_t block = 1; block < bytes.size(); ++block) {
        std::string out = "=";
        mifconvert::Base64Encoder encoder;
        for (std::size_t at = 0; at < bytes.size(); at += block) {
            encoder.append(bytes.subspan(at, std::min(block, bytes.size() - at)), out);
        }
        encoder.finish(out);
        EXPECT_EQ(out, "=YW55IGNhcm5hbCBwbGVhcw==") << block;
    }
}
