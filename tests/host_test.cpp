// The host library: streams, memory, plug-ins, sessions, the decoder's distrust, and the check of the source.
#include <algorithm>
#include <cstddef>
#include <fstream>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include <gtest/gtest.h>
#include <malloc.h>

#include "mifhost/mifhost.h"
#include "support/test_host.h"

using namespace miftest;

namespace
{

std::span<const uint8_t> bytesOf(const std::string &text)
{
    return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

// The text of a document through a session.
std::string textOf(mifhost::Document &document)
{
    std::string text;
    while (const mifhost::Token *token = document.next()) {
        if (const auto *run = std::get_if<mifhost::Text>(token)) {
            text += run->bytes;
        }
    }
    return text;
}

std::string messageOf(const std::string &stream)
{
    mifhost::TokenDecoder decoder;
    decoder.decode(bytesOf(stream));
    try {
        while (decoder.next() != nullptr) {
        }
    } catch (const mifhost::StreamError &error) {
        return error.what();
    }
    return "";
}

} // namespace

// Every byte of a valid stream, changed to anything, is decoded within its bounds or refused with its position.
TEST(TokenDecoder, TrustsNothing)
{
    const std::string plain = "<PgfNumTabs 2><FSize 9><FBold Yes><FColor Red><String `text'><Para >";
    const std::string extended = "<Tbls <Tbl <TblID 1><TblNumColumns 2><TblTitle <TblTitleContent <Para >>>"
                                 "<TblH <Row <Cell <CellContent <Para >>>>>>><TextFlow <TextRectID 9>"
                                 "<Notes <FNote <ID 1> <Para <String `n'>>>>"
                                 "<Para <TabStop <TSX 1><TSLeaderStr `.'>><FSize 9.5><FOverline Yes><PgfNumString `1'>"
                                 "<Marker <MType 8><MText `a'>><XRef <XRefName `b'>><FNote 1><ATbl 1><ATbl 2>>>";
    const std::string stream =
        convert(documentOf(plain)).stream + convert(documentOf(extended), {.isExtended = true}).stream;
    EXPECT_EQ(messageOf(stream), "");
    for (size_t length = 1; length < stream.size(); ++length) {
        messageOf(stream.substr(0, length));
    }
    for (size_t position = 0; position < stream.size(); ++position) {
        for (const int value : {0, 1, 4, 5, 9, 127, 255}) {
            std::string changed = stream;
            changed[position] = static_cast<char>(value);
            messageOf(changed);
        }
    }
    EXPECT_NE(messageOf(stream + '\x07').find("byte " + std::to_string(stream.size())), std::string::npos);
    EXPECT_NE(messageOf(std::string("\x03\x07\x00\x00\x00\x00\x00", 7)), "") << "a wrong length";
    EXPECT_NE(messageOf(std::string("\x00\x0b\x00\x00\x00\x05\x00\x00\x00xx", 11)), "") << "a wrong count";
    EXPECT_NE(messageOf(std::string("\x04\x09\x00\x00\x00\x03\x80\x00\x00", 9)), "") << "no such mode";
}

TEST(Document, ConvertsThroughEveryWayOfLoading)
{
    const std::string text = documentOf("<Para <String `a'>><FFamily `Courier New'><FSize 9><String `b'>");
    mifhost::MemoryStream stream(bytesOf(text), "name");
    const mifhost::Plugin plugin = mifhost::Plugin::load(MIFREADER_PLUGIN);
    mifhost::Document document(plugin, stream, {.bufferSize = 100});
    EXPECT_EQ(textOf(document), "ab");
    EXPECT_EQ(document.percent(), 100);
    EXPECT_EQ(document.bytesRead(), text.size());
    ASSERT_NE(document.fonts().find(0), nullptr);
    EXPECT_EQ(document.fonts().find(0)->name, "Courier New");
    EXPECT_EQ(mifhost::fontClassName(document.fonts().find(0)->familyClass), "modern");
    EXPECT_GT(document.memory().peakBytes(), 4096U);

    EXPECT_THROW(mifhost::Plugin::load("./missing.so"), mifhost::PluginError);
    EXPECT_THROW(mifhost::Plugin::load("libc.so.6"), mifhost::PluginError);
}

TEST(Document, ReadsWithThePluginOfItsOwn)
{
    const std::string text = documentOf("<Para <String `a'>>");
    mifhost::MemoryStream stream(bytesOf(text), "name");
    const mifhost::Plugin other = mifhost::Plugin::load(MIFREADER_OTHER_PLUGIN);
    mifhost::Document document(other, stream);
    EXPECT_EQ(textOf(document), "plug-in");
    EXPECT_EQ(other.entries().mifCharSet(), 42);
    EXPECT_EQ(mifhost::Plugin::linked().entries().mifCharSet(), MIF_CHARSET_WINDOWS_1252);

    const mifhost::Plugin same = mifhost::Plugin::load(MIFREADER_PLUGIN);
    mifhost::Document again(same, stream);
    EXPECT_EQ(textOf(again), "a");
}

TEST(Document, TellsWhatTheDocumentSaysOfItself)
{
    const std::string text = documentOf("<PDFDocInfo <Key `Title'><Value `\xc3\x9c'><Key `Author'><Value `A'>>"
                                        "<Para <PgfLanguage Danish><String `x'>>");
    mifhost::MemoryStream stream(bytesOf(text), "name");
    mifhost::Document document(stream);
    textOf(document);
    const mifhost::DocumentInfo expected = {"5.50", "\u00dc", "A", "", "", "da", "UTF-8"};
    EXPECT_EQ(document.info(), expected);
}

// In each form of tokens; a plug-in without the extended stream gives the plain one.
TEST(Document, GivesUtf8WhateverThePluginGives)
{
    const std::string text = documentOf("<Para <FFamily `Caf\xe9'><FBold Yes><String `gr\xfcn'><FBold No><String `y'>>"
                                        "<Para <String `z'>>");
    const auto tokensAs = [&text](mifhost::TokenForm form) {
        mifhost::MemoryStream stream(bytesOf(text), "name");
        mifhost::Document document(stream, {.form = form, .encoding = MIF_ENCODING_WINDOWS_1252});
        std::string tokens;
        while (const mifhost::Token *token = document.next()) {
            if (const auto *run = std::get_if<mifhost::Text>(token)) {
                tokens += std::string(run->bytes) + ' ';
            } else if (const auto *attribute = std::get_if<mifhost::Attribute>(token)) {
                tokens += attribute->on ? "on " : "off ";
            } else if (std::holds_alternative<mifhost::ParaEnd>(*token)) {
                tokens += "end ";
            }
        }
        return document.fonts().find(0)->name + ": " + tokens;
    };
    EXPECT_EQ(tokensAs(mifhost::TokenForm::Extended), "Caf\u00e9: on gr\u00fcn off y end z end ");
    EXPECT_EQ(tokensAs(mifhost::TokenForm::Plain), "Caf\u00e9: on gr\u00fcn y end off z end ");
    EXPECT_EQ(tokensAs(mifhost::TokenForm::Raw), "Caf\xe9: on gr\xfcn y end z end ");

    mifhost::MemoryStream stream(bytesOf(text), "name");
    const mifhost::Plugin other = mifhost::Plugin::load(MIFREADER_OTHER_PLUGIN);
    mifhost::Document document(other, stream);
    EXPECT_FALSE(document.isExtended());
    EXPECT_EQ(textOf(document), "plug-in");
}

TEST(Document, SaysWhatIsWrong)
{
    const std::string random = "no document";
    mifhost::MemoryStream noMif(bytesOf(random), "name");
    mifhost::Document refused(noMif);
    EXPECT_THROW(refused.next(), mifhost::NotMif);
    EXPECT_THROW(refused.next(), mifhost::NotMif) << "and again";

    const std::string text =
        documentOf("<String `begin'>" + std::string(20, ' ') + "<String `" + std::string(500, 'x') + "'>");
    mifhost::MemoryStream stream(bytesOf(text), "name");
    mifhost::Document tooSmall(stream, {.bufferSize = 400});
    std::string kept;
    EXPECT_THROW(
        {
            while (const mifhost::Token *token = tooSmall.next()) {
                const auto *run = std::get_if<mifhost::Text>(token);
                kept += run != nullptr ? run->bytes : "";
            }
        },
        mifhost::LimitReached);
    EXPECT_EQ(kept, "begin") << "what came before the failure";

    bool whole = false;
    for (size_t limit = 1000; !whole; limit += 500) {
        stream.seek(0);
        try {
            mifhost::Document document(stream, {.memoryLimit = limit});
            whole = textOf(document).size() == 505;
            EXPECT_LE(document.memory().peakBytes(), limit);
        } catch (const mifhost::LimitReached &) {
        }
        ASSERT_LT(limit, 100'000U);
    }
}

// A table that gives nothing is read at each of its anchors within one call of the reader; a format announces fonts.
TEST(Document, EndsAtItsWorkLimitAndWhenAsked)
{
    std::string anchors;
    std::string families;
    for (int i = 0; i < 2000; ++i) {
        anchors += "<ATbl 1>";
        families += "<FFamily `x'>";
    }
    const std::string comments(100'000, '\n');
    const std::string begin = "<String `begin'>";
    const std::string table = "<Tbls <Tbl <TblID 1>" + comments + ">>";
    const std::string reading = documentOf(table + "<TextFlow <TextRectID 9>" + begin + anchors + "<String `end'>");
    const std::string announcing = documentOf("<PgfCatalog <Pgf <PgfTag `A'>" + families + ">>" + begin +
                                              "<PgfTag `A'><PgfTag `A'>" + std::string(5000, ' ') + "<String `end'>");
    const auto textUntil = [](const std::string &text, const mifhost::DocumentOptions &options, auto error) {
        mifhost::MemoryStream stream(text, "name");
        mifhost::Document document(stream, options);
        std::string kept;
        const auto take = [&] {
            while (const mifhost::Token *token = document.next()) {
                const auto *run = std::get_if<mifhost::Text>(token);
                kept += run != nullptr ? run->bytes : "";
            }
        };
        EXPECT_THROW(take(), decltype(error));
        EXPECT_THROW(document.next(), decltype(error)) << "and again";
        EXPECT_LT(document.percent(), 100);
        return kept;
    };
    const mifhost::LimitReached limit("", {}, "");
    for (const uint64_t work : {reading.size() + 5000, 3 * reading.size()}) {
        EXPECT_EQ(textUntil(reading, {.workLimit = work}, limit), "begin") << work;
    }
    EXPECT_EQ(textUntil(announcing, {.workLimit = 200'000, .form = mifhost::TokenForm::Plain}, limit), "begin")
        << "announcements count";
    mifhost::MemoryStream stream(announcing, "name");
    mifhost::Document document(stream, {.workLimit = 600'000});
    EXPECT_EQ(textOf(document), "beginend");

    int calls = 0;
    const auto stop = [&calls] {
        if (++calls > 100) {
            throw std::range_error("enough");
        }
    };
    EXPECT_EQ(textUntil(reading, {.proceed = stop}, std::range_error("")), "begin");
    EXPECT_EQ(calls, 101) << "nothing is read behind it";
}

TEST(Memory, CountsWhatTheHeapTakes)
{
    mifhost::Memory memory(100'000);
    HostServices *services = memory.services();
    std::vector<void *> blocks;
    size_t taken = 0;
    for (size_t size = 1; void *block = services->allocate(&services->memoryHandleArea, size); size += 7) {
        blocks.push_back(block);
        void *whole = static_cast<std::byte *>(block) - alignof(std::max_align_t); // it stands behind a header
        taken += malloc_usable_size(whole) + sizeof(size_t);
        ASSERT_LE(taken, memory.bytesInUse()) << size;
    }
    EXPECT_GT(memory.bytesInUse(), 98'000U);
    EXPECT_LE(memory.peakBytes(), 100'000U);
    EXPECT_LT(memory.peakRequested(), memory.peakBytes());
    for (void *block : blocks) {
        services->free(&services->memoryHandleArea, block);
    }
    EXPECT_EQ(memory.bytesInUse(), 0U);
}

TEST(Object, ReadsSeeksAndGuardsItsDocument)
{
    std::string lines = "=A\n&\\x\n";
    std::string expected;
    for (int line = 0; line < 2000; ++line) {
        lines += "&4142430d0A\n";
        expected += "ABC\r\n";
    }
    const std::string text =
        documentOf("<AFrames <Frame <ID 5> <ImportObject\n" + lines + "=EndInset\n>>><AFrame 5><String `b'>");
    mifhost::MemoryStream stream(text, "name");
    mifhost::Document document(stream);
    const mifhost::Token *token = document.next();
    while (token != nullptr && !std::holds_alternative<mifhost::Frame>(*token)) {
        token = document.next();
    }
    ASSERT_NE(token, nullptr);
    {
        mifhost::Object object(document, std::get<mifhost::Frame>(*token).id);
        EXPECT_EQ(object.size(), expected.size());
        EXPECT_THROW(document.next(), std::logic_error);
        EXPECT_THROW(mifhost::Object(document, "5"), std::logic_error);
        for (const size_t block : {size_t{1}, size_t{100}, size_t{4097}, size_t{100000}}) {
            object.seek(0);
            std::string bytes;
            std::vector<uint8_t> buffer(block);
            for (size_t count = block; count == block;) {
                count = object.read(buffer);
                bytes.append(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count));
            }
            EXPECT_TRUE(bytes == expected) << block;
            EXPECT_EQ(object.tell(), expected.size());
        }
        uint8_t byte = 0;
        for (const size_t position : {size_t{7003}, size_t{3}, size_t{9999}}) {
            object.seek(position);
            EXPECT_EQ(object.read({&byte, 1}), 1U);
            EXPECT_EQ(byte, static_cast<uint8_t>(expected[position]));
        }
    }
    EXPECT_THROW(mifhost::Object(document, "6"), mifhost::IoError);
    EXPECT_EQ(textOf(document), "b");
}

TEST(FileStream, OpensFilesAndSaysWhyNot)
{
    EXPECT_THROW(mifhost::FileStream("missing.mif"), mifhost::IoError);
    EXPECT_THROW(mifhost::FileStream("."), mifhost::IoError);
    const std::string path = testing::TempDir() + "stream.mif";
    const std::string text =
        documentOf("<String `" + std::string(3000, 'x') + "'>" + std::string(200000, ' ') + "<String `y'>");
    std::ofstream(path, std::ios::binary) << text;
    mifhost::FileStream stream(path);
    EXPECT_EQ(stream.size(), text.size());
    EXPECT_THROW(mifhost::FileStream(path, {.sizeLimit = text.size() - 1}), mifhost::LimitReached);
    EXPECT_EQ(mifhost::FileStream(path, {.sizeLimit = text.size()}).size(), text.size());
    EXPECT_THROW(mifhost::FileStream("/dev/zero", {.sizeLimit = 100'000}), mifhost::LimitReached);
    const auto leave = [](int) { throw std::range_error("enough"); };
    EXPECT_THROW(mifhost::FileStream("/dev/zero", {.waitForInput = leave}), std::range_error);
    mifhost::Document document(stream);
    EXPECT_EQ(textOf(document).size(), 3001U);
    for (const size_t position : {size_t{0}, size_t{150000}, size_t{149000}, text.size() - 1, text.size() + 5}) {
        uint8_t byte = 0;
        stream.seek(position);
        const size_t delivered = stream.read({&byte, 1});
        EXPECT_EQ(delivered, position < text.size() ? 1U : 0U);
        EXPECT_TRUE(delivered == 0 || byte == static_cast<uint8_t>(text[position])) << position;
    }
}
