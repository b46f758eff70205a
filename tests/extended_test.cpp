// The extended stream beside the plain one, and how a host asks for it.
#include <filesystem>
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "mifreader/extended.h"
#include "mifreader/tokens.h"
#include "support/documents.h"
#include "support/test_host.h"

using namespace miftest;
namespace fs = std::filesystem;

namespace
{

using Codes = std::set<uint8_t>;

// The tokens of a document's shape, which both streams have; what stands in notes and boxes only the extended one has.
std::string shapeOf(const std::string &stream, const Codes &omitted)
{
    static const Codes shape = {TOKEN_PAGE_SETUP, TOKEN_TABLE_ROW,  TOKEN_CELL_END,
                                TOKEN_FRAME,      TOKEN_LINE_BREAK, TOKEN_PARA_END};
    std::string tokens;
    int inside = 0;
    for (const std::string_view token : tokensIn(stream)) {
        const auto code = static_cast<uint8_t>(token.front());
        inside += code == TOKEN_NOTE_BEGIN || code == TOKEN_BOX_BEGIN ? 1 : 0;
        inside -= code == TOKEN_NOTE_END || code == TOKEN_BOX_END ? 1 : 0;
        if (inside == 0 && shape.contains(code) && !omitted.contains(code)) {
            tokens += token;
        }
    }
    EXPECT_EQ(inside, 0);
    return tokens;
}

} // namespace

// But for line breaks inside strings, and for what the plain stream gives of anchors in notes. Hidden text, and notes
// in notes, make it another one.
TEST(Extended, HasTheShapeOfThePlainStream)
{
    const std::map<std::string, Codes> omitted = {{"text", {TOKEN_LINE_BREAK}},
                                                  {"characters", {TOKEN_LINE_BREAK}},
                                                  {"objects", {TOKEN_FRAME}},
                                                  {"frames", {TOKEN_FRAME}},
                                                  {"tables", {TOKEN_CELL_END, TOKEN_TABLE_ROW}}};
    for (const fs::path &path : documentsOfBothStreams()) {
        const auto omission = omitted.find(path.stem());
        const Codes codes = omission != omitted.end() ? omission->second : Codes{};
        const std::string document = readFile(path);
        const std::string plain = shapeOf(convert(document).stream, codes);
        const std::string extended = shapeOf(convert(document, {.isExtended = true}).stream, codes);
        EXPECT_EQ(plain == extended, path.stem() != "conditions" && path.stem() != "broken") << path;
    }
}

TEST(Extended, IsAskedForBeforeTheDocument)
{
    EXPECT_EQ(mifExtendStream(nullptr, MIF_EXTENDED_VERSION, MIF_ENCODING_AUTO), 6);
    TestHost host(documentOf("<Para <String `x'>>"));
    MifContext *context = host.open();
    EXPECT_EQ(mifExtendStream(context, 0, MIF_ENCODING_AUTO), 6);
    EXPECT_EQ(mifExtendStream(context, 2, MIF_ENCODING_AUTO), 6);
    EXPECT_EQ(mifExtendStream(context, MIF_EXTENDED_VERSION, 4), 6);
    ASSERT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
    EXPECT_EQ(mifExtendStream(context, MIF_EXTENDED_VERSION, MIF_ENCODING_AUTO), 6);
    Conversion conversion;
    host.fill(context, conversion);
    host.close(context);
    EXPECT_EQ(conversion.stream, convert(documentOf("<Para <String `x'>>")).stream);
}

TEST(Extended, FailuresHaveAReasonAndAByte)
{
    const std::string document = documentOf("<Para <String `" + std::string(300, 'x') + "'>>");
    struct Case {
        std::string document;
        Conditions conditions;
        uint32_t reason;
        int32_t position;
    };
    for (const Case &failing :
         {Case{"MIF", {}, MIF_REASON_NO_HEADER, 0}, Case{document, {.bufferSize = 100}, MIF_REASON_SMALL_BUFFER, 421},
          Case{document, {.bufferSize = 0}, MIF_REASON_SMALL_BUFFER, 0},
          Case{document, {.allocation = {3, true}}, MIF_REASON_MEMORY, 0},
          Case{document, {.toldSize = -1}, MIF_REASON_SIZE, 0}, Case{document, {}, MIF_REASON_NONE, 0}}) {
        for (const bool isExtended : {false, true}) {
            Conditions conditions = failing.conditions;
            conditions.isExtended = isExtended;
            TestHost host(failing.document, conditions);
            MifContext *context = host.open();
            Conversion conversion;
            conversion.result = mifInitDoc(context, nullptr, 0, host.stream());
            while (conversion.result == 0 && conversion.percent < 100) {
                host.fill(context, conversion);
            }
            MifFailure failure{};
            EXPECT_EQ(mifGetFailure(context, &failure), 0);
            EXPECT_EQ(failure.reason, failing.reason);
            EXPECT_EQ(failure.position, failing.position) << failing.reason << isExtended;
            host.close(context);
        }
    }
    MifFailure failure{};
    EXPECT_EQ(mifGetFailure(nullptr, &failure), 6);
}

// The same bytes as each set has them; what the document says of itself does not count.
TEST(Extended, TheHostMaySayWhatTheBytesAre)
{
    const auto textAs = [&](const std::string &version, uint32_t encoding) {
        std::string document = documentOf("<Para <String `\xC3\xBC\\x8a '>>");
        document.replace(document.find("5.50"), 4, version);
        const std::string lines = listing(convert(document, {.isExtended = true, .encoding = encoding}));
        const size_t text = lines.find("\ntext ") + 6;
        return lines.substr(text, lines.find('\n', text) - text);
    };
    for (const char *version : {"5.50", "8.00"}) {
        EXPECT_EQ(textAs(version, MIF_ENCODING_AUTO), R"("\xc3\xbc\xc3\xa4")");
        EXPECT_EQ(textAs(version, MIF_ENCODING_MIF), R"("\xc3\x90\xc2\xba\xc3\xa4")");
        EXPECT_EQ(textAs(version, MIF_ENCODING_WINDOWS_1252), R"("\xc3\x83\xc2\xbc\xc3\xa4")");
        EXPECT_EQ(textAs(version, MIF_ENCODING_UTF_8), R"("\xc3\xbc\xc3\xa4")");
    }
}

// A thousand are told one by one; the totals have them all.
TEST(Extended, LossesAreCounted)
{
    std::string flow;
    for (int count = 0; count < 1200; ++count) {
        flow += "<ATbl 1>\n";
    }
    const std::string lines = listing(convert(documentOf(flow), {.isExtended = true}));
    size_t told = 0;
    for (size_t place = 0; (place = lines.find("\nloss reference", place)) != std::string::npos; ++place) {
        ++told;
    }
    EXPECT_EQ(told, 1000U);
    EXPECT_NE(lines.find("loss-total reference count=1200 first=105\n"), std::string::npos);
}

// A comment, a statement, a macro and a line of an object's data that are longer than what the reader holds, and a NUL.
TEST(Extended, WhatIsGivenUpIsTold)
{
    const std::string much(9000, 'x');
    const std::string document =
        documentOf("#" + much + "\n<Para\n<String `" + much + "'>\n<String `a" + std::string(1, 0) +
                   "b'>\n<String `c'>>\ndefine(" + much + ")\n<AFrames\n<Frame\n<ImportObject\n=A\n&" + much +
                   "\n=EndInset\n>\n>\n>");
    const std::string lines = listing(convert(document, {.isExtended = true}));
    for (const std::string total : {"comment count=2 first=105", "statement count=2 first=9113",
                                    "nul count=1 first=18125", "object count=1 first=27179"}) {
        EXPECT_NE(lines.find("loss-total " + total + '\n'), std::string::npos) << total << '\n' << lines;
    }
    EXPECT_NE(lines.find("\ntext \"c\"\n"), std::string::npos);
}
