#include "support/test_host.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "mifhost/error.h"
#include "mifhost/token.h"
#include "mifread/token_listing.h"

namespace miftest
{

namespace
{

constexpr size_t guardSize = 64;
constexpr uint8_t guardByte = 0xE5;
constexpr size_t largestBlock = 64 << 20; // the host's memory has an end
constexpr size_t mostCalls = 50'000'000;

} // namespace

TestHost::TestHost(std::string document, const Conditions &conditions)
    : document_(std::move(document)), conditions_(conditions)
{
    services_.host = this;
    services_.record.allocate = allocate;
    services_.record.allocateZeroed = allocateZeroed;
    services_.record.free = release;
    stream_.host = this;
    stream_.record.read = read;
    stream_.record.seek = seek;
    stream_.record.tell = tell;
}

TestHost::~TestHost()
{
    EXPECT_TRUE(blocks_.empty()) << blocks_.size() << " blocks leaked";
    for (const auto &block : blocks_) {
        ::free(block.first);
    }
}

HostStream *TestHost::stream()
{
    return &stream_.record;
}

HostServices *TestHost::services()
{
    return &services_.record;
}

// Blocks are of exactly the size asked for, so that AddressSanitizer sees every byte beyond.
void *TestHost::take(size_t size, int filling)
{
    const size_t number = ++allocations_;
    if (size > largestBlock) {
        return nullptr;
    }
    if (conditions_.failingAllocation != 0 &&
        (number == conditions_.failingAllocation ||
         (conditions_.failsFromThereOn && number > conditions_.failingAllocation))) {
        return nullptr;
    }
    void *block = malloc(size);
    memset(block, filling, size);
    blocks_[block] = size;
    bytesInUse_ += size;
    peakBytes_ = std::max(peakBytes_, bytesInUse_);
    return block;
}

void *TestHost::allocate(void *area, size_t size)
{
    auto *services = reinterpret_cast<Services *>(static_cast<char *>(area) - offsetof(HostServices, memoryHandleArea));
    return services->host->take(size, 0xA5);
}

void *TestHost::allocateZeroed(void *area, size_t count, size_t size)
{
    EXPECT_EQ(count, 1U);
    auto *services = reinterpret_cast<Services *>(static_cast<char *>(area) - offsetof(HostServices, memoryHandleArea));
    return services->host->take(count * size, 0);
}

void TestHost::release(void *area, void *block)
{
    auto *services = reinterpret_cast<Services *>(static_cast<char *>(area) - offsetof(HostServices, memoryHandleArea));
    TestHost *host = services->host;
    const auto found = host->blocks_.find(block);
    if (found == host->blocks_.end()) {
        ADD_FAILURE() << "a block is freed that is not in use";
        return;
    }
    host->bytesInUse_ -= found->second;
    memset(block, 0x5A, found->second);
    host->blocks_.erase(found);
    ::free(block);
}

size_t TestHost::read(HostStream *stream, void *destination, size_t count)
{
    TestHost *host = reinterpret_cast<Stream *>(stream)->host;
    EXPECT_GT(count, 0U);
    if (++host->reads == host->conditions_.lyingRead) {
        return SIZE_MAX;
    }
    const size_t left = host->document_.size() - std::min(host->position_, host->document_.size());
    const size_t delivered = std::min({count, left, host->conditions_.bytesPerRead});
    memcpy(destination, host->document_.data() + host->document_.size() - left, delivered);
    host->position_ += delivered;
    return delivered;
}

void TestHost::seek(HostStream *stream, intptr_t offset, int32_t origin)
{
    TestHost *host = reinterpret_cast<Stream *>(stream)->host;
    EXPECT_TRUE(origin == 0 || origin == 2) << origin;
    EXPECT_GE(offset, 0);
    ++host->seeks;
    host->position_ = static_cast<size_t>(offset) + (origin == 2 ? host->document_.size() : 0);
}

intptr_t TestHost::tell(HostStream *stream)
{
    return static_cast<intptr_t>(reinterpret_cast<Stream *>(stream)->host->position_);
}

uint32_t TestHost::notify(void *cookie, uint32_t code, void *data)
{
    auto *host = static_cast<TestHost *>(cookie);
    if (code == HOST_NOTIFY_FILE_ACCESS) {
        host->fileAccesses.push_back(*static_cast<MifFileAccess *>(data));
        return 0;
    }
    EXPECT_EQ(code, static_cast<uint32_t>(HOST_NOTIFY_FONT));
    const auto *font = static_cast<MifFontRecord *>(data);
    EXPECT_EQ(font->faceName[31], '\0');
    return host->fonts.add(*font);
}

MifContext *TestHost::open()
{
    uint32_t stored = 0;
    MifContext *context = mifAllocateContext(this, notify, &stored, services(), 0);
    EXPECT_EQ(stored, 1U);
    return context;
}

// One call, into a buffer with guards on both sides.
void TestHost::fill(MifContext *context, Conversion &conversion)
{
    std::vector<uint8_t> memory(conditions_.bufferSize + 2 * guardSize, guardByte);
    uint32_t written = 0;
    conversion.result =
        mifFillBuffer(context, memory.data() + guardSize, &written, &conversion.percent, conditions_.bufferSize);
    const auto isGuard = [](uint8_t byte) { return byte == guardByte; };
    EXPECT_TRUE(std::all_of(memory.begin(), memory.begin() + guardSize, isGuard));
    EXPECT_TRUE(std::all_of(memory.end() - guardSize, memory.end(), isGuard)) << "written past the buffer's end";
    ASSERT_LE(written, conditions_.bufferSize);
    EXPECT_TRUE(conversion.result == 0 || conversion.result == 6) << conversion.result;
    EXPECT_TRUE(conversion.percent >= 0 && conversion.percent <= 100) << conversion.percent;
    conversion.stream.append(reinterpret_cast<const char *>(memory.data()) + guardSize, written);
    ++conversion.calls;
}

void TestHost::close(MifContext *context)
{
    mifFreeContext(context);
}

Conversion TestHost::convert()
{
    Conversion conversion;
    conversion.result = 6;
    MifContext *context = open();
    if (context != nullptr) {
        conversion.result = mifInitDoc(context, nullptr, conditions_.statedSize, stream());
        while (conversion.result == 0 && conversion.percent < 100) {
            fill(context, conversion);
            if (conversion.calls > mostCalls) {
                ADD_FAILURE() << "the conversion does not end";
                break;
            }
        }
        close(context);
    }
    conversion.allocations = allocations_;
    conversion.peakBytes = peakBytes_;
    conversion.fonts = fonts;
    return conversion;
}

Conversion convert(const std::string &document, const Conditions &conditions)
{
    return TestHost(document, conditions).convert();
}

std::string readFile(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::ostringstream content;
    content << file.rdbuf();
    return std::move(content).str();
}

std::string documentOf(const std::string &flow)
{
    return "<MIFFile 5.50> # Made for a test\n"
           "<Page <PageType BodyPage> <TextRect <ID 9> > >\n"
           "<TextFlow <TextRectID 9> " +
           flow + ">\n# End of MIFFile\n";
}

std::string listing(const Conversion &conversion)
{
    std::string lines;
    mifread::TokenListing tokens(conversion.fonts);
    mifhost::TokenDecoder decoder;
    decoder.decode({reinterpret_cast<const uint8_t *>(conversion.stream.data()), conversion.stream.size()});
    try {
        while (const mifhost::Token *token = decoder.next()) {
            tokens.append(*token, lines);
        }
    } catch (const mifhost::StreamError &error) {
        lines += std::string("! ") + error.what() + '\n';
    }
    return lines;
}

std::string bodyListing(const Conversion &conversion)
{
    const std::string lines = listing(conversion);
    const std::string preambleEnd = "charset 7\n";
    return lines.substr(lines.find(preambleEnd) + preambleEnd.size());
}

bool isWhole(const Conversion &conversion)
{
    return listing(conversion).find("\n!") == std::string::npos;
}

std::string tokensOf(const std::string &flow)
{
    const Conversion conversion = convert(documentOf(flow));
    EXPECT_EQ(conversion.result, 0);
    return bodyListing(conversion);
}

} // namespace miftest
