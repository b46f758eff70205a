// Formats: catalogs, direct properties and stored ones, and the lazy writing of what differs.
#include <string>

#include <gtest/gtest.h>

#include "reader/context.h"
#include "reader/index.h"
#include "support/test_host.h"

using namespace miftest;
using namespace std::string_literals;

namespace
{

// A text flow behind catalogs of its own.
std::string tokensWith(const std::string &catalogs, const std::string &flow)
{
    return bodyListing(convert(documentOf("<TextRectID 8>" + catalogs + "<TextRectID 9>" + flow)));
}

const std::string indents = "para-format left=1440 right=1440 first=0 alignment=left\n";

// What a document makes of the current format, looked at in the context.
struct State {
    MifParagraphStyle current;
    uint32_t styleChanged;
};

State stateAfter(const std::string &flow)
{
    TestHost host(documentOf(flow));
    MifContext *context = host.open();
    EXPECT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
    Conversion conversion;
    host.fill(context, conversion);
    const State state = {context->formats.currentStyle, context->formats.styleChanged};
    host.close(context);
    return state;
}

int32_t fontSizeAfter(const std::string &flow)
{
    return stateAfter(flow).current.fontSize;
}

uint32_t modesAfter(const std::string &flow)
{
    return stateAfter(flow).current.modes;
}

} // namespace

// The indents that every document starts with are written with the first change of anything.
TEST(Formats, OnlyDifferencesAreWritten)
{
    EXPECT_EQ(tokensOf("<String `a'><FSize 12.5 pt><String `b'><FSize 12><String `c'>"),
              "text \"a\"\n" + indents + "font number=0 size=12\ntext \"b\"\ntext \"c\"\n");
    EXPECT_EQ(tokensOf("<PgfLIndent 0><PgfRIndent 0><PgfSpBefore 1.0\"><FColor Red><String `a'>"),
              "text-color red=255 green=0 blue=0\ntext \"a\"\n");
    EXPECT_EQ(tokensOf("<TextRectID 8><FBold Yes><String `x'><FBold No><FStrike Yes><TextRectID 9><Char Yen>"),
              indents + "attribute strike on\ntext \"\\xa5\"\n");
}

TEST(Formats, TokensByteByByte)
{
    const std::string expected = "\x03\x06\0\0\0\0"                                 // the tab of the text
                                 "\x01\x12\0\0\0\x14\0\0\0\xA0\x05\0\0\0\0\0\0\x03" // indents, alignment
                                 "\x0F\x0D\0\0\0\0\0\0\0\x0C\0\0\0"                 // font 0, size 12
                                 "\x04\x09\0\0\0\x01\x80\0\0"                       // bold on
                                 "\x13\x0A\0\0\0\0\xFF\0\0\0"                       // red
                                 "\x02\x0E\0\0\0\x01\0\0\0\x01\x28\x14\0\0"         // a right tab stop
                                 "\0\x0C\0\0\0\x03\0\0\0a b"                        // the text
                                 "\x04\x09\0\0\0\x01\0\0\0"                         // bold off
                                 "\x0E\x05\0\0\0\x0D\x05\0\0\0"s;
    const std::string flow = "<PgfLIndent 1 pt><PgfAlignment LeftRight><FSize 12><FBold Yes><FColor Red><PgfNumTabs 1>"
                             "<TSX 258 pt><TSType Right><String `a\\tb'><Para >";
    const std::string stream = convert(documentOf(flow)).stream;
    EXPECT_TRUE(stream.ends_with(expected)) << testing::PrintToString(stream);
}

TEST(Formats, ModesGoOnWithTextAndOffAtParagraphEnds)
{
    EXPECT_EQ(
        tokensOf(
            "<PgfLIndent 0><PgfRIndent 0><Para <FBold Yes><String `a'><FAngle Italic><String `b'>><Para <String `c'>>"),
        "attribute bold on\ntext \"a\"\nattribute bold on\nattribute italic on\ntext \"b\"\n"
        "attribute bold off\nattribute italic off\nline-break\npara-end\n"
        "attribute bold on\nattribute italic on\ntext \"c\"\nattribute bold off\nattribute italic "
        "off\nline-break\npara-end\n");
    EXPECT_EQ(
        tokensOf("<PgfLIndent 0><PgfRIndent 0><FCase FSmallCaps><String `a'><FCase FUpperCase><Para <String `b'>>"),
        "attribute small-caps on\ntext \"a\"\nattribute upper-case on\ntext \"b\"\n"
        "attribute upper-case off\nline-break\npara-end\n");
    // Taking raised text back gives the size back.
    EXPECT_EQ(fontSizeAfter("<FSize 12><FPosition FSuperscript><Para <String `a'>>"), 12);
    EXPECT_EQ(fontSizeAfter("<FSize 10><FSubScript Yes><Para <String `a'>>"), 9);
}

TEST(Formats, Scripts)
{
    EXPECT_EQ(fontSizeAfter("<FSize 10><FPosition FSuperscript>"), 7);
    EXPECT_EQ(fontSizeAfter("<FSize 10><FPosition FSuperscript><FPosition FSuperscript>"), 5);
    EXPECT_EQ(fontSizeAfter("<FSize 10><FPosition FSuperscript><FPosition FNormal>"), 9);
    EXPECT_EQ(fontSizeAfter("<FSize 10><FPosition FSubscript><FPosition FSuperscript>"), 6);
    EXPECT_EQ(fontSizeAfter("<FSize 10><FSubScript Yes><FSupScript Yes>"), 7);
    EXPECT_EQ(modesAfter("<FSubScript Yes><FSupScript Yes>"), MODE_SUPERSCRIPT);
    EXPECT_EQ(fontSizeAfter("<FSize 10><FSubScript Yes><FSubScript No><FSubScript No>"), 9);
    EXPECT_EQ(modesAfter("<TextRectID 8><FSubScript Yes><FPosition FSuperscript>"), 0U) << "outside of body text";
    EXPECT_EQ(
        fontSizeAfter("<FSize 2147483647><FPosition FSuperscript><FPosition FNormal><FSize 2147483647><FSubScript Yes>"
                      "<FSize 2147483647><FSubScript No>"),
        INT32_MAX);
}

TEST(Formats, DirectAndStoredHandlingDiffer)
{
    const std::string stored = "<TextRectID 8><FSize 10><PgfCatalog <Pgf <PgfTag `T'> <PgfFont %>>>";
    const auto define = [&](const std::string &property) {
        return std::string(stored).replace(stored.find('%'), 1, property);
    };
    EXPECT_EQ(modesAfter(define("<FItalic Yes>")), 0U);
    EXPECT_EQ(modesAfter(define("<FItalic True>")), MODE_ITALIC);
    EXPECT_EQ(modesAfter("<FItalic Yes>"), MODE_ITALIC);
    EXPECT_EQ(modesAfter("<FItalic True>"), 0U);
    EXPECT_EQ(modesAfter(define("<FPosition FSuperscript>")), MODE_SUPERSCRIPT);
    EXPECT_EQ(fontSizeAfter(define("<FPosition FSuperscript>")), 10);
    EXPECT_EQ(fontSizeAfter(define("<FSupScript Yes>")), 7);

    const auto fontsOf = [](const std::string &flow) { return convert(documentOf(flow)).fonts.size(); };
    EXPECT_EQ(fontsOf("<TextRectID 8><FFamily `F'>"), 0U);
    EXPECT_EQ(fontsOf("<TextRectID 8><Font <FFamily `F'>>"), 1U);
    EXPECT_EQ(fontsOf("<TextRectID 8><Pgf <PgfTag `T'><FFamily `F'>>"), 0U);
    EXPECT_EQ(fontsOf("<TextRectID 8><PgfCatalog <Pgf <PgfTag `T'><FFamily `F'>>>"), 1U);
    EXPECT_STREQ(stateAfter("<PgfCatalog <Pgf <PgfTag `T'> <PgfNumString `1.'>>>").current.numString, "");
    EXPECT_STREQ(stateAfter("<PgfNumString `1\\t'>").current.numString, "1\\t");
}

TEST(Formats, Catalogs)
{
    const std::string catalog = "<PgfCatalog <Pgf <PgfTag `A'> <PgfAlignment Center> <PgfLIndent 0.5\"> <Bogus 1>>"
                                "<Pgf <PgfTag `A'> <PgfAlignment Right>> <Pgf <PgfTag `a'> <PgfAlignment LeftRight>>>";
    EXPECT_EQ(tokensWith(catalog, "<PgfTag `A'><String `x'><PgfTag `a'><String `y'>"),
              "para-format left=720 right=1440 first=0 alignment=center\ntext \"x\"\n"
              "para-format left=720 right=1440 first=0 alignment=left-right\ntext \"y\"\n");
    // A tag that the catalog does not know is defined by the next Pgf.
    EXPECT_EQ(tokensOf("<PgfTag `New'><String `x'><Pgf <PgfAlignment Right>><String `y'><Pgf <PgfAlignment Left>>"
                       "<String `z'><PgfTag `New'><String `w'>"),
              "text \"x\"\npara-format left=1440 right=1440 first=0 alignment=right\ntext \"y\"\n" + indents +
                  "text \"z\"\n" + "para-format left=1440 right=1440 first=0 alignment=right\ntext \"w\"\n");
    EXPECT_EQ(stateAfter("<PgfTag `'>").styleChanged, 0U);
    EXPECT_EQ(stateAfter("<PgfLIndent 1\"><String `a'><Para >").styleChanged, 0U) << "no mode is on";
    // A format keeps 4096 statements, its tag among them.
    const auto repeated = [](size_t count) {
        std::string statements = "<Pgf <PgfTag `A'> <FSize 1>";
        for (size_t statement = 2; statement < count; ++statement) {
            statements += "<X 1>";
        }
        return statements + "<FSize 2>>";
    };
    EXPECT_EQ(fontSizeAfter("<PgfCatalog " + repeated(4095) + ">"), 2);
    EXPECT_EQ(fontSizeAfter("<PgfCatalog " + repeated(4096) + ">"), 1);
    // Selecting a format decides anew whether anything differs.
    EXPECT_EQ(stateAfter("<PgfCatalog <Pgf <PgfTag `A'> <PgfLIndent 1\">>><FSize 3><String `x'><FSize 4><PgfTag `A'>")
                  .styleChanged,
              0U);
    // A font tag brings the paragraph's format back; an unknown one switches the modes off first.
    const std::string fonts = "<FontCatalog <Font <FTag `E'> <FAngle Italic>>><PgfTag `B'><Pgf <FSize 9>>";
    EXPECT_EQ(tokensWith(fonts, "<FBold Yes><FSize 12><String `x'><FTag `E'><String `y'><FTag `'><String `z'>"),
              indents + "font number=0 size=12\nattribute bold on\ntext \"x\"\nfont number=0 size=9\ntext \"y\"\n"
                        "attribute bold off\nattribute bold on\ntext \"z\"\n");
}

// A definition that cannot be carried out to its end stays open: what follows goes on being stored.
TEST(Formats, DefinitionsThatFail)
{
    const std::string failing = "<PgfCatalog <Pgf <PgfTag `A'> <FSize 3> <PgfNumTabs -1> <FSize 5>>>";
    EXPECT_EQ(fontSizeAfter(failing), 3);
    EXPECT_EQ(fontSizeAfter(failing + "<Pgf <FSize 7>><FSize 1><PgfTag `B'><Pgf <FSize 8>>"), 8);
    EXPECT_EQ(fontSizeAfter(failing + "<FontCatalog <Font <FTag `E'>>><Font <FSize 7>>"), 3);
    EXPECT_EQ(fontSizeAfter("<FontCatalog <Font <FTag `E'>>><Font <FSize 7>>"), 7);
    EXPECT_EQ(fontSizeAfter("<FontCatalog <Font <FTag `'> <FSize 4>> <Font <FTag `'> <FSize 5>>>"), 0);
    // One without a tag adds nothing to those that have one.
    EXPECT_EQ(fontSizeAfter("<PgfCatalog <Pgf <PgfTag `A'> <FSize 4>> <Pgf <PgfTag `'> <FSize 5>>><PgfTag `A'>"), 4);
}

// A definition that is still to come when a table is replayed stays so: the cells have their own formats.
TEST(Formats, DefinitionsThatWaitDuringAReplay)
{
    const std::string cell = "<Row <Cell <Para <Pgf <PgfLIndent 2> <PgfRIndent 2>> <Font <FSize 8>> <String `c'>>>>";
    const std::string table = "<Tbls <Tbl <TblID 1> " + cell + ">>";
    const std::string inCell =
        "para-format left=2880 right=2880 first=0 alignment=left\nfont number=0 size=8\ntext \"c\"\n"
        "line-break\npara-end\ncell-end\ntable-end\n";
    const std::string before = "<PgfLIndent 1\"><PgfRIndent 1\"><FSize 0>";
    EXPECT_EQ(tokensOf(table + before + "<PgfTag `New'><ATbl 1><Pgf <FSize 9>><String `a'>" + before +
                       "<PgfTag `New'><FSize 7><String `b'>"),
              inCell + "font number=0 size=9\ntext \"a\"\n" + indents + "font number=0 size=7\ntext \"b\"\n");
    EXPECT_EQ(tokensOf(table + before + "<FontCatalog <FTag `New'>><ATbl 1><Font <FSize 9>><FSize 7><String `a'>"),
              inCell + "font number=0 size=7\ntext \"a\"\n");
}

// The number that the output tells of a font is the host's, counted from 0; without an answer it is 0.
TEST(Formats, NumbersOfFonts)
{
    for (const uint32_t answer : {0U, 1U, 7U}) {
        TestHost host(documentOf("<PgfLIndent 0><PgfRIndent 0><FFamily `F'><String `a'>"));
        uint32_t stored = 0;
        uint32_t number = answer;
        const auto notify = [](void *cookie, uint32_t /*code*/, void * /*data*/) {
            return *static_cast<uint32_t *>(cookie);
        };
        MifContext *context = mifAllocateContext(&number, notify, &stored, host.services(), 0);
        ASSERT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
        Conversion conversion;
        host.fill(context, conversion);
        EXPECT_NE(listing(conversion).find("font number=" + std::to_string(answer == 0 ? 0 : answer - 1) + " size=0"),
                  std::string::npos);
        host.close(context);
    }
}

TEST(Formats, TabStops)
{
    EXPECT_EQ(
        tokensOf(
            "<PgfLIndent 0><PgfRIndent 0><PgfNumTabs 3><TabStop <TSX 1.0\"> <TSType Right>><TSX 2.5\"><TSType "
            "Center><TSType Decimal><TSX 72 pt><TSX 9\">"
            "<FSize 1><String `a'><PgfNumTabs 3><TSX 0.5\"><FSize 2><String `b'><PgfNumTabs x><FSize 3><String `c'>"),
        "font number=0 size=1\ntab-stops right=1440 center=3600 left=1440\ntext \"a\"\n"
        "font number=0 size=2\ntab-stops right=720 center=3600 left=1440\ntext \"b\"\n"
        "font number=0 size=3\ntab-stops none\ntext \"c\"\n");
    // Stops that are named are the same as those that are not, if they are at 0.
    std::string zeros = "<PgfNumTabs 100><TSX 0><FSize 1><String `a'><PgfNumTabs 9><PgfNumTabs 100>";
    for (int stop = 0; stop < 20; ++stop) {
        zeros += "<TSX 0>";
    }
    const std::string before = tokensOf(zeros);
    const std::string behind = "font number=0 size=2\ntext \"b\"\n";
    EXPECT_EQ(tokensOf(zeros + "<FSize 2><String `b'>"), before + behind);
    EXPECT_NE(tokensOf(zeros + "<TSX 1><FSize 2><String `b'>"), before + behind);
    EXPECT_EQ(stateAfter("<PgfNumTabs 2><PgfNumTabs -1><TSX 1\">").current.tabCount, 0);
    const std::string many = documentOf("<PgfNumTabs 100000><FSize 9><String `a'>");
    EXPECT_EQ(convert(many, {.bufferSize = 1 << 18}).result, 6) << "larger than the buffer";
    EXPECT_EQ(convert(many, {.bufferSize = 1 << 20}).result, 0);
}

TEST(Formats, NumberTexts)
{
    const std::string flush = "<PgfLIndent 0><PgfRIndent 0>";
    const std::string para = "line-break\npara-end\n";
    EXPECT_EQ(
        tokensOf(flush + "<Para <PgfNumString `1\\t'> <String `a'><FSize 9><String `b'>><Para <FSize 8><String `c'>>"),
        "tab\ntext \"1 \"\ntext \"a\"\nfont number=0 size=9\ntext \"b\"\n" + para +
            "font number=0 size=8\ntext \"c\"\n" + para);
    EXPECT_EQ(tokensOf(flush + "<Para <PgfNumString `1'>><Para <String `b'>>"),
              "text \"1\"\n" + para + "text \"b\"\n" + para)
        << "without any text, before the line break";
    EXPECT_EQ(tokensOf("<Para <PgfNumString `1'> <PgfLIndent 0><PgfRIndent 0><FBold Yes>>"),
              "attribute bold on\ntext \"1\"\nattribute bold off\n" + para)
        << "and with the format";
    EXPECT_EQ(tokensOf(flush + "<Para <TextRectID 8> <PgfNumString `1'>><Para <TextRectID 9> <String `b'>>"),
              "text \"b\"\n" + para)
        << "not body text";
    EXPECT_EQ(tokensOf(flush + "<Para <PgfNumString `1'><Notes <Para <String `n'>>><String `b'>>"),
              "text \"1\"\ntext \"b\"\n" + para);
    // A table or a footnote in the paragraph has its own numbers.
    const std::string table = "<Tbls <Tbl <TblID 1> <Row <Cell <Para <PgfNumString `c'> <FSize 9> <String `cell'>>>>>>";
    EXPECT_EQ(tokensOf(table + flush + "<Para <PgfNumString `1'> <ParaLine <ATbl 1> <String `a'>>>"),
              "font number=0 size=9\ntext \"c\"\ntext \"cell\"\n" + para +
                  "cell-end\ntable-end\ntext \"1\"\ntext \"a\"\n" + para);
    EXPECT_EQ(tokensOf(table + flush + "<Para <PgfNumString `1'> <ParaLine <ATbl 1>>>"),
              "font number=0 size=9\ntext \"c\"\ntext \"cell\"\n" + para + "cell-end\ntable-end\ntext \"1\"\n" + para);
    for (const char *const inside : {"<AFrames <Frame <Para <PgfNumString `f'> <String `f'>>>>", "<Notes <Para >>",
                                     "<Tbls <Tbl <Para <PgfNumString `t'>>>>"}) {
        EXPECT_EQ(tokensOf(flush + "<Para <PgfNumString `1'> " + inside + "<String `a'>>"),
                  "text \"1\"\ntext \"a\"\n" + para)
            << inside;
    }
    EXPECT_EQ(tokensOf(flush + "<Para <PgfNumString `1'> <Para <PgfNumString `2'> <String `b'>> <String `a'>>"),
              "text \"2\"\ntext \"b\"\n" + para + "text \"1\"\ntext \"a\"\n" + para);
    // The paragraph that a table leaves open is not the one that comes next.
    EXPECT_EQ(tokensOf("<Tbls <Tbl <TblID 1> <Row <Cell <Para <PgfNumString `c'> <Tbl 0>>>>>>" + flush +
                       "<Para <ParaLine <ATbl 1> <Para <String `b'>>>>"),
              "table-end\ntext \"b\"\n" + para + para);
    // Neither a selected format nor a font tag takes it away.
    EXPECT_EQ(tokensWith("<PgfCatalog <Pgf <PgfTag `N'> <PgfLIndent 1\"> <PgfRIndent 1\">>><FontCatalog <Font <FTag "
                         "`Emphasis'>>>",
                         "<String `a'><Para <PgfNumString `2.\\t'> <PgfTag `N'> <ParaLine <Font <FTag `Emphasis'>> "
                         "<String `Two'>>>"),
              indents + "text \"a\"\ntab\ntext \"2. \"\ntext \"Two\"\n" + para);
    // Outside of paragraphs it waits for the next text, and not longer than the next paragraph.
    EXPECT_EQ(tokensOf(flush + "<PgfNumString `1'><Para <PgfNumString `2'> <String `a'>>"),
              "text \"1\"\ntext \"2\"\ntext \"a\"\n" + para);
    EXPECT_EQ(tokensOf(flush + "<PgfNumString `1'><Para ><Para <String `a'>>"), para + "text \"a\"\n" + para);
    EXPECT_EQ(tokensOf(flush + "<PgfNumString `" + std::string(200, 'n') + "'><String `b'>"),
              "text \"" + std::string(159, 'n') + "\"\ntext \"b\"\n");
}

TEST(Formats, Variables)
{
    const std::string catalog =
        "<VariableFormats <VariableFormat <VariableName `V'> <VariableDef `<$a\\><$b\\>Rev \\xd2 A<open'>>"
        "<VariableFormat <VariableName `V'> <VariableDef `second'>> <VariableName `none'> <VariableName `E'>"
        "<VariableDef `<$a\\>'>>";
    const auto reference = [](const std::string &name) { return "<Variable <VariableName `" + name + "'>>"; };
    EXPECT_EQ(
        tokensWith(catalog, reference("V") + reference("V") + reference("v") + reference("none") + reference("E")),
        "text \"Rev \\x93A<open\"\ntext \"Rev \\x93A<open\"\ntext \"\"\n");
    EXPECT_EQ(tokensOf("<VariableDef `x'>" + reference("V")), "");
    EXPECT_EQ(tokensOf("<VariableFormats <VariableName > <VariableDef `x'>><Variable <VariableName >>"), "text \"x\"\n")
        << "a name without a character";
    EXPECT_EQ(tokensWith(catalog, "<Notes " + reference("E") + "><TextRectID 8>" + reference("E")), "text \"\"\n");
}

TEST(Index, FindsEveryKeyAndKeepsTheFirst)
{
    struct Record : MifIndexNode {
        std::string text;
    };
    MifIndex index{};
    std::vector<Record> records(5000);
    uint32_t random = 1;
    for (Record &record : records) {
        for (random = random * 1664525 + 1013904223; record.text.size() < (random >> 29);) {
            record.text += static_cast<char>(random >> (record.text.size() * 3) & 0x83);
        }
        const auto *before = index.find(record.text.data(), record.text.size());
        index.insert(&record, record.text.data(), record.text.size());
        const auto *found = static_cast<const Record *>(index.find(record.text.data(), record.text.size()));
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found, before != nullptr ? before : &record);
    }
    for (const Record &record : records) {
        const auto *found = static_cast<const Record *>(index.find(record.text.data(), record.text.size()));
        ASSERT_TRUE(found != nullptr && found->text == record.text && found <= &record);
    }
    EXPECT_EQ(index.find("absent", 6), nullptr);
}
