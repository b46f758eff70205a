// What the library asks of its host grows with the document and no faster: counted, not timed.
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "support/test_host.h"

using namespace miftest;

namespace
{

std::string repeated(const std::string &text, size_t count)
{
    std::string result;
    for (size_t time = 0; time < count; ++time) {
        result.append(text);
    }
    return result;
}

// The text once for each number, which stands for `%`.
std::string numbered(const std::string &text, size_t count)
{
    std::string result;
    for (size_t number = 0; number < count; ++number) {
        for (const char byte : text) {
            byte == '%' ? result.append(std::to_string(number)) : result.append(1, byte);
        }
    }
    return result;
}

Work workOf(const std::string &document, bool isExtended = false)
{
    const Conversion conversion = convert(document, {.isExtended = isExtended, .bufferSize = 65536});
    EXPECT_EQ(conversion.result, 0);
    return conversion.work;
}

struct Family {
    const char *what;
    std::function<std::string(size_t)> flow;
};

const Family families[] = {
    {"text", [](size_t n) { return repeated("<Para <ParaLine <String `The quick brown fox'> > >\n", n); }},
    {"tags",
     [](size_t n) {
         return "<PgfCatalog " + numbered("<Pgf <PgfTag `Tag%'> <PgfLIndent % pt>>\n", n) + ">" +
                numbered("<Para <PgfTag `Tag%'> <String `x'>>\n", n);
     }},
    {"variables",
     [](size_t n) {
         return "<VariableFormats " + numbered("<VariableName `N%'><VariableDef `value %'>\n", n) + ">" +
                numbered("<Variable <VariableName `N%'>>\n", n);
     }},
    {"rectangles",
     [](size_t n) {
         return numbered("<Page <PageType BodyPage> <TextRect <ID %>>>\n", n) + numbered("<TextRectID %>\n", n);
     }},
    {"frames",
     [](size_t n) {
         return "<AFrames " + numbered("<Frame <ID %> <ImportObject\n=A\n&data\n=EndInset\n>>\n", n) + ">" +
                numbered("<AFrame %>\n", n);
     }},
    {"nesting", [](size_t n) { return repeated("<A ", n) + repeated(">", n); }},
    {"macros", [](size_t n) { return repeated("define(x)\n", n); }},
    {"open macros", [](size_t n) { return repeated("define ", n); }},
    {"open brackets", [](size_t n) { return repeated("<", n); }},
    {"comments", [](size_t n) { return repeated("# c\n", n); }},
    {"one line", [](size_t n) { return "<String `" + repeated("x", n) + "'>"; }},
    {"notes",
     [](size_t n) {
         return "<Notes " + numbered("<FNote <ID %> <Para <String `x'>>>\n", n) + ">" +
                numbered("<Para <FNote %>>\n", n);
     }},
    {"markers", [](size_t n) { return numbered("<Para <Marker <MType 8> <MText `newlink %'>><String `x'>>\n", n); }},
    {"conditions",
     [](size_t n) {
         return "<ConditionCatalog " + numbered("<Condition <CTag `T%'> <CState CHidden>>\n", n) + ">" +
                numbered("<Para <Conditional <InCondition `T%'>> <String `x'>>\n", n);
     }},
    {"colors",
     [](size_t n) {
         return "<ColorCatalog " + numbered("<Color <ColorTag `C%'> <ColorCyan 5>>\n", n) + ">" +
                numbered("<Para <FColor `C%'> <String `x'>>\n", n);
     }},
    {"table formats",
     [](size_t n) {
         return "<TblCatalog " + numbered("<TblFormat <TblTag `T%'> <TblLRuling `R%'>>\n", n) + ">" +
                numbered("<RulingCatalog <Ruling <RulingTag `R%'>>>\n", n);
     }},
    {"nested paragraphs", [](size_t n) { return repeated("<Para <String `x'>", n) + repeated(">", n); }},
};

} // namespace

// Twice the document, twice the work at most; no byte is read twice, and the stream is moved to be measured alone.
TEST(Work, GrowsWithTheDocument)
{
    for (const Family &family : families) {
        for (const bool isExtended : {false, true}) {
            SCOPED_TRACE(std::string(family.what) + (isExtended ? ", extended" : ""));
            const size_t count = 3000;
            const std::string document = documentOf(family.flow(2 * count));
            const Work once = workOf(documentOf(family.flow(count)), isExtended);
            const Work twice = workOf(document, isExtended);
            EXPECT_EQ(twice.bytesRead, document.size());
            EXPECT_LE(twice.reads, document.size() / 2000 + 3);
            EXPECT_EQ(twice.seeks, 2U);
            EXPECT_LE(twice.allocations, 2 * once.allocations);
            EXPECT_LE(twice.peakBytes, 2 * once.peakBytes);
        }
    }
}

// Text takes no memory.
TEST(Work, MemoryOfText)
{
    for (const bool isExtended : {false, true}) {
        const Work work = workOf(documentOf(families[0].flow(20000)), isExtended);
        EXPECT_LT(work.peakBytes, isExtended ? 60'000U : 20'000U);
    }
}

// An anchor costs one pass over its table, and the stretches that the table and the anchor stand in.
TEST(Work, OfAnchors)
{
    const size_t anchors = 200;
    for (const size_t rows : {size_t{1}, size_t{300}}) {
        const std::string table =
            "<Tbl <TblID 1> " + repeated("<Row <Cell <CellContent <Para <String `cell'>>>>>\n", rows) + ">\n";
        const std::string document = documentOf("<Tbls " + table + ">" + repeated("<ATbl 1>\n", anchors));
        const Work work = workOf(document);
        EXPECT_LE(work.bytesRead, document.size() + anchors * (table.size() + size_t{2} * 4096));
        EXPECT_EQ(work.seeks, 2 + 4 * anchors);
    }
}

// The records that cost most for each byte of the document, and what does not depend on its size: the host holds all
// against its bound.
TEST(Work, MemoryIsBoundedByTheDocument)
{
    const size_t count = 50000;
    for (const std::string &flow :
         {repeated("< ", count),
          "<AFrames <Frame " + numbered("<ID %>", count) + ">>",
          "<Pgf <PgfTag a>" + repeated("< >", count),
          "<FontCatalog " + numbered("<Font <FTag %>>", count),
          "<PgfNumTabs 1000000>" + repeated("<TSX 1>", count),
          "<Page <PageType BodyPage><TextRect " + numbered("<ID %>", count),
          numbered("<TblID %>", count),
          "<VariableFormats " + numbered("<VariableName `%'>", count),
          "<String `" + repeated("\\t", 2040) + "'>",
          repeated("<TblNumColumns 4096>", 100),
          repeated("<Para ", count),
          repeated("<Notes <FNote <Para <XRef <XRefSrcText `x'>>", count),
          "<ColorCatalog " + numbered("<ColorTag %>", count),
          "<ConditionCatalog " + numbered("<CTag %>", count),
          "<RulingCatalog " + numbered("<RulingTag %>", count),
          numbered("<FColor %>", count),
          numbered("<FFamily %>", count),
          "<TblCatalog " + numbered("<TblFormat <TblTag %>>", count),
          "<TblCatalog " + numbered("<TblFormat <TblTag %><TblColumnNum 4095><TblColumnWidth 1>>", count),
          "<TblCatalog <TblFormat " + numbered("<TblLRuling %><TblBodyColor %>", count),
          numbered("<AFrames <Frame <ID %><ImportObject <ImportObFile %>>", count),
          "<PgfCatalog <Pgf <PgfTag a>" + repeated("<TabStop <TSX 1>>", count)}) {
        for (const bool isExtended : {false, true}) {
            const Conversion conversion =
                convert(documentOf(flow), {.isExtended = isExtended, .bufferSize = isExtended ? 40'000U : 4200});
            EXPECT_EQ(conversion.result, 0) << flow.substr(0, 60);
        }
    }
}
