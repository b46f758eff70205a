// Whole documents in both streams: the expected listing of each, and sweeps over sizes, places and faults that must not
// change it.
#include <algorithm>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "support/documents.h"
#include "support/test_host.h"

using namespace miftest;
namespace fs = std::filesystem;

namespace
{

// The document with this many bytes of comment and blank lines before its body.
std::string shifted(const std::string &document, size_t shift)
{
    std::string padding;
    while (padding.size() < shift) {
        const size_t line = std::min<size_t>(shift - padding.size(), 70);
        padding += line < 2 ? "\n" : "#" + std::string(line - 2, 'c') + "\n";
    }
    std::string result = document;
    return result.insert(document.find('\n') + 1, padding);
}

class Documents : public OfEachStream
{
protected:
    std::vector<fs::path> documents() const
    {
        return isExtended() ? documentsOfBothStreams() : allDocuments();
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Plain, Documents, testing::Values(false));
INSTANTIATE_TEST_SUITE_P(Extended, Documents, testing::Values(true));

TEST_P(Documents, Listings)
{
    for (const fs::path &path : isExtended() ? extendedDocuments() : testDocuments()) {
        fs::path expected = path;
        EXPECT_EQ(listing(convert(readFile(path), with({}))), readFile(expected.replace_extension(".tokens"))) << path;
    }
}

// One stream, and the same bytes of every object at whatever moment it is read, for all sizes of reads and buffers.
TEST_P(Documents, OneStreamForAllHosts)
{
    for (const fs::path &path : documents()) {
        const std::string document = readFile(path);
        const Conversion whole = convert(document, with({.objects = ObjectUse::readWhole}));
        const uint32_t largest = largestToken(whole.stream);
        const auto check = [&](const Conditions &conditions) {
            const Conversion conversion = convert(document, with(conditions));
            EXPECT_EQ(conversion.result, 0);
            EXPECT_TRUE(conversion.stream == whole.stream);
            for (const auto &[name, readings] : conversion.objects) {
                const std::string &bytes = *whole.objects.at(name).rbegin();
                EXPECT_TRUE(readings.contains(bytes) && readings.size() <= (readings.contains("") ? 2 : 1)) << name;
            }
        };
        for (const size_t bytesPerRead :
             {size_t{1}, size_t{2}, size_t{3}, size_t{7}, size_t{100}, size_t{4095}, size_t{4096}, SIZE_MAX}) {
            for (const uint32_t bufferSize : {largest, largest + 1, 1000U, 4096U, 65536U, 1U << 20}) {
                for (const ObjectUse objects :
                     {ObjectUse::none, ObjectUse::readABit, ObjectUse::readWhole, ObjectUse::leaveOpen}) {
                    SCOPED_TRACE(path.string() + ", reads " + std::to_string(bytesPerRead) + ", buffer " +
                                 std::to_string(bufferSize) + ", use " + std::to_string(static_cast<int>(objects)));
                    check({.bytesPerRead = bytesPerRead,
                           .bufferSize = std::max(bufferSize, largest),
                           .objects = objects});
                }
            }
        }
    }
}

TEST_P(Documents, BuffersThatAreTooSmall)
{
    for (const fs::path &path : documents()) {
        const std::string document = readFile(path);
        const std::string expected = convert(document, with({})).stream;
        for (uint32_t bufferSize = 0; bufferSize < largestToken(expected); ++bufferSize) {
            const Conversion tooSmall = convert(document, with({.bufferSize = bufferSize}));
            EXPECT_EQ(tooSmall.result, 6) << path << ' ' << bufferSize;
            EXPECT_TRUE(expected.starts_with(tooSmall.stream) && isWhole(tooSmall)) << path << ' ' << bufferSize;
        }
    }
}

TEST_P(Documents, OneStreamWhereverTheStretchesEnd)
{
    for (const fs::path &path : documents()) {
        const std::string document = readFile(path);
        const std::string expected = withoutLosses(convert(document, with({})).stream);
        const size_t stride = path.parent_path() == MIFREADER_EXAMPLES ? 61 : isExtended() ? 3 : 1;
        for (size_t shift = 0; shift <= 4096; shift += stride) {
            EXPECT_TRUE(withoutLosses(convert(shifted(document, shift), with({})).stream) == expected)
                << path << ' ' << shift;
        }
    }
}

// A document that ends anywhere is the same as one that is said to end there, and as a stream that ends before it was
// said to.
TEST_P(Documents, CutAnywhere)
{
    for (const fs::path &path : documents()) {
        const std::string document = readFile(path);
        const auto size = static_cast<int32_t>(document.size());
        const size_t stride = document.size() / 6000 + (document.size() < 20000 ? 1 : 101);
        for (size_t length = 1; length < document.size(); length += stride) {
            const std::string cut = document.substr(0, length);
            const Conversion conversion = convert(cut, with({}));
            EXPECT_TRUE(conversion.result == 0 ? conversion.percent == 100 : conversion.stream.empty());
            EXPECT_TRUE(isWhole(conversion)) << path << ' ' << length;
            if (length % 8 == 0) {
                const auto stated = static_cast<int32_t>(length);
                EXPECT_TRUE(convert(document, with({.statedSize = stated})).stream == conversion.stream)
                    << path << length;
                EXPECT_TRUE(convert(cut, with({.statedSize = size})).stream == conversion.stream)
                    << path << ' ' << length;
            }
        }
    }
}
