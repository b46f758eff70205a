// The entry table and the life of a context.
#include <array>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "reader/context.h"
#include "support/test_host.h"

using namespace miftest;

TEST(Interface, EntryTable)
{
    MifReaderInterface table;
    memset(&table, 0xFF, sizeof(table));
    mifGetReaderInterface(&table);
    EXPECT_EQ(table.mifAllocateContext, mifAllocateContext);
    EXPECT_EQ(table.mifFreeContext, mifFreeContext);
    EXPECT_EQ(table.mifInitDoc, mifInitDoc);
    EXPECT_EQ(table.mifFillBuffer, mifFillBuffer);
    EXPECT_EQ(table.mifCharSet(), 7);
    for (const void *slot : table.zeroSlots4To8) {
        EXPECT_EQ(slot, nullptr);
    }
    EXPECT_EQ(table.zeroSlot10, nullptr);
}

TEST(Interface, NullContext)
{
    uint32_t written = 0;
    int32_t percent = 0;
    EXPECT_EQ(mifInitDoc(nullptr, nullptr, 0, nullptr), 6);
    EXPECT_EQ(mifFillBuffer(nullptr, nullptr, &written, &percent, 0), 6);
    EXPECT_EQ(mifFreeContext(nullptr), 6);
}

TEST(Interface, TheSizeIsMeasuredOnlyWhenItIsNotKnown)
{
    for (const int32_t stated : {0, 77}) {
        TestHost host(std::string(10000, ' '));
        MifContext *context = host.open();
        ASSERT_EQ(mifInitDoc(context, nullptr, stated, host.stream()), 0);
        EXPECT_EQ(context->source.totalSize, stated == 0 ? 10000 : 77);
        EXPECT_EQ(host.work().seeks, stated == 0 ? 2U : 0U);
        EXPECT_EQ(host.stream()->tell(host.stream()), 0);
        host.close(context);
    }
}

TEST(Interface, ADocumentIsSmallerThan2GiB)
{
    for (const int64_t size : {int64_t{-1}, int64_t{INT32_MAX}, int64_t{INT32_MAX} + 1, int64_t{1} << 32}) {
        const auto told = static_cast<intptr_t>(size);
        if (told == size) {
            TestHost host(documentOf(""), {.toldSize = told});
            MifContext *context = host.open();
            EXPECT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), size == INT32_MAX ? 0 : 6) << size;
            host.close(context);
        }
    }
}

TEST(Interface, TheFileOperationsAreHandedOverOnceBeforeTheFirstFill)
{
    TestHost host(documentOf("<String `a'>"));
    MifContext *context = host.open();
    ASSERT_EQ(mifInitDoc(context, nullptr, 0, host.stream()), 0);
    ASSERT_EQ(host.fileAccesses.size(), 1U);
    const MifFileAccess access = host.fileAccesses[0];
    std::array<intptr_t, 17> words{};
    static_assert(sizeof(words) == sizeof(access));
    memcpy(words.data(), &access, sizeof(access));
    for (size_t word = 0; word < words.size(); ++word) {
        const bool isFunction = word == 8 || word == 9 || (word >= 11 && word <= 13);
        const intptr_t constant = word == 0 ? 3 : word == 1 ? 5 : word == 2 ? -1 : 0;
        EXPECT_EQ(isFunction ? words[word] != 0 : words[word] == constant, true) << word;
    }
    Conversion conversion;
    host.fill(context, conversion);
    EXPECT_EQ(host.fileAccesses.size(), 1U);

    char name[] = "5";
    char destination[16];
    MifFileHandle handle{};
    handle.name = name;
    MifFileHandle unowned = handle;
    handle.context = context;
    for (MifFileHandle *file : {static_cast<MifFileHandle *>(nullptr), &unowned, &handle}) {
        EXPECT_EQ(access.mifFileOpen(file), 0);
        EXPECT_EQ(access.mifFileRead(file, destination, sizeof(destination)), 0);
        EXPECT_EQ(access.mifFileSeek(file, 0, MIF_SEEK_END), 0);
        EXPECT_EQ(access.mifFileTell(file), -1);
        EXPECT_EQ(access.mifFileClose(file), 0);
    }
    host.close(context);
}

// A context that was never filled, and one without a callback, give everything back (the host checks it).
TEST(Interface, TearDown)
{
    TestHost unfilled(documentOf(""));
    MifContext *context = unfilled.open();
    ASSERT_EQ(mifInitDoc(context, nullptr, 0, unfilled.stream()), 0);
    EXPECT_EQ(mifFreeContext(context), 0);

    TestHost unbound("");
    EXPECT_EQ(mifFreeContext(unbound.open()), 0);

    TestHost silent(documentOf("<FFamily `F'><String `a'><Para <ParaLine"));
    uint32_t stored = 0;
    context = mifAllocateContext(nullptr, nullptr, &stored, silent.services(), 5);
    ASSERT_EQ(mifInitDoc(context, nullptr, 0, silent.stream()), 0);
    Conversion conversion;
    silent.fill(context, conversion);
    EXPECT_NE(listing(conversion).find("font number=0"), std::string::npos);
    silent.close(context);
}

// Two documents that are converted by turns, on one thread, give what each gives alone.
TEST(Interface, ContextsAreIndependent)
{
    const std::string documents[] = {readFile(std::string(MIFREADER_TEST_DOCUMENTS) + "/formats.mif"),
                                     readFile(std::string(MIFREADER_TEST_DOCUMENTS) + "/layout.mif")};
    TestHost first(documents[0], {.bufferSize = 500});
    TestHost second(documents[1], {.bufferSize = 700});
    MifContext *contexts[] = {first.open(), second.open()};
    ASSERT_EQ(mifInitDoc(contexts[0], nullptr, 0, first.stream()), 0);
    ASSERT_EQ(mifInitDoc(contexts[1], nullptr, 0, second.stream()), 0);
    Conversion conversions[2];
    while (conversions[0].percent < 100 || conversions[1].percent < 100) {
        first.fill(contexts[0], conversions[0]);
        second.fill(contexts[1], conversions[1]);
        ASSERT_TRUE(conversions[0].result == 0 && conversions[1].result == 0);
    }
    EXPECT_TRUE(conversions[0].stream == convert(documents[0]).stream);
    EXPECT_TRUE(conversions[1].stream == convert(documents[1]).stream);
    first.close(contexts[0]);
    second.close(contexts[1]);
}
