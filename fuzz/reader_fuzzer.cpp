// The whole reader through its entry table. The input is a document and a plan: a conversion under the plan's
// conditions must give what one under the easiest conditions gives.
#include <algorithm>
#include <string>

#include "check.h"
#include "plan.h"
#include "session.h"

namespace miffuzz
{

namespace
{

constexpr size_t planSize = 21;

// What is done with objects between two calls.
struct ObjectPlan {
    uint32_t everyNthCall; // 0 for never
    int32_t blockSize;     // at least 1: after a seek a read puts the stream back for the next call
    int32_t offset;
    int32_t origin;
    bool close;
};

// The document with one of its bytes repeated, so that even a short input can be longer than any stretch.
std::string inflated(std::string_view document, Plan &plan)
{
    const uint32_t position = plan.u16();
    const uint32_t count = plan.u16();
    std::string result(document);
    if (position < result.size() && count < 0x4000) {
        result.insert(position, count, result[position]);
    }
    return result;
}

// The bytes that the reader may take up: those of the document, and at most those of one table for each anchor.
size_t mostWork(std::string_view document)
{
    size_t anchors = 0;
    for (size_t place = document.find("ATbl"); place != std::string_view::npos;
         place = document.find("ATbl", place + 1)) {
        ++anchors;
    }
    return (anchors + 1) * document.size();
}

// Small pieces of much work would only take long.
size_t readSize(uint32_t number, std::string_view document)
{
    constexpr size_t mostPieces = 200'000;
    return number == 0 ? SIZE_MAX : std::max<size_t>(number, mostWork(document) / mostPieces);
}

// Reads a bit of the objects; whatever that gives, it must not change the stream.
void readObjects(const Session &session, const ObjectPlan &plan)
{
    static const std::string someNames[] = {"1", "5", "x"};
    std::string block(static_cast<size_t>(plan.blockSize), '\0');
    const auto use = [&](const std::string &name) {
        MifFileHandle handle{{}, name.c_str(), session.context()};
        const MifFileAccess &files = session.files();
        files.mifFileOpen(&handle);
        files.mifFileRead(&handle, block.data(), plan.blockSize);
        files.mifFileSeek(&handle, plan.offset, plan.origin);
        files.mifFileRead(&handle, block.data(), plan.blockSize);
        if (plan.close) {
            files.mifFileClose(&handle);
        }
    };
    std::for_each(std::begin(someNames), std::end(someNames), use);
    std::for_each(session.frames().begin(),
                  session.frames().begin() + std::min<ptrdiff_t>(3, std::ssize(session.frames())), use);
}

void convert(Session &session, const ObjectPlan &objects)
{
    for (uint32_t call = 1; session.fill(); ++call) {
        if (objects.everyNthCall != 0 && call % objects.everyNthCall == 0) {
            readObjects(session, objects);
        }
    }
}

// The stream under the plan is that under the easiest conditions, or, where a token is larger than a buffer, its
// beginning.
void compare(const Session &session, const Session &expected, const Conditions &conditions)
{
    const uint32_t smallest = std::min(conditions.bufferSizes[0], conditions.bufferSizes[1]);
    const std::string &stream = session.stream();
    const std::string &expectedStream = expected.stream();
    if (session.hadEnough() || expected.hadEnough()) {
        const size_t common = std::min(stream.size(), expectedStream.size());
        require(stream.compare(0, common, expectedStream, 0, common) == 0, "one stream for all conditions");
    } else if (session.result() == MIF_FAILURE && smallest < expected.largestToken()) {
        require(expectedStream.starts_with(stream), "what comes before a failure is whole");
    } else {
        require(session.result() == expected.result(), "one result for all conditions");
        require(expected.result() != MIF_SUCCESS || stream == expectedStream, "one stream for all conditions");
        require(expectedStream.starts_with(stream), "what comes before a failure is whole");
    }
}

} // namespace

} // namespace miffuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace miffuzz;
    std::string_view input(reinterpret_cast<const char *>(data), size);
    Plan plan(input, planSize);
    const uint32_t stream = plan.u8();
    const std::string document = inflated(input, plan);

    Conditions conditions{.isExtended = stream % 2 != 0, .encoding = stream / 2 % 4};
    Session expected(document, conditions);
    expected.fillAll();

    for (uint32_t &bufferSize : conditions.bufferSizes) {
        bufferSize = plan.u16();
    }
    if (plan.u8() % 4 != 0) { // the least that must do
        for (uint32_t &bufferSize : conditions.bufferSizes) {
            bufferSize = expected.largestToken() + bufferSize % 256;
        }
    }
    for (size_t &most : conditions.readSizes) {
        most = readSize(plan.u8(), document);
    }
    const uint32_t objectPlan = plan.u16();
    const ObjectPlan objects{objectPlan % 4, static_cast<int32_t>(objectPlan / 4 % 512) + 1,
                             static_cast<int32_t>(plan.u8()) - 64, static_cast<int32_t>(objectPlan / 2048 % 4),
                             objectPlan / 8192 % 2 != 0};
    const uint32_t fault = plan.u8();
    if (fault % 4 == 1) {
        conditions.lyingRead = fault / 4;
    } else if (fault % 4 == 2) {
        conditions.memoryLimit = 7000 + size_t{fault} * 64;
    } else if (fault % 4 == 3) {
        conditions.statedSize = static_cast<int32_t>(document.size()) + static_cast<int32_t>(fault) - 128;
    }
    Session session(document, conditions);
    convert(session, objects);
    if (fault % 4 == 0) {
        compare(session, expected, conditions);
    }
    return 0;
}
