#include "support/test_host.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "mifconvert/token_listing.h"
#include "mifhost/error.h"
#include "mifhost/token.h"
#include "mifreader/tokens.h"

namespace miftest
{

namespace
{

constexpr size_t largestBlock = 64 << 20; // the host's memory has an end
constexpr size_t objectBlock = 512;
constexpr size_t mostObjects = 16;
constexpr int rubbish = 0xA5;

// The bound of a document's memory: so many bytes for each of its bytes, for each byte of the host's buffer, and in any
// case.
constexpr size_t memoryPerByte = 20;
constexpr size_t memoryPerBufferByte = 1;
constexpr size_t memoryAnyway = size_t{96} * 1024;

constexpr uint32_t notStored = 0xDEADBEEF;

std::vector<TestHost *> &hosts()
{
    static std::vector<TestHost *> hosts;
    return hosts;
}

[[noreturn]] void trap()
{
    fputs("the library called a slot that is the host's own\n", stderr);
    abort();
}

template <typename Record>
void fillWithTraps(Record &record)
{
    void *traps[sizeof(Record) / sizeof(void *)];
    std::fill(std::begin(traps), std::end(traps), reinterpret_cast<void *>(trap));
    memcpy(&record, traps, sizeof(record));
}

template <typename Record>
bool sameBytes(const Record &left, const Record &right)
{
    return memcmp(&left, &right, sizeof(Record)) == 0;
}

// Of everything that has an ID, and of nothing.
std::vector<std::string> objectNamesOf(const std::string &document)
{
    std::vector<std::string> names = {"4711"};
    for (size_t place = 0; (place = document.find("<ID ", place)) != std::string::npos;) {
        place += 4;
        const std::string name = document.substr(place, document.find_first_not_of("-0123456789", place) - place);
        if (std::find(names.begin(), names.end(), name) == names.end() && names.size() < mostObjects) {
            names.push_back(name);
        }
    }
    return names;
}

// A handle and its name, each at the end of its pages.
class ObjectHandle
{
public:
    ObjectHandle(MifContext *context, const std::string &name) : name_(name.size() + 1)
    {
        fillWithTraps(*handle_.get());
        char *text = reinterpret_cast<char *>(name_.end()) - name.size() - 1;
        memcpy(text, name.c_str(), name.size() + 1);
        handle_->name = text;
        handle_->context = context;
        before_ = *handle_.get();
    }
    ObjectHandle(const ObjectHandle &) = delete;
    ObjectHandle &operator=(const ObjectHandle &) = delete;

    ~ObjectHandle()
    {
        EXPECT_TRUE(sameBytes(*handle_.get(), before_)) << "a file handle was written to";
    }

    MifFileHandle *get() const
    {
        return handle_.get();
    }

private:
    Guarded<MifFileHandle> handle_;
    GuardedPages name_;
    MifFileHandle before_{};
};

} // namespace

TestHost::TestHost(std::string document, const Conditions &conditions)
    : document_(std::move(document)), conditions_(conditions)
{
    fillWithTraps(*services_.get());
    services_->allocate = allocate;
    services_->allocateZeroed = allocateZeroed;
    services_->free = release;
    servicesBefore_ = *services_.get();
    fillWithTraps(*stream_.get());
    stream_->read = read;
    stream_->seek = seek;
    stream_->tell = tell;
    streamBefore_ = *stream_.get();
    if (conditions.objects != ObjectUse::none) {
        objectNames_ = objectNamesOf(document_);
    }
    hosts().push_back(this);
}

TestHost::~TestHost()
{
    EXPECT_TRUE(memory_.empty()) << "not all memory was given back";
    EXPECT_TRUE(sameBytes(*services_.get(), servicesBefore_) && sameBytes(*stream_.get(), streamBefore_))
        << "the host's records were written to";
    hosts().erase(std::find(hosts().begin(), hosts().end(), this));
}

HostStream *TestHost::stream()
{
    return stream_.get();
}

HostServices *TestHost::services()
{
    return services_.get();
}

Work TestHost::work() const
{
    return work_;
}

// The host whose handle area that is. Its content would lead into the trap.
TestHost &TestHost::ofServices(void *area)
{
    for (TestHost *host : hosts()) {
        if (area == &host->services_->memoryHandleArea) {
            EXPECT_FALSE(host->closed_) << "called after the end of the context";
            return *host;
        }
    }
    fputs("not the address of a host's handle area\n", stderr);
    abort();
}

TestHost &TestHost::ofStream(HostStream *stream)
{
    for (TestHost *host : hosts()) {
        if (stream == host->stream_.get()) {
            EXPECT_FALSE(host->closed_) << "called after the end of the context";
            return *host;
        }
    }
    fputs("not a host's stream\n", stderr);
    abort();
}

void *TestHost::take(size_t size)
{
    EXPECT_GT(size, 0U);
    const bool refused = conditions_.allocation.at(++work_.allocations) || size > largestBlock;
    if (refused) {
        failedSize_ = failedSize_ == 0 ? size : failedSize_;
        return nullptr;
    }
    bytesInUse_ += size;
    work_.peakBytes = std::max(work_.peakBytes, bytesInUse_);
    return memory_.take(size);
}

void *TestHost::allocate(void *area, size_t size)
{
    return ofServices(area).take(size);
}

void *TestHost::allocateZeroed(void *area, size_t count, size_t size)
{
    EXPECT_EQ(count, 1U);
    void *block = ofServices(area).take(count * size);
    return block != nullptr ? memset(block, 0, count * size) : nullptr;
}

void TestHost::release(void *area, void *block)
{
    TestHost &host = ofServices(area);
    host.bytesInUse_ -= host.memory_.sizeOf(block);
    host.memory_.giveBack(block);
}

// Whether the stream is what it is said to be, so that the library has no reason to leave it.
bool TestHost::isTrueToItsSize() const
{
    return !conditions_.toldSize.has_value() &&
           (conditions_.statedSize == 0 || conditions_.statedSize == static_cast<int32_t>(document_.size())) &&
           conditions_.read.first == 0 && conditions_.seek.first == 0 && conditions_.objects != ObjectUse::anything;
}

// What this read answers when `count` bytes could be delivered.
size_t TestHost::answerOf(size_t count) const
{
    if (!conditions_.read.at(work_.reads)) {
        return std::min(count, conditions_.bytesPerRead);
    }
    switch (conditions_.answer) {
    case ReadAnswer::oneByte:
        return std::min<size_t>(count, 1);
    case ReadAnswer::moreThanAsked:
        return count + 1;
    case ReadAnswer::errorValue:
        return SIZE_MAX;
    case ReadAnswer::nothing:
        break;
    }
    return 0;
}

size_t TestHost::read(HostStream *stream, void *destination, size_t count)
{
    TestHost &host = ofStream(stream);
    EXPECT_GT(count, 0U);
    EXPECT_TRUE(host.memory_.holds(destination, count)) << "a read to memory that is not the library's";
    EXPECT_TRUE(!host.isTrueToItsSize() || host.position_ + count <= host.document_.size())
        << "a read behind the document's end";
    ++host.work_.reads;
    memset(destination, rubbish, count); // whatever is delivered
    const size_t left = host.document_.size() - std::min(host.position_, host.document_.size());
    const size_t answer = host.answerOf(std::min(count, left));
    if (answer <= std::min(count, left)) {
        memcpy(destination, host.document_.data() + host.document_.size() - left, answer);
        host.position_ += answer;
        host.work_.bytesRead += answer;
        return answer;
    }
    return answer != SIZE_MAX ? count + 1 : answer;
}

void TestHost::seek(HostStream *stream, intptr_t offset, int32_t origin)
{
    TestHost &host = ofStream(stream);
    EXPECT_TRUE(origin == 0 || origin == 2) << origin;
    EXPECT_GE(offset, 0);
    EXPECT_TRUE(!host.isTrueToItsSize() || static_cast<size_t>(offset) <= (origin == 0 ? host.document_.size() : 0))
        << "a seek behind the document's end";
    host.atEnd_ = origin == 2;
    if (!host.conditions_.seek.at(++host.work_.seeks)) {
        host.position_ = static_cast<size_t>(offset) + (origin == 2 ? host.document_.size() : 0);
    }
}

intptr_t TestHost::tell(HostStream *stream)
{
    const TestHost &host = ofStream(stream);
    return host.atEnd_ ? host.conditions_.toldSize.value_or(host.document_.size())
                       : static_cast<intptr_t>(host.position_);
}

uint32_t TestHost::notify(void *cookie, uint32_t code, void *data)
{
    auto *host = static_cast<TestHost *>(cookie);
    EXPECT_FALSE(host->closed_) << "called after the end of the context";
    if (code == HOST_NOTIFY_FILE_ACCESS) {
        host->fileAccesses.push_back(*static_cast<MifFileAccess *>(data));
        return 0;
    }
    EXPECT_EQ(code, static_cast<uint32_t>(HOST_NOTIFY_FONT));
    const auto *font = static_cast<MifFontRecord *>(data);
    const auto *nameEnd = std::find(std::begin(font->faceName), std::end(font->faceName), '\0');
    EXPECT_TRUE(nameEnd != std::end(font->faceName) &&
                std::all_of(nameEnd, std::end(font->faceName), [](char byte) { return byte == '\0'; }));
    EXPECT_TRUE(std::all_of(std::begin(font->zeros), std::end(font->zeros), [](uint8_t byte) { return byte == 0; }));
    return host->fonts.add(*font);
}

MifContext *TestHost::open()
{
    const Guarded<uint32_t> stored;
    MifContext *context = mifAllocateContext(this, notify, stored.get(), services(), 0);
    EXPECT_EQ(*stored.get(), 1U);
    if (context != nullptr && conditions_.isExtended) {
        EXPECT_EQ(mifExtendStream(context, MIF_EXTENDED_VERSION, conditions_.encoding), 0);
    }
    return context;
}

void TestHost::fill(MifContext *context, Conversion &conversion)
{
    fill(context, conversion, conditions_.bufferSize);
}

void TestHost::fill(MifContext *context, Conversion &conversion, uint32_t size)
{
    uint8_t *buffer = buffers_.next(size);
    const Guarded<uint32_t> written;
    const Guarded<int32_t> percent;
    *written.get() = notStored;
    *percent.get() = -1;
    conversion.result = mifFillBuffer(context, buffer, written.get(), percent.get(), size);
    ++work_.calls;
    EXPECT_TRUE(buffers_.intact()) << "written before the buffer";
    ASSERT_TRUE(conversion.result == 0 || conversion.result == 6) << conversion.result;
    if (conversion.result == 6 && *written.get() == notStored) {
        EXPECT_EQ(*percent.get(), -1) << "one of the two values was stored";
        return; // not MIF
    }
    ASSERT_LE(*written.get(), size);
    ASSERT_TRUE(*percent.get() >= 0 && *percent.get() <= 100) << *percent.get();
    EXPECT_TRUE(*percent.get() >= conversion.percent || !isTrueToItsSize()) << "the percentage falls";
    uint8_t *tokensEnd = buffer + *written.get();
    EXPECT_TRUE(std::all_of(tokensEnd, buffer + std::min(size, *written.get() + 256), [](uint8_t byte) {
        return byte == rubbish;
    })) << "written behind the tokens";
    conversion.percent = *percent.get();
    conversion.stream.append(buffer, tokensEnd);
    useObjects(context, conversion);
}

void TestHost::close(MifContext *context)
{
    mifFreeContext(context);
    EXPECT_TRUE(memory_.empty()) << "not all memory was given back";
    closed_ = true;
}

Conversion TestHost::convert()
{
    Conversion conversion;
    conversion.result = 6;
    MifContext *context = open();
    if (context != nullptr) {
        conversion.result = mifInitDoc(context, nullptr, conditions_.statedSize, stream());
        while (conversion.result == 0 && conversion.percent < 100 && !testing::Test::HasFatalFailure()) {
            fill(context, conversion);
            checkWork(conversion);
        }
        if (work_.calls > 0) {
            checkThatItIsFinal(context, conversion);
        }
        close(context);
    }
    conversion.work = work_;
    conversion.failedSize = failedSize_;
    conversion.fonts = fonts;
    return conversion;
}

// After 100 percent and after a 6 nothing comes, whatever the buffer.
void TestHost::checkThatItIsFinal(MifContext *context, const Conversion &conversion)
{
    for (const uint32_t size : {conditions_.bufferSize, 0U, 1U, 100'000U}) {
        Conversion further;
        fill(context, further, size);
        EXPECT_TRUE(further.result == conversion.result && (further.percent == 100 || further.result == 6) &&
                    further.stream.empty())
            << "a further call, with a buffer of " << size << ", gives something else";
    }
}

// Two calls together fill a buffer up to its limit, so a document that comes to its end has so many calls at most.
void TestHost::checkWork(const Conversion &conversion) const
{
    const size_t limit = std::max<size_t>(size_t{conditions_.bufferSize} * 9 / 10, 1);
    ASSERT_LE(work_.calls, 2 * conversion.stream.size() / limit + 2) << "calls without progress";
    EXPECT_LE(work_.peakBytes,
              memoryPerByte * document_.size() + memoryPerBufferByte * size_t{conditions_.bufferSize} + memoryAnyway)
        << double(work_.peakBytes) / double(document_.size()) << " for each byte of " << document_.substr(60, 150);
}

bool TestHost::readObject(MifContext *context, const std::string &name, size_t block, std::string &bytes)
{
    const ObjectHandle handle(context, name);
    const MifFileAccess &access = fileAccesses.at(0);
    if (access.mifFileOpen(handle.get()) == 0) {
        return false;
    }
    PassingBuffers buffers;
    const auto size = static_cast<int32_t>(block);
    for (int32_t count = size; count == size;) {
        const uint8_t *buffer = buffers.next(block);
        count = access.mifFileRead(handle.get(), const_cast<uint8_t *>(buffer), size);
        EXPECT_TRUE(count >= 0 && count <= size && buffers.intact());
        bytes.append(buffer, buffer + std::clamp(count, 0, size));
    }
    EXPECT_EQ(access.mifFileTell(handle.get()), static_cast<int32_t>(bytes.size()));
    return true;
}

// Whatever a host may ask for.
void TestHost::misuseObject(MifContext *context, const std::string &name)
{
    const ObjectHandle handle(context, name);
    const MifFileAccess &access = fileAccesses.at(0);
    access.mifFileOpen(handle.get());
    PassingBuffers buffers;
    for (const int32_t offset : {0, 3, -1, 100000, INT32_MAX, INT32_MIN}) {
        for (const int32_t origin : {0, 1, 2, 3, -1}) {
            access.mifFileSeek(handle.get(), offset, origin);
            access.mifFileRead(handle.get(), buffers.next(7), offset == -1 ? -1 : 7);
            EXPECT_TRUE(buffers.intact());
            EXPECT_GE(access.mifFileTell(handle.get()), -1);
        }
    }
    access.mifFileSeek(handle.get(), 0, MIF_SEEK_START);
}

void TestHost::useObjects(MifContext *context, Conversion &conversion)
{
    for (const std::string &name : objectNames_) {
        const ObjectHandle handle(context, name);
        const MifFileAccess &access = fileAccesses.at(0);
        if (conditions_.objects == ObjectUse::anything) {
            misuseObject(context, name);
            continue;
        }
        if (conditions_.objects == ObjectUse::readABit) {
            PassingBuffers buffers;
            access.mifFileOpen(handle.get());
            access.mifFileRead(handle.get(), buffers.next(64), 64);
            access.mifFileClose(handle.get());
            continue;
        }
        std::string bytes;
        if (readObject(context, name, objectBlock, bytes)) {
            conversion.objects[name].insert(bytes);
        }
        if (conditions_.objects == ObjectUse::readWhole) {
            access.mifFileClose(handle.get());
        }
    }
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
    mifconvert::TokenListing tokens(conversion.fonts);
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
    mifhost::TokenDecoder decoder;
    decoder.decode({reinterpret_cast<const uint8_t *>(conversion.stream.data()), conversion.stream.size()});
    try {
        while (decoder.next() != nullptr) {
        }
    } catch (const mifhost::StreamError &) {
        return false;
    }
    return true;
}

std::vector<std::string_view> tokensIn(const std::string &stream)
{
    std::vector<std::string_view> tokens;
    for (size_t position = 0; position + MIF_TOKEN_HEADER_SIZE <= stream.size();) {
        const auto byte = [&](size_t index) { return uint32_t{static_cast<uint8_t>(stream[position + index])}; };
        const uint32_t length = byte(1) | byte(2) << 8 | byte(3) << 16 | byte(4) << 24;
        tokens.push_back(std::string_view(stream).substr(position, length));
        position += std::max<uint32_t>(length, MIF_TOKEN_HEADER_SIZE);
    }
    return tokens;
}

std::string withoutLosses(const std::string &stream)
{
    std::string rest;
    for (const std::string_view token : tokensIn(stream)) {
        const auto code = static_cast<uint8_t>(token.front());
        if (code != TOKEN_LOSS && code != TOKEN_LOSS_TOTAL) {
            rest += token;
        }
    }
    return rest;
}

uint32_t largestToken(const std::string &stream)
{
    size_t largest = 0;
    for (const std::string_view token : tokensIn(stream)) {
        largest = std::max(largest, token.size());
    }
    return static_cast<uint32_t>(largest);
}

std::string tokensOf(const std::string &flow)
{
    const Conversion conversion = convert(documentOf(flow));
    EXPECT_EQ(conversion.result, 0);
    return bodyListing(conversion);
}

} // namespace miftest
