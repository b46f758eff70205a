// Hosts that fail, at every place where they can: no document suffers more than it must, and the library nothing.
#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "mifhost/document.h"
#include "mifhost/error.h"
#include "mifhost/stream.h"
#include "support/documents.h"
#include "support/test_host.h"

using namespace miftest;
namespace fs = std::filesystem;

namespace
{

// So many faults of one kind are tried on one document, at even distances.
constexpr size_t mostFaults = 700;

// What must hold whatever the host did; the host itself checks the rest.
void expectUnharmed(const Conversion &conversion)
{
    EXPECT_TRUE(isWhole(conversion));
    EXPECT_TRUE(conversion.result == 6 || conversion.percent == 100);
}

class Faults : public OfEachStream
{
protected:
    std::vector<fs::path> documents() const
    {
        return isExtended() ? extendedDocuments() : testDocuments();
    }
};

// Calls back with each fault of `count` operations, once and for good.
template <typename Check>
void forEachFault(const fs::path &path, size_t count, Check &&check)
{
    const size_t stride = count / mostFaults + 1;
    for (size_t number = 1; number <= count; number += stride) {
        for (const bool forGood : {false, true}) {
            SCOPED_TRACE(path.string() + ", fault " + std::to_string(number) + (forGood ? " and all later ones" : ""));
            check(Failing{number, forGood});
        }
    }
}

// Whether the stream says that a record was left out.
bool tellsOfRecords(const std::string &stream)
{
    const std::vector<std::string_view> tokens = tokensIn(stream);
    return std::any_of(tokens.begin(), tokens.end(), [](std::string_view token) {
        return token[0] == TOKEN_LOSS && token[MIF_TOKEN_HEADER_SIZE] == MIF_LOSS_RECORD;
    });
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Plain, Faults, testing::Values(false));
INSTANTIATE_TEST_SUITE_P(Extended, Faults, testing::Values(true));

// In the extended stream a record that was left out is told.
TEST_P(Faults, EveryAllocation)
{
    for (const fs::path &path : documents()) {
        const std::string document = readFile(path);
        for (const ObjectUse objects : {ObjectUse::none, ObjectUse::readWhole}) {
            // The smallest buffer makes tokens wait in memory too.
            const uint32_t bufferSize = largestToken(convert(document, with({})).stream);
            const Conversion whole = convert(document, with({.bufferSize = bufferSize, .objects = objects}));
            forEachFault(path, whole.work.allocations, [&](const Failing &failing) {
                const Conversion conversion =
                    convert(document, with({.bufferSize = bufferSize, .objects = objects, .allocation = failing}));
                expectUnharmed(conversion);
                EXPECT_TRUE(!failing.forGood || objects != ObjectUse::none || conversion.result == 6);
                EXPECT_TRUE(failing.forGood || conversion.result == 0 ||
                            withoutLosses(whole.stream).starts_with(withoutLosses(conversion.stream)));
                EXPECT_TRUE(!isExtended() || conversion.result == 6 || conversion.stream == whole.stream ||
                            tellsOfRecords(conversion.stream));
            });
        }
    }
}

// A refusal that leaves a record out and goes on is told all the same.
TEST(HostLibrary, TellsEveryRefusal)
{
    for (const fs::path &path : testDocuments()) {
        const std::string text = readFile(path);
        const auto peakWithin = [&](size_t limit) {
            mifhost::MemoryStream stream({reinterpret_cast<const uint8_t *>(text.data()), text.size()}, "name");
            mifhost::Document document(stream, {.memoryLimit = limit});
            while (document.next() != nullptr) {
            }
            return document.memory().peakBytes();
        };
        const size_t peak = peakWithin(0);
        EXPECT_EQ(peakWithin(peak), peak);
        for (size_t limit = 1; limit < peak; limit += peak / mostFaults + 1) {
            EXPECT_THROW(peakWithin(limit), mifhost::LimitReached) << path << ' ' << limit;
        }
    }
}

// A refused node of the statement stack or a waiting token ends the document. Only a refused record of a text rectangle
// does not, without which there is no document text.
TEST(Allocations, NoTextIsLostWithoutAFailure)
{
    const std::string document =
        "<MIFFile 5><Page <PageType BodyPage> <TextRect <ID 9>>><TextRectID 9>"
        "<Para <ParaLine <String `a\\t\\t\\t\\tb'> <Char Tab> <String `c'>>><Para <String `d'>>";
    for (const uint32_t bufferSize : {40U, 1000U}) {
        const size_t allocations = convert(document, {.bufferSize = bufferSize}).work.allocations;
        size_t survived = 0;
        for (size_t number = 1; number <= allocations; ++number) {
            const Conversion conversion = convert(document, {.bufferSize = bufferSize, .allocation = {number}});
            survived += conversion.result == 0 ? 1 : 0;
            EXPECT_TRUE(conversion.result == 6 || conversion.stream.size() == 53) << number;
        }
        EXPECT_EQ(survived, 1U);
    }
}

// A short read is none of a stream's faults; any other answer ends the document there.
TEST_P(Faults, EveryRead)
{
    for (const fs::path &path : documents()) {
        const std::string document = readFile(path);
        for (const size_t bytesPerRead : {size_t{97}, size_t{1500}}) {
            const Conversion whole = convert(document, with({.bytesPerRead = bytesPerRead}));
            forEachFault(path, whole.work.reads, [&](const Failing &failing) {
                for (const ReadAnswer answer :
                     {ReadAnswer::nothing, ReadAnswer::oneByte, ReadAnswer::moreThanAsked, ReadAnswer::errorValue}) {
                    const Conversion conversion =
                        convert(document, with({.bytesPerRead = bytesPerRead, .read = failing, .answer = answer}));
                    expectUnharmed(conversion);
                    EXPECT_TRUE(isExtended() || whole.stream.starts_with(conversion.stream));
                    EXPECT_TRUE(answer != ReadAnswer::oneByte || conversion.stream.size() == whole.stream.size());
                }
            });
        }
    }
}

TEST_P(Faults, EverySeek)
{
    for (const fs::path &path : documents()) {
        const std::string document = readFile(path);
        for (const ObjectUse objects : {ObjectUse::none, ObjectUse::readWhole}) {
            const Conversion whole = convert(document, with({.bufferSize = 4096, .objects = objects}));
            forEachFault(path, whole.work.seeks, [&](const Failing &failing) {
                expectUnharmed(convert(document, with({.bufferSize = 4096, .objects = objects, .seek = failing})));
            });
        }
    }
}

// The stream is shorter or longer than it was said to be.
TEST_P(Faults, SizesThatAreNotTrue)
{
    for (const fs::path &path : documents()) {
        const std::string document = readFile(path);
        const std::string whole = convert(document, with({})).stream;
        const size_t stride = document.size() / mostFaults + 1;
        for (size_t stated = 1; stated < 2 * document.size(); stated += stride) {
            const Conversion conversion = convert(document, with({.statedSize = static_cast<int32_t>(stated)}));
            expectUnharmed(conversion);
            EXPECT_TRUE(stated < document.size() || conversion.stream == whole) << path << ' ' << stated;
        }
        EXPECT_TRUE(convert(document, with({.statedSize = INT32_MAX})).stream == whole) << path;
        EXPECT_EQ(convert(document, with({.statedSize = -1})).result, 6);
    }
}

// Objects are opened, sought beyond their ends, read and not closed after every call.
TEST_P(Faults, ObjectsUsedAgainstTheRules)
{
    for (const fs::path &path : documents()) {
        const std::string document = readFile(path);
        const uint32_t largest = largestToken(convert(document, with({})).stream);
        for (const uint32_t bufferSize : {largest, 1000U, 65536U}) {
            for (const size_t bytesPerRead : {size_t{1}, size_t{97}, SIZE_MAX}) {
                SCOPED_TRACE(path.string() + ", buffer " + std::to_string(bufferSize));
                expectUnharmed(convert(document, with({.bytesPerRead = bytesPerRead,
                                                       .bufferSize = std::max(bufferSize, largest),
                                                       .objects = ObjectUse::anything})));
            }
        }
    }
}
