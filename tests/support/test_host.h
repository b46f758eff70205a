// A host that is as unpleasant as hosts get, and that checks the library's side of the contract on every call: what is
// freed was allocated, nothing is written outside the given lengths, everything is given back.
#ifndef MIFREADER_TESTS_TEST_HOST_H
#define MIFREADER_TESTS_TEST_HOST_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

#include "mifhost/fonts.h"
#include "mifreader/reader.h"

namespace miftest
{

// What the host does to the library.
struct Conditions {
    size_t bytesPerRead = SIZE_MAX;
    uint32_t bufferSize = 1 << 18;
    size_t failingAllocation = 0;  // the nth allocation of the document fails, counted from 1
    bool failsFromThereOn = false; // and all later ones
    size_t lyingRead = 0;          // the nth read answers with an error value, counted from 1
    int32_t statedSize = 0;        // what the host tells of the document's size
};

struct Conversion {
    int32_t result = 0;
    int32_t percent = 0;
    std::string stream; // all calls' tokens, one behind the other
    size_t calls = 0;
    size_t allocations = 0;
    size_t peakBytes = 0;
    mifhost::FontRegistry fonts;
};

class TestHost
{
public:
    explicit TestHost(std::string document, const Conditions &conditions = {});
    TestHost(const TestHost &) = delete;
    TestHost &operator=(const TestHost &) = delete;

    // Every block must have been given back.
    ~TestHost();

    // From the context's birth to its end.
    Conversion convert();

    // The steps of it, for tests that look between them.
    MifContext *open();
    void fill(MifContext *context, Conversion &conversion);
    void close(MifContext *context);

    HostStream *stream();
    HostServices *services();

    std::vector<MifFileAccess> fileAccesses; // one for each notification with the record
    mifhost::FontRegistry fonts;             // announced so far
    size_t reads = 0;
    size_t seeks = 0;

private:
    static void *allocate(void *area, size_t size);
    static void *allocateZeroed(void *area, size_t count, size_t size);
    static void release(void *area, void *block);
    static size_t read(HostStream *stream, void *destination, size_t count);
    static void seek(HostStream *stream, intptr_t offset, int32_t origin);
    static intptr_t tell(HostStream *stream);
    static uint32_t notify(void *cookie, uint32_t code, void *data);
    void *take(size_t size, int filling);

    struct Services {
        HostServices record;
        TestHost *host;
    };
    struct Stream {
        HostStream record;
        TestHost *host;
    };

    std::string document_;
    Conditions conditions_;
    Services services_{};
    Stream stream_{};
    size_t position_ = 0;
    std::unordered_map<void *, size_t> blocks_;
    size_t allocations_ = 0;
    size_t bytesInUse_ = 0;
    size_t peakBytes_ = 0;
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

// The tokens that a text flow gives, without the preamble.
std::string tokensOf(const std::string &flow);

} // namespace miftest

#endif
