// Whole documents: the expected listing of each, and sweeps over sizes, places and faults that must not change it.
#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/test_host.h"

using namespace miftest;
namespace fs = std::filesystem;

namespace
{

// All documents of the given folder, in the order of their names.
std::vector<fs::path> documentsIn(const fs::path &folder)
{
    std::vector<fs::path> paths;
    for (const auto &entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".mif") {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    EXPECT_FALSE(paths.empty()) << folder;
    return paths;
}

std::vector<fs::path> allDocuments()
{
    std::vector<fs::path> paths = documentsIn(MIFREADER_TEST_DOCUMENTS);
    for (const fs::path &path : documentsIn(MIFREADER_EXAMPLES)) {
        paths.push_back(path);
    }
    return paths;
}

uint32_t largestToken(const std::string &stream)
{
    uint32_t largest = 0;
    for (size_t position = 0; position + 5 <= stream.size();) {
        const auto byte = [&](size_t index) { return uint32_t{static_cast<uint8_t>(stream[position + index])}; };
        const uint32_t length = byte(1) | byte(2) << 8 | byte(3) << 16 | byte(4) << 24;
        largest = std::max(largest, length);
        position += std::max(length, 5U);
    }
    return largest;
}

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

} // namespace

TEST(Documents, Listings)
{
    for (const fs::path &path : documentsIn(MIFREADER_TEST_DOCUMENTS)) {
        fs::path expected = path;
        EXPECT_EQ(listing(convert(readFile(path))), readFile(expected.replace_extension(".tokens"))) << path;
    }
}

TEST(Documents, OneStreamForAllBufferAndReadSizes)
{
    for (const fs::path &path : allDocuments()) {
        const std::string document = readFile(path);
        const std::string expected = convert(document).stream;
        const uint32_t largest = largestToken(expected);
        for (const uint32_t bufferSize : {largest, largest + 1, largest + 57, 1000U, 4096U, 65536U, 16U << 20}) {
            for (const size_t bytesPerRead : {size_t{1}, size_t{7}, size_t{4096}}) {
                const Conversion conversion =
                    convert(document, {.bytesPerRead = bytesPerRead, .bufferSize = std::max(bufferSize, largest)});
                EXPECT_EQ(conversion.result, 0);
                EXPECT_TRUE(conversion.stream == expected) << path << ' ' << bufferSize << ' ' << bytesPerRead;
            }
        }
        for (uint32_t bufferSize = 0; bufferSize < largest; ++bufferSize) {
            const Conversion tooSmall = convert(document, {.bufferSize = bufferSize});
            EXPECT_EQ(tooSmall.result, 6) << path << ' ' << bufferSize;
            EXPECT_TRUE(expected.starts_with(tooSmall.stream) && isWhole(tooSmall)) << path << ' ' << bufferSize;
        }
    }
}

TEST(Documents, OneStreamWhereverTheStretchesEnd)
{
    for (const fs::path &path : allDocuments()) {
        const std::string document = readFile(path);
        const std::string expected = convert(document).stream;
        const size_t stride = document.size() < 20000 ? 1 : 61;
        for (size_t shift = 0; shift <= 4096; shift += stride) {
            EXPECT_TRUE(convert(shifted(document, shift)).stream == expected) << path << ' ' << shift;
        }
    }
}

TEST(Documents, CutAnywhere)
{
    for (const fs::path &path : allDocuments()) {
        const std::string document = readFile(path);
        const size_t stride = document.size() < 20000 ? 1 : 101;
        for (size_t length = 0; length < document.size(); length += stride) {
            const Conversion conversion = convert(document.substr(0, length));
            EXPECT_TRUE(conversion.result == 0 ? conversion.percent == 100 : conversion.stream.empty());
            EXPECT_TRUE(isWhole(conversion)) << path << ' ' << length;
        }
    }
}

TEST(Documents, EveryAllocationFailing)
{
    for (const fs::path &path : documentsIn(MIFREADER_TEST_DOCUMENTS)) {
        const std::string document = readFile(path);
        const size_t allocations = convert(document).allocations;
        const size_t stride = std::max<size_t>(1, allocations / 3000);
        for (size_t failing = 1; failing <= allocations; failing += stride) {
            for (const bool forGood : {false, true}) {
                // A small buffer makes tokens wait in memory too.
                const Conversion conversion =
                    convert(document, {.bufferSize = 4200, .failingAllocation = failing, .failsFromThereOn = forGood});
                EXPECT_TRUE(isWhole(conversion)) << path << ' ' << failing;
                EXPECT_TRUE(!forGood || conversion.result == 6) << path << ' ' << failing;
            }
        }
    }
}

// Memory does not grow with the document, and no byte is read twice.
TEST(Documents, MemoryAndReadsOfLargeDocuments)
{
    std::string flow;
    for (int paragraph = 0; paragraph < 20000; ++paragraph) {
        flow += "<Para <ParaLine <String `The quick brown fox jumps over the lazy dog, again and again.'> > > # end\n";
    }
    const std::string document = documentOf(flow);
    TestHost host(document, {.bufferSize = 65536});
    const Conversion conversion = host.convert();
    EXPECT_EQ(conversion.result, 0);
    EXPECT_LT(conversion.peakBytes, 64U * 1024);
    EXPECT_LE(host.reads, document.size() / 4000 + 2);
}
