// Text and pages of the extended stream, as a reader of the document wants them.
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "mifconvert/html_writer.h"
#include "mifconvert/text_writer.h"
#include "mifhost/document.h"
#include "support/test_host.h"

using namespace miftest;

namespace
{

template <typename Writer>
void writeAll(mifhost::Document &document, Writer &writer)
{
    while (const mifhost::Token *token = document.next()) {
        writer.write(*token);
    }
    writer.finish();
}

// Catalogs and tables come before the flow.
std::string textOf(const std::string &flow, const std::string &before = "")
{
    const std::string mif = documentOf(before + "<Para " + flow + ">");
    mifhost::MemoryStream stream(mif, "name");
    mifhost::Document document(stream);
    std::string text;
    mifconvert::TextWriter writer(text);
    writeAll(document, writer);
    return text;
}

std::string pageOf(const std::string &flow, const std::string &before = "")
{
    const std::string mif = documentOf(before + "<Para " + flow + ">");
    mifhost::MemoryStream stream(mif, "name");
    mifhost::Document document(stream);
    std::string page;
    mifconvert::HtmlWriter writer(
        "a.mif", document.fonts(), [](const mifhost::Frame &, std::string &) {}, page);
    writeAll(document, writer);
    return page;
}

std::string bodyOf(const std::string &flow, const std::string &before = "")
{
    const std::string page = pageOf(flow, before);
    const size_t start = page.find("<body>\n") + 7;
    return page.substr(start, page.find("</body>") - start);
}

std::string notes(const std::string &paragraphs)
{
    return "<Notes <FNote <ID 7> " + paragraphs + ">>";
}

std::string cell(const std::string &text, const std::string &states = "")
{
    return "<Cell " + states + "<CellContent <Para <String `" + text + "'>>>>";
}

std::string table(const std::string &rows, const std::string &format = "")
{
    return "<Tbls <Tbl <TblID 1> <TblNumColumns 2>" + format + rows + ">> <TextFlow <TextRectID 9>";
}

std::string hypertext(const std::string &command)
{
    return "<Marker <MType 8> <MText `" + command + "'>>";
}

} // namespace

TEST(ExtendedText, NotesFollowTheirParagraph)
{
    const std::string note = notes("<Para <String `note'>><Para <String `of two'>>");
    EXPECT_EQ(textOf("<String `a'><FNote 7><String ` b'>> <Para <String `c'>", note), "a[1] b\n[1] note\nof two\nc\n");
    EXPECT_EQ(textOf("<String `a'><FNote 7>> <Para <String `b'><FNote 7>", note), "a[1]\n[1] note\nof two\nb[1]\n");
    EXPECT_EQ(textOf("<String `a'><FNote 7>> " + note + "<Para <String `b'>"), "a[1]\nb\n[1] note\nof two\n");
    EXPECT_EQ(textOf("<String `a'>", note), "a\n[1] note\nof two\n") << "without a reference";
    EXPECT_EQ(textOf("<String `a'><FNote 8>"), "a[1]\n") << "of no note";
}

TEST(ExtendedText, RowsStandOnALine)
{
    const std::string two = "<TblBody <Row " + cell("a") + cell("b") + "><Row " +
                            cell("c'> <Char HardReturn> <String `d") + cell("") + ">>";
    const std::string title = "<TblTitle <TblTitleContent <Para <String `title'>>>>";
    EXPECT_EQ(textOf("<String `x'><ATbl 1><String `y'>", table(two)), "x\na\tb\nc d\t\ny\n");
    EXPECT_EQ(textOf("<ATbl 1>", table(title + two)), "title\na\tb\nc d\t\n\n");
    EXPECT_EQ(textOf("<ATbl 1>", table(two + title)), "a\tb\nc d\t\ntitle\n\n");
    const std::string noted = notes("<Para <String `note'>>") + "<Para <String `a'><FNote 7>>";
    EXPECT_EQ(
        textOf("<ATbl 1><String `y'>", table("<TblBody <Row <Cell <CellContent " + noted + ">>" + cell("b") + ">>")),
        "a[1]\tb\n[1] note\ny\n");
}

TEST(ExtendedText, NumbersAndConditions)
{
    EXPECT_EQ(textOf("<PgfNumString `1.\\t'><String `a'>"), "1.\ta\n");
    EXPECT_EQ(textOf("<Conditional <InCondition `C'>> <String `gone'>> <Para <Unconditional> <String `b'>",
                     "<ConditionCatalog <Condition <CTag `C'> <CState CHidden>>>"),
              "b\n");
}

// A link covers the text up to the next hypertext marker; without one to the next change of the characters.
TEST(ExtendedPage, Links)
{
    EXPECT_EQ(bodyOf(hypertext("newlink a b") + "<String `x'>"), "<p><a id=\"m-a_20b\"></a>x</p>\n");
    EXPECT_EQ(bodyOf(hypertext("gotolink a") + "<String `x'><FBold Yes><String `y'>" + hypertext("") + "<String `z'>"),
              "<p><a href=\"#m-a\">x</a><a href=\"#m-a\" class=\"b\">y</a><span class=\"b\">z</span></p>\n");
    EXPECT_EQ(bodyOf(hypertext("openlink <c\\>f.mif:a") + "<FItalic Yes><String `x'><FBold Yes><String `y'>"),
              "<p><a href=\"#m-a\" class=\"i\">x</a><span class=\"b i\">y</span></p>\n");
    EXPECT_EQ(bodyOf(hypertext("message URL http://e.org/?a&b") + "<String `x'>"),
              "<p><a href=\"http://e.org/?a&amp;b\">x</a></p>\n");
    for (const char *command : {"message URL javascript:x", "message system x", "gotolink", "nextpage", "alert a"}) {
        EXPECT_EQ(bodyOf(hypertext(command) + "<String `x'>"), "<p>x</p>\n") << command;
    }
    EXPECT_EQ(bodyOf("<Marker <MType 9> <MText `1: a'>><XRef <XRefSrcText `1: a'>><String `x'><XRefEnd><String `y'>"),
              "<p><a id=\"m-1_3a_20a\"></a><a href=\"#m-1_3a_20a\">x</a>y</p>\n");
}

TEST(ExtendedPage, NotesHaveLinksBothWays)
{
    const std::string body = bodyOf("<String `a'><FNote 7><String `b'><FNote 7>", notes("<Para <String `n'>>"));
    EXPECT_EQ(body,
              "<p>a<a class=\"sup\" href=\"#note-1\" id=\"reference-1\">1</a>b<a class=\"sup\" href=\"#note-1\">1</a>"
              "</p>\n<ol class=\"notes\">\n<li id=\"note-1\" value=\"1\"><p>n</p>\n"
              "<a href=\"#reference-1\">\u21a9</a></li>\n</ol>\n");
}

TEST(ExtendedPage, Tables)
{
    const std::string format = "<TblFormat <TblTRuling `T'> <TblHFFill 0> <TblHFColor `Red'>>";
    const std::string rulings = "<RulingCatalog <Ruling <RulingTag `T'> <RulingPenWidth 2 pt> <RulingLines 1>>>";
    const std::string rows = "<TblTitle <TblTitleContent <Para <String `t'>>>>"
                             "<TblH <Row " +
                             cell("h", "<CellColumns 2>") + cell("covered") +
                             ">>"
                             "<TblBody <Row " +
                             cell("a", "<CellRows 2> <CellFill 6>") +
                             "<Cell <CellContent <Para <PgfCellAlignment Bottom> <String `b'>>>>>" +
                             "<Row <Cell <CellContent >>" + cell("c") + ">>";
    const std::string body = bodyOf("<ATbl 1>", rulings + table(rows, format));
    for (const char *part : {"<caption><p>t</p>\n</caption>",
                             "<thead><tr><th colspan=\"2\" style=\"border-top:2pt solid "
                             "#000000;background:#ff0000\"><p>h</p>\n</th></tr>\n</thead>",
                             "<tbody><tr><td rowspan=\"2\" style=\"background:#f8f8f8\"><p>a</p>\n</td>"
                             "<td style=\"vertical-align:bottom\"><p>b</p>\n</td></tr>",
                             "<tr><td><p>c</p>\n</td></tr>\n</tbody></table>"}) {
        EXPECT_NE(body.find(part), std::string::npos) << part << '\n' << body;
    }
    EXPECT_EQ(body.find("covered"), std::string::npos);
}

TEST(ExtendedPage, ParagraphsAndPictures)
{
    EXPECT_EQ(bodyOf("<PgfSpBefore 18 pt> <PgfSpAfter 6 pt> <PgfPlacement PageTop> <PgfLanguage French> <FSize 9.5 pt> "
                     "<FUnderlining FDouble> <FOverline Yes> <String `x'>"),
              "<p lang=\"fr\" class=\"newpage\" style=\"margin-top:18pt;margin-bottom:6pt;font-size:9.5pt\">"
              "<span class=\"o uu\">x</span></p>\n");
    EXPECT_NE(
        bodyOf("<TabStop <TSX 1\"> <TSType Right> <TSLeaderStr `.'>><String `a'><Char Tab><String `7'>").find("dots"),
        std::string::npos);
    const auto picture = [](const std::string &path) {
        return bodyOf("<AFrame 1>",
                      "<AFrames <Frame <ID 1> <ShapeRect 0 0 1 1> <ImportObject <ImportObFile `" + path + "'>>>>");
    };
    EXPECT_NE(picture("art/a \"b.png").find("<img class=\"alone\" src=\"art/a%20%22b.png\" alt=\"art/a &quot;b.png\""),
              std::string::npos);
    for (const char *path : {"/a.png", "c:/a.png", "http://e.org/a.png", "\\\\\\\\a.png"}) {
        EXPECT_EQ(picture(path).find("<img"), std::string::npos) << path;
    }
    const std::string page =
        pageOf("<String `x'>", "<Document <DLanguage German>><PDFDocInfo <Key `Title'> <Value `T<'>"
                               "<Key `Author'> <Value `A\"'>>");
    EXPECT_NE(page.find("<title>T&lt;</title>"), std::string::npos);
    EXPECT_NE(page.find("content=\"A&quot;\""), std::string::npos);
    EXPECT_NE(page.find("<html lang=\"de\""), std::string::npos);
}
