// Text, special characters, pages, and the conversion of escapes.
#include <string>

#include <gtest/gtest.h>

#include "reader/context.h"
#include "support/test_host.h"
#include "text/conversion.h"

using namespace miftest;

TEST(Text, StringsAndParagraphs)
{
    EXPECT_EQ(tokensOf("<Para <String `Hello'>>"), "text \"Hello\"\nline-break\npara-end\n");
    EXPECT_EQ(tokensOf("<String `'><String ><String x>"), "text \"\"\ntext \"\"\ntext \"\"\n");
    EXPECT_EQ(tokensOf(R"(<String `a\tb'>)"), "tab\ntext \"a b\"\n");
    EXPECT_EQ(tokensOf("<Marker <MType 2> <MText `x'>><Marker <MType 9> <MText `x'>>"), "");
    EXPECT_EQ(tokensOf("<Para >"), "line-break\npara-end\n");
}

TEST(Text, SpecialCharacters)
{
    EXPECT_EQ(tokensOf("<Char Tab><Char HardReturn><Char Cent><Char Pound ><Char Yen>"),
              "tab\nline-break\ntext \"\\xa2\"\ntext \"\\xa3\"\ntext \"\\xa5\"\n");
    EXPECT_EQ(tokensOf("<Char HardSpace><Char NumberSpace><Char ThinSpace><Char EnSpace><Char EmSpace>"),
              "text \" \"\ntext \" \"\ntext \" \"\ntext \" \"\ntext \" \"\n");
    EXPECT_EQ(tokensOf("<Char EnDash><Char EmDash><Char Dagger><Char DoubleDagger><Char Bullet>"),
              "text \"-\"\ntext \"-\"\ntext \"\\x86\"\ntext \"\\x87\"\ntext \"\\x95\"\n");
    EXPECT_EQ(tokensOf("<Char SoftHyphen><Char DiscHyphen><Char NoHyphen><Char tab><Char `Tab'><Char Unknown>"), "");
}

TEST(Text, OnlyBodyTextIsWritten)
{
    const std::string content = "<String `s'><Char Yen><Para >";
    const std::string all = "text \"s\"\ntext \"\\xa5\"\nline-break\npara-end\n";
    EXPECT_EQ(tokensOf(content), all);
    for (const char *container : {"Page", "AFrames", "Tbls", "Notes"}) {
        std::string flow = "<";
        flow.append(container).append(" ").append(content).append(">").append(content);
        EXPECT_EQ(tokensOf(flow), all) << container;
    }
    EXPECT_EQ(tokensOf("<TblFormat " + content + ">"), "text \"s\"\n");
    EXPECT_EQ(tokensOf("<TextRectID 8>" + content + "<TextRectID `9'>" + content), all);
}

TEST(Text, TextRectanglesOfBodyPages)
{
    const auto textOf = [](const std::string &pages) {
        const Conversion conversion =
            convert("<MIFFile 5> " + pages + "<String `early'><TextRectID 7><String `a'><TextRectID 8><String `b'>");
        const std::string lines = listing(conversion);
        return lines.substr(lines.find("charset"));
    };
    const std::string none = textOf("");
    EXPECT_EQ(none.find("text"), std::string::npos);
    const std::string onlyA = none + "text \"a\"\n";
    EXPECT_EQ(textOf("<Page <PageType BodyPage > <TextRect <ID 7>>> <Page <PageType Other> <TextRect <ID 8>>>"), onlyA);
    EXPECT_EQ(textOf("<Page <PageType `BodyPage '> <TextRect <ID 7x>> <ID 8>>"), onlyA);
    EXPECT_EQ(textOf("<Page <PageType BodyPage> <TextRect <ID 7>>> <Page <TextRect <ID 8>>>"), onlyA);
    EXPECT_EQ(textOf("<Page <PageType bodypage> <TextRect <ID 7>>>"), none);
    EXPECT_EQ(textOf("<AFrames <Frame <Page <PageType BodyPage> <TextRect <ID 7>>>>>"), none);
}

TEST(Conversion, Escapes)
{
    const auto converted = [](std::string text) {
        MifContext context{};
        mifConvertString(&context, text.data());
        return std::string(text.c_str());
    };
    EXPECT_EQ(converted("plain"), "plain");
    EXPECT_EQ(converted(R"(a\>b \Qx\q a\\b \\q)"), "a>b `x' a\\b \\q");
    EXPECT_EQ(converted(R"(a\nb\)"), R"(a\nb\)");
    EXPECT_EQ(converted(R"(a\tb)"), "a b");
    EXPECT_EQ(converted(R"(\xd2 Hi\xd3 \x41Bc)"), "\x93Hi\x94"
                                                  "Ac");
    EXPECT_EQ(converted(R"(\x8d \x8D \x9e \x9E \xa5 \x05 )"), "\xE7\xED\xFB\xFE\xA5 ");
    EXPECT_EQ(converted(R"(a\x4)"), "a");
    EXPECT_EQ(converted(R"(a\x)"), "a");
    EXPECT_EQ(converted(R"(a\x41)"), "aA");
    EXPECT_EQ(converted(R"(a\x00 b)"), "a");
}

// One sum over all pairs of characters guards the 87 rows and the arithmetic against a wrong digit.
TEST(Conversion, CharacterCodes)
{
    EXPECT_EQ(mifConvertASCIIToHex('d', '2', 0), 0xD2);
    EXPECT_EQ(mifConvertASCIIToHex('F', 'F', 0), 0xFF);
    EXPECT_EQ(mifConvertASCIIToHex('0', '0', 0), 0x00);
    EXPECT_EQ(mifConvertASCIIToHex('D', '2', 1), 0x93);
    EXPECT_EQ(mifConvertASCIIToHex('c', 'd', 1), 0xD5);
    EXPECT_EQ(mifConvertASCIIToHex('C', 'D', 1), 0xCD);
    EXPECT_EQ(mifConvertASCIIToHex('g', ' ', 0), 0xC9);

    size_t mapped = 0;
    size_t sum = 0;
    for (const char first : std::string("0123456789abcdefABCDEF")) {
        for (const char second : std::string("0123456789abcdefABCDEF")) {
            const auto code = static_cast<uint8_t>(first);
            const uint8_t byte = mifConvertASCIIToHex(code, static_cast<uint8_t>(second), 1);
            if (byte != mifConvertASCIIToHex(code, static_cast<uint8_t>(second), 0)) {
                ++mapped;
                sum += byte * (size_t{code} + size_t{3} * static_cast<uint8_t>(second));
            }
        }
    }
    EXPECT_EQ(mapped, 87U);
    EXPECT_EQ(sum, 5114400U);
}
