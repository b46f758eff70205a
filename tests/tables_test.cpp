// Tables at their anchors: replay, cells, column widths and row layouts.
#include <string>

#include <gtest/gtest.h>

#include "reader/context.h"
#include "support/test_host.h"

using namespace miftest;

namespace
{

const std::string row = "<Row <Cell <CellContent <Para <String `c'>>>>>";
const std::string cell = "text \"c\"\nline-break\npara-end\ncell-end\n";
const std::string margins = "<PgfLIndent 0><PgfRIndent 0><PageSize  1000 pt 1000 pt>"; // 20000 twips wide

std::string table(const std::string &id, const std::string &content)
{
    return "<Tbl <TblID " + id + "> " + content + ">\n";
}

// The tokens of one table that holds the given widths and two rows, and of its anchor.
std::string layoutOf(const std::string &widths)
{
    return tokensOf(margins + "<Tbls " + table("1", widths + row + row) + "><ATbl 1>");
}

std::string layout(const std::string &columns)
{
    return "table-row " + columns + "\n" + cell + cell + "table-end\n";
}

} // namespace

TEST(Tables, AnchorsReplayTheirTable)
{
    const std::string tables = "<Tbls " + table("`1'", row) + table("1", "<Row <Cell x>>") + table("07", "") + ">";
    EXPECT_EQ(tokensOf(tables + "<String `a'><ATbl 1> <String `b'><ATbl `1'><String `c'>"),
              "text \"a\"\n" + cell + "table-end\ntext \"b\"\n" + cell + "table-end\ntext \"c\"\n")
        << "the first of one ID, as often as it is anchored";
    EXPECT_EQ(tokensOf(tables + "<ATbl 7><ATbl 07><ATbl 8><ATbl <X 1>><String `a'>"), "table-end\ntext \"a\"\n");
    EXPECT_EQ(tokensOf("<ATbl 1>" + tables + "<TextRectID 8><ATbl 1><TextRectID 9><String `a'>"), "text \"a\"\n")
        << "before the tables, and outside of body text";
    EXPECT_EQ(tokensOf("<Tbls " + table("1", row) + table("2", "<Row <Cell <ATbl 1> <Para <String `c'>>>>") +
                       "<ATbl 1>><ATbl 2><String `a'>"),
              cell + "table-end\ntext \"a\"\n")
        << "anchors in tables are ignored";
}

// The flow goes on exactly behind the anchor, at the document's end too, and the percentage stands still meanwhile.
TEST(Tables, TheReplayComesBack)
{
    const std::string document = "<MIFFile 5><Page <PageType BodyPage> <TextRect <ID 9>>><Tbls " +
                                 table("1", row + std::string(9000, ' ') + row) + "><TextRectID 9><ATbl 1>";
    const Conversion whole = convert(document);
    EXPECT_EQ(bodyListing(whole), cell + cell + "table-end\n");
    TestHost host(document, {.bufferSize = 60});
    MifContext *context = host.open();
    ASSERT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
    Conversion conversion;
    while (conversion.percent < 100) {
        host.fill(context, conversion);
        EXPECT_EQ(conversion.percent == 100, conversion.stream.size() == whole.stream.size());
    }
    EXPECT_TRUE(conversion.stream == whole.stream);
    host.close(context);
}

TEST(Tables, ColumnWidths)
{
    const std::string three = "<TblNumColumns 3>";
    EXPECT_EQ(layoutOf(three + "<TblColumnWidth 1.0\"><TblColumnWidth 2.0\"><TblColumnWidth 108 pt>"),
              layout("columns=3 widths=1440,2880,2160 offset=6760"));
    EXPECT_EQ(
        layoutOf("<TblFormat <TblColumnWidth 9\"><TblNumColumns 1>><TblColumnWidth 20003 pt><TblColumnWidth 5\">"),
        layout("columns=1 widths=400060 offset=-190030"))
        << "wider than the page; a width too many";
    EXPECT_EQ(layoutOf("<TblNumColumns 1><TblFormat <TblColumnWidth 9\">><TblColumnWidth 1\">"),
              layout("columns=1 widths=1440 offset=9280"))
        << "that of a format is no table's";
    EXPECT_EQ(layoutOf("<TblNumColumns 1><TblColumnWidth 0><TblColumnWidth 1\">"),
              layout("columns=1 widths=1440 offset=9280"))
        << "0 is no width";
    const std::string token("\x06\x22\0\0\0"
                            "\x01\0\0\0"
                            "\xA0\x05\0\0"
                            "\x1E\0\0\0"
                            "\x3C\0\0\0"
                            "\x1E\0\0\0"
                            "\x3C\0\0\0"
                            "\x40\x24\0\0"
                            "\0",
                            34);
    const std::string document =
        documentOf(margins + "<Tbls " + table("1", "<TblNumColumns 1><TblColumnWidth 1\">" + row) + "><ATbl 1>");
    EXPECT_NE(convert(document).stream.find(token), std::string::npos);
    EXPECT_EQ(layoutOf("<TblNumColumns 3><TblColumnWidth 0><TblColumnWidth 1\"><TblColumnWidth 0><TblColumnWidth 2\">"
                       "<TblColumnWidth 0><TblColumnWidth 0.5\"><TblColumnWidth 9\">"),
              layout("columns=3 widths=1440,2880,720 offset=7480"));
    const std::string none = cell + cell + "table-end\n";
    EXPECT_EQ(layoutOf(three + "<TblColumnWidth 1\">"), none) << "too few";
    EXPECT_EQ(layoutOf("<TblColumnWidth 1\">"), none);
    EXPECT_EQ(layoutOf("<TblNumColumns 2><TblColumnWidth 1\"><TblNumColumns -1><TblColumnWidth 1\">"), none);
    EXPECT_EQ(layoutOf("<TblNumColumns 1><TblNumColumns 4097><TblColumnWidth 20001 pt>"),
              layout("columns=1 widths=400020 offset=-190010"))
        << "a count too many is refused";
    EXPECT_EQ(tokensOf("<Tbls " + table("1", "<TblNumColumns 1><TblColumnWidth 9363 pt>" + row) + "><ATbl 1>"),
              "table-row columns=1 widths=187260 offset=-88950\n" + cell + "table-end\n")
        << "centred between the indents";
}

// The widths as minimum and maximum count while the tables are read first; the layout is written where body text is on.
TEST(Tables, EqualizedWidths)
{
    const std::string autoSize = "<TblNumColumns 0><TblColumnNum 0><TblColumnWidthA 1\" 2\"><TblColumnNum 1>"
                                 "<TblColumnWidthA 10 pt 1 cm><TblColumnNum 2><TblColumnWidth 3\">";
    const auto layoutFor = [&](const std::string &equalize, const std::string &before = "<TblNumColumns 3>") {
        TestHost host(documentOf(margins + before + "<Tbls <Tbl " + autoSize + "<TblNumColumns 3> <EqualizeWidths " +
                                 equalize + "> " + row + ">>"));
        const Conversion conversion = host.convert();
        const std::string lines = bodyListing(conversion);
        return lines.substr(0, lines.find('\n'));
    };
    EXPECT_EQ(layoutFor("<X 1>"), "table-row columns=3 widths=2880,567,4320 offset=6116");
    EXPECT_EQ(layoutFor("<TblColumnNum 0><TblColumnNum 2>"), "table-row columns=3 widths=4320,567,4320 offset=5396");
    EXPECT_EQ(layoutFor("<TblColumnNum 1><TblColumnNum 64><TblColumnNum -1>"),
              "table-row columns=3 widths=2880,567,4320 offset=6116");

    // What they leave behind does not keep a replayed table from its own widths.
    EXPECT_EQ(layoutOf(autoSize + "<TblNumColumns 2><TblColumnWidth 1\"><TblColumnWidth 1\">"),
              layout("columns=2 widths=1440,1440 offset=8560"));
    EXPECT_NE(tokensOf(margins + "<Tbls " + table("1", autoSize + "<TblNumColumns 1><TblColumnWidth 1\">") +
                       "><ATbl 1><Tbls <Tbl <TblNumColumns 2><EqualizeWidths <X 1>> " + row + ">>")
                  .find("columns=2 widths=0,0"),
              std::string::npos)
        << "nor does what a replayed table has cleared come back";
    // More columns than widths were allocated, and more than 64.
    std::string many = "<TblNumColumns 2>";
    for (int column = 0; column < 100; ++column) {
        many += "<TblColumnNum 1><TblColumnWidth 1\">";
    }
    const std::string lines = tokensOf(margins + "<Tbls <Tbl " + many + "<EqualizeWidths <X 1>> " + row + ">>");
    EXPECT_EQ(lines.substr(0, lines.find('\n')), "table-row columns=2 widths=0,0 offset=10000");
}
