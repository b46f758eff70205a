// The statement grammar, seen through the text that comes out, and the fill cycle.
#include <algorithm>
#include <string>

#include <gtest/gtest.h>
#include <sys/mman.h>

#include "mifreader/tokens.h"
#include "reader/context.h"
#include "reader/drive/statement_table.h"
#include "reader/drive/suspension.h"
#include "reader/source.h"
#include "reader/statement.h"
#include "support/test_host.h"

using namespace miftest;

namespace
{

struct GrammarCase {
    const char *what;
    const char *flow;
    const char *tokens;
};

const GrammarCase grammarCases[] = {
    {"an escaped bracket does not end a quoted value", R"(<String `a\>b'>)", "text \"a>b\"\n"},
    {"a bare bracket ends it; the rest of the line is stray text", "<String `a>b'><String `lost'>\n<String `c'>",
     "text \"\"\ntext \"c\"\n"},
    {"trailing blanks are no part of the value", "<String `Body'   >", "text \"Body\"\n"},
    {"inner statements come before the ones around them", "<Para <String `a'> > <String `b'>",
     "text \"a\"\nline-break\npara-end\ntext \"b\"\n"},
    {"empty statements run no handler", "<Para><String><>x\n<String `a'>", "text \"a\"\n"},
    {"unknown statements are ignored, their content is not", "<Book 7><Book <Para <String `a'>>>",
     "text \"a\"\nline-break\npara-end\n"},
    {"names are whole and in their own case", "<string `a'><Strings `b'><String\t`c'>", "text \"c\"\n"},
    {"names that begin alike", "<TextRectIX 8    ><TextRectID 8    ><String `a'>", ""},
    {"a name longer than every name",
     ("<String"
      "0123456789012345678901234567890123456789012345678901234567890123456789012345 `a'>"),
     ""},
    {"comments between statements, with either line end", "# a <String `x'>\r\n<String `a'> # b > `\n\n<String `b'>",
     "text \"a\"\ntext \"b\"\n"},
    {"a number sign in quotes is no comment", "<String `a#b'>", "text \"a#b\"\n"},
    {"a comment inside a value takes the value away", "<String x # `b'\n><String `c'>", "text \"c\"\n"},
    {"behind a backquote nothing but the bracket counts", "<String `a' # <b define`'>", "text \"a' # <b define`\"\n"},
    {"stray text is ignored up to its line's end", "words <String `x'>\n= & <String `y'>\n<String `a'>",
     "text \"a\"\n"},
    {"a statement with a nested one has no value", "<String a <String `b'>>", "text \"b\"\n"},
    {"closing brackets too many", "> > <String `a'> ", "text \"a\"\n"},
    {"macros are reported and passed over", "define(x, <String `y'>) # c\n<String `a'>\ninclude (f)<String `b'>",
     "text \"define macro statement encountered\"\ntext \"a\"\n"
     "text \"include statment encountered\"\ntext \"b\"\n"},
    {"a macro inside a value takes the value away", "<String x define(y) >\n<String `a include(b)'>",
     "text \"define macro statement encountered\"\ntext \"a include(b)\"\n"},
    {"an include inside a value", "<String x include(y) >", "text \"include statment encountered\"\n"},
    {"words that begin like macros", "defin (<String `x'>\nincl\n<String `a'>", "text \"a\"\n"},
    {"and at the document's end", "<Para <String `a'> d\n>", "text \"a\"\nline-break\npara-end\n"},
    {"a macro without an end", "<String `a'> defines <String `x'>",
     "text \"a\"\ntext \"define macro statement encountered\"\n"},
};

} // namespace

TEST(Scanner, Grammar)
{
    for (const GrammarCase &test : grammarCases) {
        EXPECT_EQ(tokensOf(test.flow), test.tokens) << test.what;
    }
}

TEST(Scanner, AZeroByteEndsWhatCountsOfAName)
{
    std::string flow = "<Para <String_x `a'> <Str_ng `b'>>";
    std::replace(flow.begin(), flow.end(), '_', '\0');
    EXPECT_EQ(tokensOf(flow), "text \"a\"\nline-break\npara-end\n");
}

TEST(Scanner, StatementsThatDoNotFitInAStretchAreDropped)
{
    const std::string filler(5000, 'x');
    EXPECT_EQ(tokensOf("<String `a'> <String `" + filler + "'>\n<String `b'>"), "text \"a\"\ntext \"b\"\n");
    const std::string fits(4000, 'x');
    EXPECT_EQ(tokensOf("<String `" + fits + "'>"), "text \"" + fits + "\"\n");
}

// The aim: what a document gives does not depend on where the stretches end.
TEST(Scanner, EveryPlaceOfAStretchEndGivesTheSame)
{
    const std::string flow = "<Para <ParaLine <String `one \\x8e '> # comment\r\n <Char Tab>  <Notes <String `n'>>\n"
                             "stray\n <String `two'> <Page <PageType RightMasterPage>> <TextRectID 9>>>";
    const std::string expected = convert(documentOf(flow)).stream;
    for (size_t bytes = 1; bytes <= documentOf(flow).size(); ++bytes) {
        EXPECT_EQ(convert(documentOf(flow), {.bytesPerRead = bytes}).stream, expected) << bytes;
    }
    for (size_t shift = 0; shift < 400; ++shift) {
        const std::string comment = "#" + std::string(3700 + shift, 'c') + "\n";
        EXPECT_EQ(convert(documentOf(comment + flow)).stream, expected) << shift;
    }
}

// One notice wherever the stretches end: at the macro's end, where it is given up, or at the document's end.
TEST(Scanner, AMacroIsReportedOnce)
{
    const std::string notice = "text \"define macro statement encountered\"\n";
    const auto tokensBehind = [](size_t shift, const std::string &flow) {
        return tokensOf("#" + std::string(4000 + shift, 'c') + "\n" + flow);
    };
    for (size_t shift = 0; shift < 100; ++shift) {
        EXPECT_EQ(tokensBehind(shift, "define(x,\n<String `b'>)<String `a'>"), notice + "text \"a\"\n") << shift;
    }
    const std::string filler(5000, 'x');
    for (size_t shift = 0; shift < 4200; shift += 100) {
        EXPECT_EQ(tokensBehind(shift, "define(" + filler + ")\n<String `a'>"), notice + "text \"a\"\n") << shift;
        EXPECT_EQ(tokensBehind(shift, "define(" + filler.substr(0, 4080)), notice) << shift;
    }
}

TEST(FillCycle, Header)
{
    const auto resultOf = [](const std::string &document) { return convert(document).result; };
    EXPECT_EQ(resultOf(""), 6);
    EXPECT_EQ(resultOf("<MIFFile"), 6);
    EXPECT_EQ(resultOf(" <MIFFile 5.00>"), 6);
    EXPECT_EQ(resultOf("\xEF\xBB\xBF<MIFFile 5.00>"), 6);
    EXPECT_EQ(resultOf("<miffile 5.00>"), 6);
    EXPECT_EQ(resultOf("<MIFFile 5.00" + std::string(5000, ' ') + ">"), 6);
    EXPECT_EQ(resultOf("<MIFFile>"), 0);
    EXPECT_EQ(convert("", {.bufferSize = 1}).percent, 100) << "nothing is left";

    const auto headerOf = [](const std::string &header, double version, const char *comment) {
        TestHost host(header + "<Units Ucm>\n");
        MifContext *context = host.open();
        ASSERT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
        Conversion conversion;
        host.fill(context, conversion);
        EXPECT_EQ(context->header.version, version) << header;
        EXPECT_STREQ(context->header.comment, comment) << header;
        EXPECT_EQ(context->units.documentUnit, 567) << header;
        host.close(context);
    };
    headerOf("<MIFFile 5.00> # Generated file\n", 5.0, "Generated file");
    headerOf("<MIFFile \t7.5 >\r\n", 7.5, nullptr);
    headerOf("<MIFFile x> #\n", 0.0, "");
    headerOf("<MIFFile 5.00>#a\r\n\r\n", 5.0, "a");
}

// Nine tenths of the largest ones do not fit in 32 bits when they are formed.
TEST(FillCycle, BuffersOfUpToFourGigabytes)
{
    const size_t reserved = UINT32_MAX;
    void *buffer = mmap(nullptr, reserved, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (buffer == MAP_FAILED) {
        GTEST_SKIP() << "there is no room for one, as on a machine of 32 bits";
    }
    for (const uint32_t size : {477'218'588U, 477'218'589U, UINT32_MAX}) {
        TestHost host(documentOf("<String `a'>"));
        MifContext *context = host.open();
        ASSERT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
        uint32_t written = 0;
        int32_t percent = 0;
        EXPECT_EQ(mifFillBuffer(context, static_cast<uint8_t *>(buffer), &written, &percent, size), 0) << size;
        EXPECT_EQ(percent, 100);
        EXPECT_EQ(context->output.outputLimit, uint64_t{size} * 9 / 10);
        host.close(context);
    }
    munmap(buffer, reserved);
}

TEST(FillCycle, PreambleAndPercent)
{
    const std::string preamble(
        "\x10\x26\x00\x00\x00\x02\xD0\x2F\x00\x00\xE0\x3D\x00\x00\xA0\x05\x00\x00\xA0\x05\x00\x00"
        "\xA0\x05\x00\x00\xA0\x05\x00\x00\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x12\x06\x00\x00\x00\x00"
        "\x1B\x09\x00\x00\x00\x07\x00\x00\x00",
        53);
    EXPECT_EQ(convert("<MIFFile 5.00>").stream, preamble);

    // The percentage begins at 0.
    Conversion beginning;
    TestHost patient(documentOf("<String `a'>" + std::string(450000, ' ')), {.bufferSize = 60});
    MifContext *first = patient.open();
    ASSERT_EQ(mifInitDoc(first, nullptr, 0, patient.stream()), 0);
    patient.fill(first, beginning);
    EXPECT_EQ(beginning.percent, 0);
    patient.close(first);

    // After the end further calls write nothing.
    TestHost host(documentOf("<String `a'>"));
    MifContext *context = host.open();
    ASSERT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
    Conversion conversion;
    for (int call = 0; call < 3; ++call) {
        host.fill(context, conversion);
        EXPECT_EQ(conversion.result, 0);
        EXPECT_EQ(conversion.percent, 100);
        EXPECT_EQ(conversion.stream.size(), 63U);
    }
    host.close(context);
}

TEST(FillCycle, TokensWaitForRoomAndNeverPassTheBuffer)
{
    const std::string longest(3000, 'x');
    const std::string document =
        documentOf("<Para <String `a\\tb\\tc\\td'><String `" + longest + "'>><Para <String `z'>>");
    const std::string expected = convert(document).stream;
    for (const uint32_t bufferSize : {3009U, 3010U, 3066U, 3300U, 4096U, 1U << 16}) {
        const Conversion conversion = convert(document, {.bufferSize = bufferSize});
        EXPECT_EQ(conversion.result, 0) << bufferSize;
        EXPECT_EQ(conversion.stream, expected) << bufferSize;
    }
    // Two tokens wait, the second as large as the buffer.
    std::string stops = "<String `" + std::string(2600, 'y') + "'><PgfNumTabs 40>";
    for (int stop = 0; stop < 40; ++stop) {
        stops += "<TSX 1>";
    }
    stops += "<String `" + longest + "'>";
    EXPECT_TRUE(convert(documentOf(stops), {.bufferSize = 3009}).stream == convert(documentOf(stops)).stream);
    for (const uint32_t bufferSize : {0U, 1U, 2U, 37U, 38U, 60U, 3008U}) {
        const Conversion conversion = convert(document, {.bufferSize = bufferSize});
        EXPECT_EQ(conversion.result, 6) << bufferSize;
        EXPECT_TRUE(expected.starts_with(conversion.stream)) << bufferSize;
        EXPECT_TRUE(isWhole(conversion)) << bufferSize;
    }
    // A token that waits is lost to a smaller buffer, and the document with it.
    TestHost host(document);
    MifContext *context = host.open();
    ASSERT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
    Conversion conversion;
    host.fill(context, conversion, 3009);
    EXPECT_EQ(conversion.result, 0);
    for (const uint32_t bufferSize : {3008U, 1U << 16}) {
        host.fill(context, conversion, bufferSize);
        EXPECT_EQ(conversion.result, 6) << bufferSize;
    }
    EXPECT_TRUE(expected.starts_with(conversion.stream));
    host.close(context);
}

TEST(FillCycle, TheLastByteMayStandAlone)
{
    std::string document = documentOf("<Para <String `a'>>");
    document.resize(document.rfind('>') + 1);
    const std::string expected = convert(document).stream;
    const size_t body = document.find('\n') + 1;
    document.insert(body, "#" + std::string(4097 - document.size() - 2, 'c') + "\n");
    ASSERT_EQ(document.size(), 4097U);
    EXPECT_EQ(convert(document).stream, expected);
}

TEST(FillCycle, StreamsThatMisbehave)
{
    const std::string document = documentOf("<String `a'>" + std::string(9000, ' ') + "<String `b'>");
    const std::string whole = convert(document).stream;
    for (size_t read = 1; read <= 3; ++read) {
        const Conversion conversion = convert(document, {.read = {read}});
        EXPECT_EQ(conversion.result, read == 1 ? 6 : 0);
        EXPECT_TRUE(whole.starts_with(conversion.stream));
    }
    const auto size = static_cast<int32_t>(document.size());
    for (const int32_t stated : {1, 100, 5000, size - 1, size + 1, 2 * size, INT32_MAX}) {
        const Conversion conversion = convert(document, {.statedSize = stated});
        EXPECT_EQ(conversion.result, stated == 1 ? 6 : 0) << stated;
        EXPECT_TRUE(conversion.result == 6 || conversion.percent == 100) << stated;
    }
    EXPECT_EQ(convert(document, {.statedSize = -1}).result, 6);
}

// Every statement with every kind of value that it does not expect, in every surroundings that change its meaning.
TEST(StatementTable, NoValueHarmsAnyHandler)
{
    const std::string values[] = {"<X 1>", " ", "`",           "'",         "`'",        "x",
                                  "-1",    "0", "99999999999", "`<$a\\>\\", "1 2 3 4 5", "\\x"};
    const char *const surroundings[] = {"%",
                                        "<Pgf <PgfTag `New'> % >",
                                        "<FontCatalog <Font <FTag `New'> % >>",
                                        "<AFrames <Frame <ID 1> % >>",
                                        "<Page <TextRect % >>",
                                        "<Tbls <Tbl % >>",
                                        "<Tbls <Tbl <TblID 1> % <Row <Cell % >>>><ATbl 1>",
                                        "<VariableFormats % >",
                                        "<TblFormat % >",
                                        "<EqualizeWidths % >"};
    for (const MifStatementEntry &row : MifStatementTable) {
        for (const std::string &value : values) {
            const std::string statement = std::string("<").append(row.name).append(" ").append(value).append(">\n");
            for (std::string flow : surroundings) {
                for (size_t place = 0; (place = flow.find('%', place)) != std::string::npos;) {
                    flow.replace(place, 1, statement);
                }
                flow.append("<String `a'>").append(statement).append("<String `b'>");
                const Conversion conversion = convert(documentOf(flow));
                EXPECT_TRUE(conversion.result == 0 && isWhole(conversion)) << flow;
            }
        }
    }
}

// A handler returns 0 for what it cannot take, a value that is not there or that names nothing, and without memory.
TEST(StatementTable, ResultsOfTheHandlers)
{
    using Surroundings = void (*)(MifContext &);
    const Surroundings nowhere = [](MifContext &) {};
    const auto resultOf = [](const MifStatementEntry &row, const char *value, Surroundings surround,
                             bool withoutMemory) {
        const std::string document = documentOf("");
        const size_t allocations = withoutMemory ? convert(document).work.allocations : 0;
        TestHost host(document, {.allocation = {withoutMemory ? allocations + 1 : 0, true}});
        MifContext *context = host.open();
        EXPECT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
        Conversion conversion;
        host.fill(context, conversion);
        surround(*context);
        std::string text = value != nullptr ? value : "";
        MifStatement statement{&row, nullptr, nullptr, nullptr};
        if (value != nullptr) {
            statement.valueStart = text.data();
            statement.valueEnd = text.data() + text.size() - 1;
        }
        context->scanner.statementStack = &statement;
        const int result = row.handler(context);
        context->scanner.statementStack = nullptr;
        context->frames.currentFrame = nullptr;
        host.close(context);
        return result;
    };
    const auto names = [&](int wanted, const char *value, Surroundings surround, bool withoutMemory = false) {
        std::string found;
        for (const MifStatementEntry &row : MifStatementTable) {
            found += resultOf(row, value, surround, withoutMemory) == wanted ? std::string(" ") + row.name : "";
        }
        return found;
    };
    EXPECT_EQ(names(1, nullptr, nowhere),
              " TblCatalog TblFormat Tbl Tbls Cell CellContent TblH TblBody Row EqualizeWidths Para ParaLine "
              "VariableFormats PgfCatalog Pgf PgfFont TabStop Page PageNum TextRect AFrames Frame ID ImportObject "
              "FrameType Notes Unique FontCatalog Font");
    for (const char *value : {"0", "1"}) {
        EXPECT_EQ(names(0, value, nowhere), " ATbl MIFFile MText VariableName VariableDef AFrame");
    }
    const Surroundings inTextRect = [](MifContext &context) {
        context.pages.inBodyPage = context.pages.inTextRect = 1;
        context.text.markerType = 9;
        context.variables.inVariableFormats = 1;
        context.formats.currentStyle.tabCount = 1;
    };
    EXPECT_EQ(names(0, "1", inTextRect), " ATbl MIFFile VariableDef AFrame");
    EXPECT_EQ(names(0, "1", inTextRect, true),
              " TblID ATbl TblNumColumns MIFFile VariableName VariableDef PgfTag TSX TSType AFrame ID");
    const Surroundings inFrame = [](MifContext &context) {
        context.frames.inAFrames = context.frames.inFrame = 1;
        context.frames.currentFrame = &context.frames.unframed;
    };
    EXPECT_EQ(names(0, "1", inFrame), " ATbl MIFFile MText VariableName VariableDef AFrame");
    const Surroundings outsideOfBodyText = [](MifContext &context) {
        context.pages.inBodyText = 0;
        context.formats.styleChanged = 1;
    };
    EXPECT_EQ(names(0, "`x'", outsideOfBodyText), " ATbl MIFFile MText VariableName VariableDef AFrame");
    EXPECT_NE(names(1, nullptr, inFrame).find(" String "), std::string::npos) << "suppressed";
    EXPECT_EQ(names(1, nullptr, inTextRect).find(" ID "), std::string::npos);
}

TEST(FillCycle, AFailureIsFinal)
{
    const std::string document = documentOf("<Para <String `a'>>");
    const size_t allocations = convert(document).work.allocations;
    TestHost host(document, {.allocation = {allocations - 1}});
    MifContext *context = host.open();
    ASSERT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
    for (int call = 0; call < 3; ++call) {
        Conversion conversion;
        host.fill(context, conversion);
        EXPECT_EQ(conversion.result, 6);
    }
    host.close(context);
}

TEST(Replay, ATableWithoutAnEndOrWithAnotherInside)
{
    const std::string flow = "<ATbl 1> <Para <String `a'>> <ATbl 1> <Para <String `b'>>";
    const std::string a = "text \"a\"\nline-break\npara-end\n";
    const std::string b = "text \"b\"\nline-break\npara-end\n";
    EXPECT_EQ(tokensOf("<Tbls <Tbl <TblID 1> <X <Tbl <Y 1>>>>>" + flow), "table-end\n" + a + "table-end\n" + b);
    EXPECT_EQ(tokensOf("<Tbl <TblID 1> <X <Y 1> <ATbl 1> <Para <String `a'>>"), a) << "the replay reads to the end";

    const auto repeated = [](std::string_view text) {
        std::string result;
        for (int time = 0; time < 500; ++time) {
            result += text;
        }
        return result;
    };
    const std::string nested =
        "<Tbls <Tbl <TblID 1>\n" + repeated("<A ") + "<Tbl <X 1>> " + repeated(">") + " >>" + repeated("<ATbl 1>\n");
    EXPECT_LT(convert(documentOf(nested)).work.peakBytes, 200'000U) << "a replay leaves nothing open";
}

TEST(StatementTable, HashAndLookup)
{
    EXPECT_EQ(mifHashValue("Para"), 9U);
    EXPECT_EQ(mifHashValue("String"), 9U);
    EXPECT_EQ(mifHashValue("MIFFile"), 23U);
    EXPECT_EQ(mifHashValue("TblCatalog"), 40U);
    EXPECT_EQ(mifHashValue(""), 0U);

    TestHost host("");
    MifContext *context = host.open();
    ASSERT_EQ(mifCreateHashTable(context), 1);
    for (const MifStatementEntry &row : MifStatementTable) {
        EXPECT_EQ(mifGetTagFunction(context, row.name), row.handler);
    }
    EXPECT_EQ(mifGetTagFunction(context, "para"), mifUnsupportedMIFStatement);
    EXPECT_EQ(mifGetTagFunction(context, "FUnderline"), mifGetTagFunction(context, "FUnderlining"));
    size_t usedBuckets = 0;
    for (const MifLookupEntry *bucket : context->dispatch.statementBuckets) {
        usedBuckets += bucket != nullptr ? 1 : 0;
    }
    EXPECT_EQ(usedBuckets, 40U);
    EXPECT_EQ(context->dispatch.statementBuckets[26], nullptr);
    mifFreeHashTable(context);
    for (const MifLookupEntry *bucket : context->dispatch.statementBuckets) {
        EXPECT_EQ(bucket, nullptr);
    }
    host.close(context);
}
