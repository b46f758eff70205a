// Numbers and measurements.
#include <clocale>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "reader/units.h"
#include "support/test_host.h"

using namespace miftest;

TEST(Units, TwipsPerUnit)
{
    for (const auto &[text, twips] : {std::pair{"0.25\"", 1440},
                                      {"1in", 1440},
                                      {"12.0 pt", 20},
                                      {"1 point", 20},
                                      {"2.5 cm", 567},
                                      {"1centimeter", 567},
                                      {"1.5mm", 57},
                                      {"1 millimeter", 57},
                                      {"1 pc", 240},
                                      {"1pica", 240},
                                      {"1 dd", 21},
                                      {"1 didot", 21},
                                      {"1cc", 256},
                                      {"1 cicero", 256},
                                      {"3", 1440},
                                      {"", 1440},
                                      {"12.0 PT", 1440},
                                      {"12.0 pt ", 1440},
                                      {"-3.0 pt", 1440}}) {
        EXPECT_EQ(mifSetTwipsPerUnit(text), twips) << text;
    }
    EXPECT_EQ(mifSetTwipsPerUnit((std::string(76, '1') + "pt").c_str()), 20);
    EXPECT_EQ(mifSetTwipsPerUnit((std::string(77, '1') + "pt").c_str()), 1440);
}

TEST(Units, MeasurementsAreExactInEveryLocale)
{
    const bool comma = setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    EXPECT_TRUE(comma) << "the locale de_DE.UTF-8 is not installed";
    for (const auto &[text, twips] : {std::pair{"0.7\"", 1007},
                                      {"0.3 pt", 5},
                                      {"0.25\"", 360},
                                      {"2.0 pt", 40},
                                      {"12.0 pt", 240},
                                      {"2.5 cm", 1417},
                                      {"1.5mm", 85},
                                      {"3", 4320},
                                      {"-0.1\"", -144},
                                      {"-3.0 pt", -4320},
                                      {"5.95 pt", 119},
                                      {"8.27\"", 11908},
                                      {" +1.5e1\"", 21600},
                                      {"0x1p1", 2880},
                                      {"0X.8", 720},
                                      {"0x-5", 0},
                                      {"0xinf", 0},
                                      {"-0xnan", 0},
                                      {"x", 0},
                                      {"", 0},
                                      {"--1", 0},
                                      {"nan", 0},
                                      {"1e-400", 0},
                                      {"0.0003", 0},
                                      {"0.0001", 0}}) {
        EXPECT_EQ(mifParseTwips(text), twips) << text;
    }
    setlocale(LC_ALL, "C");
}

TEST(Units, NumbersThatDoNotFitSaturate)
{
    for (const char *text : {"1e9", "1e400", "inf", "1491309 in"}) {
        EXPECT_EQ(mifParseTwips(text), INT32_MAX) << text;
        EXPECT_EQ(mifParseTwips((std::string("-") + text).c_str()), INT32_MIN) << text;
    }
    EXPECT_EQ(mifParseTwips((std::string(400, '9') + "e-395").c_str()), 144000000);
    const std::string zeros(400, '0');
    for (const auto &[text, twips] : {std::pair{"1" + zeros, INT32_MAX},
                                      {"0." + zeros + "1", 0},
                                      {"0x1" + zeros, INT32_MAX},
                                      {"0x0." + zeros + "1p500", 0}}) {
        EXPECT_EQ(mifParseTwips(text.c_str()), twips) << text;
    }
    for (const auto &[text, value] : {std::pair{"17", 17},
                                      {" \t-5x", -5},
                                      {"+8", 8},
                                      {"", 0},
                                      {"x1", 0},
                                      {"+-1", 0},
                                      {"2147483647", INT32_MAX},
                                      {"99999999999999999999", INT32_MAX},
                                      {"-99999999999999999999", INT32_MIN}}) {
        EXPECT_EQ(mifParseInteger(text), value) << text;
    }
}

TEST(Units, MeasurementLists)
{
    const auto pageSizeOf = [](const std::string &value) {
        MifMeasurementList list(value.c_str());
        const int32_t width = list.next();
        return std::pair{width, list.next()};
    };
    EXPECT_EQ(pageSizeOf(" 8.5\" 11.0\""), std::pair(12240, 15840));
    EXPECT_EQ(pageSizeOf(" 8.27\" 11.69\""), std::pair(11908, 16833));
    EXPECT_EQ(pageSizeOf("8.5\" 11.0\""), std::pair(15840, 0));
    EXPECT_EQ(pageSizeOf(" 612.0 pt 792.0 pt"), std::pair(12240, 15840));
    EXPECT_EQ(pageSizeOf("612.0 pt 792.0 pt"), std::pair(15840, 0));
    EXPECT_EQ(pageSizeOf(" 72pt 10 furlongs"), std::pair(1440, 14400));
    EXPECT_EQ(pageSizeOf(" 1 cm 2"), std::pair(567, 2880));
    EXPECT_EQ(pageSizeOf(" 72. pt 36. pt"), std::pair(1440, 720));
    EXPECT_EQ(pageSizeOf(" 1 @ 2"), std::pair(1440, 0));
    EXPECT_EQ(pageSizeOf(" 1.0\"  2.0\""), std::pair(1440, 2880));
    EXPECT_EQ(pageSizeOf(" 6\" x 4\""), std::pair(8640, 0));
    EXPECT_EQ(pageSizeOf(" "), std::pair(0, 0));
    EXPECT_EQ(pageSizeOf(""), std::pair(0, 0));
}

TEST(Units, PageSizeAndDocumentUnit)
{
    TestHost host("<MIFFile 5>\n<Page <PageSize  21.0 cm 29.7 cm>>\n<Units Upica>\n<Units >\n");
    MifContext *context = host.open();
    ASSERT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
    EXPECT_EQ(context->units.documentUnit, 1440);
    Conversion conversion;
    host.fill(context, conversion);
    EXPECT_EQ(context->pages.pageWidth, 11907);
    EXPECT_EQ(context->pages.pageHeight, 16839);
    EXPECT_EQ(context->units.documentUnit, 1440) << "an empty value is no unit";
    host.close(context);
    for (const auto &[name, twips] : {std::pair{"Uin", 1440},
                                      {"Ucm", 567},
                                      {"Umm", 57},
                                      {"Upica", 240},
                                      {"Upt", 20},
                                      {"Udd", 21},
                                      {"Ucc", 256},
                                      {"upt", 1440}}) {
        TestHost named(std::string("<MIFFile 5>\n<Units ") + name + ">\n");
        context = named.open();
        ASSERT_EQ(mifInitDoc(context, nullptr, 0, named.stream()), 0);
        named.fill(context, conversion);
        EXPECT_EQ(context->units.documentUnit, twips) << name;
        named.close(context);
    }
}
