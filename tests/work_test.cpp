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

Work workOf(const std::string &document)
{
    const Conversion conversion = convert(document, {.bufferSize = 65536});
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
};

} // namespace

// Twice the document, twice the work at most; no byte is read twice, and the stream is moved to be measured alone.
TEST(Work, GrowsWithTheDocument)
{
    for (const Family &family : families) {
        const size_t count = 3000;
        const std::string document = documentOf(family.flow(2 * count));
        const Work once = workOf(documentOf(family.flow(count)));
        const Work twice = workOf(document);
        EXPECT_EQ(twice.bytesRead, document.size()) << family.what;
        EXPECT_LE(twice.reads, document.size() / 2000 + 3) << family.what;
        EXPECT_EQ(twice.seeks, 2U) << family.what;
        EXPECT_LE(twice.allocations, 2 * once.allocations) << family.what;
        EXPECT_LE(twice.peakBytes, 2 * once.peakBytes) << family.what;
    }
}

// Text takes no memory.
TEST(Work, MemoryOfText)
{
    const Work work = workOf(documentOf(families[0].flow(20000)));
    EXPECT_LT(work.peakBytes, 20'000U);
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
         {repeated("< ", count), "<AFrames <Frame " + numbered("<ID %>", count) + ">>",
          "<Pgf <PgfTag a>" + repeated("< >", count), "<FontCatalog " + numbered("<Font <FTag %>>", count),
          "<PgfNumTabs 1000000>" + repeated("<TSX 1>", count),
          "<Page <PageType BodyPage><TextRect " + numbered("<ID %>", count), numbered("<TblID %>", count),
          "<VariableFormats " + numbered("<VariableName `%'>", count), "<String `" + repeated("\\t", 2040) + "'>",
          repeated("<TblNumColumns 4096>", 100)}) {
        const Conversion conversion = convert(documentOf(flow), {.bufferSize = 4200});
        EXPECT_EQ(conversion.result, 0);
    }
}
