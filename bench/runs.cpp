#include "runs.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <benchmark/benchmark.h>
#include <expat.h>
#include <pugixml.hpp>

#include "mifreader/reader.h"

namespace mifbench
{

namespace
{

constexpr std::size_t pieceSize = 4096;
constexpr std::uint32_t bufferSize = 65536;

struct MemoryStream {
    HostStream record; // first, so that a stream's address is its record's
    std::string_view text;
    std::size_t position;
};

MemoryStream &streamOf(HostStream *stream)
{
    return *reinterpret_cast<MemoryStream *>(stream);
}

std::size_t readStream(HostStream *stream, void *destination, std::size_t count)
{
    MemoryStream &memory = streamOf(stream);
    const std::size_t delivered = memory.text.copy(static_cast<char *>(destination), count, memory.position);
    memory.position += delivered;
    return delivered;
}

void seekStream(HostStream *stream, std::intptr_t offset, std::int32_t origin)
{
    MemoryStream &memory = streamOf(stream);
    memory.position = static_cast<std::size_t>(offset) + (origin == MIF_SEEK_END ? memory.text.size() : 0);
}

std::intptr_t tellStream(HostStream *stream)
{
    return static_cast<std::intptr_t>(streamOf(stream).position);
}

// The host's memory. A small block that is given back waits for the next one of its size, so that the reader is
// measured and not the heap.
union Block {
    Block *next;       // of those that wait
    std::size_t units; // of one in use, whose bytes stand behind it
    std::max_align_t alignment;
};

std::array<Block *, 64> waitingBlocks; // by their size in units, for all conversions

void *allocateBlock(std::size_t size)
{
    const std::size_t units = 1 + (size + sizeof(Block) - 1) / sizeof(Block);
    Block *block = nullptr;
    if (units < waitingBlocks.size() && waitingBlocks[units] != nullptr) {
        block = waitingBlocks[units];
        waitingBlocks[units] = block->next;
    } else if ((block = static_cast<Block *>(std::malloc(units * sizeof(Block)))) == nullptr) {
        return nullptr;
    }
    block->units = units;
    return block + 1;
}

void freeBlock(void *bytes)
{
    Block *block = static_cast<Block *>(bytes) - 1;
    const std::size_t units = block->units;
    if (units < waitingBlocks.size()) {
        block->next = waitingBlocks[units];
        waitingBlocks[units] = block;
    } else {
        std::free(block);
    }
}

HostServices memoryServices()
{
    HostServices services{};
    services.allocate = [](void *, std::size_t size) { return allocateBlock(size); };
    services.allocateZeroed = [](void *, std::size_t count, std::size_t size) {
        void *bytes = allocateBlock(count * size);
        return bytes != nullptr ? std::memset(bytes, 0, count * size) : nullptr;
    };
    services.free = [](void *, void *bytes) { freeBlock(bytes); };
    return services;
}

} // namespace

bool convert(std::string_view mif)
{
    static std::array<std::uint8_t, bufferSize> buffer;
    MifReaderInterface reader{};
    mifGetReaderInterface(&reader);
    HostServices services = memoryServices();
    MemoryStream stream{{}, mif, 0};
    stream.record.read = readStream;
    stream.record.seek = seekStream;
    stream.record.tell = tellStream;
    std::uint32_t unusedResult = 0;
    MifContext *context = reader.mifAllocateContext(nullptr, nullptr, &unusedResult, &services, 0);
    std::int32_t result = reader.mifInitDoc(context, nullptr, 0, &stream.record);
    std::int32_t percent = 0;
    while (result == MIF_SUCCESS && percent < 100) {
        std::uint32_t written = 0;
        result = reader.mifFillBuffer(context, buffer.data(), &written, &percent, bufferSize);
        benchmark::DoNotOptimize(written);
    }
    reader.mifFreeContext(context);
    return result == MIF_SUCCESS;
}

bool copyPieces(std::string_view mif)
{
    std::array<char, pieceSize> piece;
    for (std::size_t position = 0; position < mif.size(); position += pieceSize) {
        mif.copy(piece.data(), pieceSize, position);
        benchmark::DoNotOptimize(piece);
    }
    return true;
}

bool walkBrackets(std::string_view mif)
{
    const char *next = mif.data();
    const char *const end = next + mif.size();
    const auto find = [&](char bracket) {
        next = static_cast<const char *>(std::memchr(next, bracket, static_cast<std::size_t>(end - next)));
        return next != nullptr;
    };
    while (find('<') && find('>')) {
        benchmark::DoNotOptimize(next);
    }
    return true;
}

bool parseWithExpat(std::string_view xml)
{
    XML_Parser parser = XML_ParserCreate("US-ASCII");
    XML_SetElementHandler(
        parser, [](void *, const char *, const char **) {}, [](void *, const char *) {});
    XML_SetCharacterDataHandler(parser, [](void *, const char *, int) {});
    bool parsed = true;
    while (parsed && !xml.empty()) {
        const std::string_view piece = xml.substr(0, pieceSize);
        xml.remove_prefix(piece.size());
        parsed = XML_Parse(parser, piece.data(), static_cast<int>(piece.size()), xml.empty() ? 1 : 0) == XML_STATUS_OK;
    }
    XML_ParserFree(parser);
    return parsed;
}

bool parseWithPugixml(std::string &xml)
{
    pugi::xml_document tree;
    const pugi::xml_parse_result result =
        tree.load_buffer_inplace(xml.data(), xml.size(), pugi::parse_default, pugi::encoding_utf8);
    benchmark::DoNotOptimize(tree);
    return static_cast<bool>(result);
}

} // namespace mifbench
