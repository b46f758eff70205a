// A host that is as unpleasant as hosts get, and that checks the library's side of the contract on every call.
//
// Every block, record, buffer and name ends where a protected page begins. Fresh memory is rubbish, and so is what a
// read leaves of the place that it was given; a buffer can no longer be touched once the next call has begun. Slots
// that are the host's own lead to an abort when they are called. Checked are: what is freed was allocated, and all of
// it is; nothing is written or asked for outside of the given lengths and of the document; the host's records stay as
// they are; every call stores what it promises and gets on; the memory stays within its bound.
//
// It counts what the library asks for, so that linear work is proved by counting and not by a clock.
#ifndef MIFREADER_TESTS_TEST_HOST_H
#define MIFREADER_TESTS_TEST_HOST_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "mifhost/fonts.h"
#include "mifreader/extended.h"
#include "mifreader/reader.h"
#include "support/guarded_memory.h"

namespace miftest
{

// An operation that fails: the nth one, counted from 1, or from there on all of them.
struct Failing {
    size_t first = 0; // 0 for none
    bool forGood = false;

    bool at(size_t number) const
    {
        return first != 0 && (forGood ? number >= first : number == first);
    }
};

enum class ReadAnswer {
    nothing,
    oneByte, // which is delivered
    moreThanAsked,
    errorValue
};

// What the host does with every object of the document after each call.
enum class ObjectUse {
    none,
    readABit,
    readWhole,
    leaveOpen, // the whole is read and the object not closed
    anything   // seeks beyond the ends, reads and does not close: the document may suffer from it, the library not
};

// What the host does to the library.
struct Conditions {
    bool isExtended = false; // the stream that is asked for
    uint32_t encoding = MIF_ENCODING_AUTO;
    size_t bytesPerRead = SIZE_MAX;
    uint32_t bufferSize = 1 << 18;
    int32_t statedSize = 0;                // what the host tells of the document's size
    std::optional<intptr_t> toldSize = {}; // what the stream tells of it, when it is not the size that it has
    ObjectUse objects = ObjectUse::none;
    Failing allocation = {};
    Failing read = {};
    ReadAnswer answer = ReadAnswer::errorValue; // of a failing read
    Failing seek = {};                          // goes nowhere
};

// What the library asked for.
struct Work {
    size_t calls = 0;
    size_t reads = 0;
    size_t bytesRead = 0;
    size_t seeks = 0;
    size_t allocations = 0;
    size_t peakBytes = 0;
};

struct Conversion {
    int32_t result = 0;
    int32_t percent = 0;
    std::string stream; // all calls' tokens, one behind the other
    Work work;
    size_t failedSize = 0; // of the first allocation that was refused
    mifhost::FontRegistry fonts;
    std::map<std::string, std::set<std::string>> objects; // what each object was read as, by its identifier
};

class TestHost
{
public:
    explicit TestHost(std::string document, const Conditions &conditions = {});
    TestHost(const TestHost &) = delete;
    TestHost &operator=(const TestHost &) = delete;
    ~TestHost();

    // From the context's birth to its end.
    Conversion convert();

    // The steps of it, for tests that look between them.
    MifContext *open();
    void fill(MifContext *context, Conversion &conversion);
    void fill(MifContext *context, Conversion &conversion, uint32_t bufferSize);
    void close(MifContext *context);

    // The whole of an object, read in blocks; it stays open. False when there is no such object.
    bool readObject(MifContext *context, const std::string &name, size_t block, std::string &bytes);

    HostStream *stream();
    HostServices *services();
    Work work() const;

    std::vector<MifFileAccess> fileAccesses; // one for each notification with the record
    mifhost::FontRegistry fonts;             // announced so far

private:
    static TestHost &ofServices(void *area);
    static TestHost &ofStream(HostStream *stream);
    static void *allocate(void *area, size_t size);
    static void *allocateZeroed(void *area, size_t count, size_t size);
    static void release(void *area, void *block);
    static size_t read(HostStream *stream, void *destination, size_t count);
    static void seek(HostStream *stream, intptr_t offset, int32_t origin);
    static intptr_t tell(HostStream *stream);
    static uint32_t notify(void *cookie, uint32_t code, void *data);
    void *take(size_t size);
    size_t answerOf(size_t count) const;
    bool isTrueToItsSize() const;
    void useObjects(MifContext *context, Conversion &conversion);
    void misuseObject(MifContext *context, const std::string &name);
    void checkWork(const Conversion &conversion) const;
    void checkThatItIsFinal(MifContext *context, const Conversion &conversion);

    std::string document_;
    Conditions conditions_;
    Guarded<HostServices> services_;
    Guarded<HostStream> stream_;
    HostServices servicesBefore_{};
    HostStream streamBefore_{};
    GuardedMemory memory_;
    PassingBuffers buffers_;
    std::vector<std::string> objectNames_;
    size_t position_ = 0;
    bool atEnd_ = false; // the last seek went there
    Work work_;
    size_t bytesInUse_ = 0;
    size_t failedSize_ = 0;
    bool closed_ = false;
};

// Converts under the given conditions with a host of its own.
Conversion convert(const std::string &document, const Conditions &conditions = {});

std::string readFile(const std::filesystem::path &path);

// A whole document around the content of a text flow: a body page with text rectangle 9, where the flow stands.
std::string documentOf(const std::string &flow);

// The tokens as `mifread tokens` lists them. What is wrong with the stream is a last line that begins with `!`.
std::string listing(const Conversion &conversion);

// The same without the preamble.
std::string bodyListing(const Conversion &conversion);

// Whether the stream consists of whole and valid tokens.
bool isWhole(const Conversion &conversion);

// The tokens of the stream, each with its head, as views of it. It must be whole.
std::vector<std::string_view> tokensIn(const std::string &stream);

// What the stream holds but for losses, whose bytes tell where in the document they are.
std::string withoutLosses(const std::string &stream);

// The length of the stream's largest token.
uint32_t largestToken(const std::string &stream);

// The tokens that a text flow gives, without the preamble.
std::string tokensOf(const std::string &flow);

} // namespace miftest

#endif
