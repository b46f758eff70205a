// Bytes a second through the entry table, with a host that does nothing, beside libexpat on the same tree written as
// XML and a plain copy of the bytes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include <benchmark/benchmark.h>
#include <expat.h>

#include "mifreader/reader.h"

namespace
{

constexpr size_t pieceSize = 4096;

// A tree of statements, written either as MIF or as XML.
class Writer
{
public:
    explicit Writer(bool xml) : xml_(xml) {}

    void open(const char *name)
    {
        line();
        out_ += '<';
        out_ += name;
        out_ += xml_ ? ">" : " ";
        ++depth_;
    }

    void close(const char *name)
    {
        --depth_;
        line();
        out_ += xml_ ? std::string("</") + name + ">" : std::string("> # end of ") + name;
    }

    void value(const char *name, const std::string &text)
    {
        line();
        out_ += xml_ ? std::string("<") + name + '>' + text + "</" + name + '>'
                     : std::string("<") + name + ' ' + text + '>';
    }

    size_t size() const
    {
        return out_.size();
    }

    std::string take()
    {
        out_ += '\n';
        return std::move(out_);
    }

private:
    void line()
    {
        if (!out_.empty()) {
            out_ += '\n';
        }
        out_.append(depth_, ' ');
    }

    bool xml_;
    size_t depth_ = 0;
    std::string out_;
};

// Paragraphs of five lines, each with its text rectangle and one string.
std::string plainText(size_t size, bool xml)
{
    static const char *const strings[] = {
        "The barometer is read at seven, at two and at nine, and each reading is entered at once.",
        "When the wind turns, the vane is watched for a full minute before its direction is noted down.",
        "A dry bulb and a wet one hang side by side in the shade of the screen."};
    Writer writer(xml);
    if (xml) {
        writer.open("MIF");
    } else {
        writer.value("MIFFile", "5.50");
    }
    writer.open("Page");
    writer.value("PageType", "BodyPage");
    writer.open("TextRect");
    writer.value("ID", "9");
    writer.close("TextRect");
    writer.close("Page");
    writer.open("TextFlow");
    for (size_t line = 0; writer.size() < size;) {
        writer.open("Para");
        writer.value("PgfTag", "`Body'");
        for (int lines = 0; lines < 5; ++lines, ++line) {
            writer.open("ParaLine");
            writer.value("TextRectID", "9");
            writer.value("String", std::string("`") + strings[line % 3] + '\'');
            writer.close("ParaLine");
        }
        writer.close("Para");
    }
    writer.close("TextFlow");
    if (xml) {
        writer.close("MIF");
    }
    return writer.take();
}

// The document as a stream in memory.
struct MemoryStream {
    HostStream record;
    std::string_view text;
    size_t position;
};

size_t readStream(HostStream *stream, void *destination, size_t count)
{
    auto *memory = reinterpret_cast<MemoryStream *>(stream);
    const size_t delivered = memory->text.copy(static_cast<char *>(destination), count, memory->position);
    memory->position += delivered;
    return delivered;
}

void seekStream(HostStream *stream, intptr_t offset, int32_t origin)
{
    auto *memory = reinterpret_cast<MemoryStream *>(stream);
    memory->position = static_cast<size_t>(offset) + (origin == 2 ? memory->text.size() : 0);
}

intptr_t tellStream(HostStream *stream)
{
    return static_cast<intptr_t>(reinterpret_cast<MemoryStream *>(stream)->position);
}

// Converts the whole text; false when it was not converted to its end.
bool convert(const std::string &text, std::string &buffer)
{
    HostServices services{};
    services.allocate = [](void *, size_t size) { return malloc(size); };
    services.allocateZeroed = [](void *, size_t count, size_t size) { return calloc(count, size); };
    services.free = [](void *, void *block) { free(block); };
    MemoryStream stream{{}, text, 0};
    stream.record.read = readStream;
    stream.record.seek = seekStream;
    stream.record.tell = tellStream;
    uint32_t stored = 0;
    MifContext *context = mifAllocateContext(nullptr, nullptr, &stored, &services, 0);
    int32_t percent = 0;
    int32_t result = mifInitDoc(context, nullptr, 0, &stream.record);
    while (result == MIF_SUCCESS && percent < 100) {
        uint32_t written = 0;
        result = mifFillBuffer(context, reinterpret_cast<uint8_t *>(buffer.data()), &written, &percent,
                               static_cast<uint32_t>(buffer.size()));
        benchmark::DoNotOptimize(written);
    }
    mifFreeContext(context);
    return result == MIF_SUCCESS;
}

bool parseXml(const std::string &text)
{
    XML_Parser parser = XML_ParserCreate("US-ASCII");
    XML_SetElementHandler(
        parser, [](void *, const char *, const char **) {}, [](void *, const char *) {});
    XML_SetCharacterDataHandler(parser, [](void *, const char *, int) {});
    bool parsed = true;
    for (size_t position = 0; parsed && position < text.size(); position += pieceSize) {
        const std::string_view piece = std::string_view(text).substr(position, pieceSize);
        const int last = position + pieceSize >= text.size() ? 1 : 0;
        parsed = XML_Parse(parser, piece.data(), static_cast<int>(piece.size()), last) == XML_STATUS_OK;
    }
    XML_ParserFree(parser);
    return parsed;
}

void setBytes(benchmark::State &state, const std::string &text)
{
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

void reader(benchmark::State &state)
{
    const std::string text = plainText(static_cast<size_t>(state.range(0)), false);
    std::string buffer(65536, '\0');
    for ([[maybe_unused]] auto iteration : state) {
        if (!convert(text, buffer)) {
            state.SkipWithError("not converted");
        }
    }
    setBytes(state, text);
}

void expat(benchmark::State &state)
{
    const std::string text = plainText(static_cast<size_t>(state.range(0)), true);
    for ([[maybe_unused]] auto iteration : state) {
        if (!parseXml(text)) {
            state.SkipWithError("not parsed");
        }
    }
    setBytes(state, text);
}

void copy(benchmark::State &state)
{
    const std::string text = plainText(static_cast<size_t>(state.range(0)), false);
    char piece[pieceSize];
    for ([[maybe_unused]] auto iteration : state) {
        for (size_t position = 0; position < text.size(); position += pieceSize) {
            text.copy(piece, pieceSize, position);
            benchmark::DoNotOptimize(piece);
        }
    }
    setBytes(state, text);
}

BENCHMARK(reader)->Arg(10 << 20)->Arg(100 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK(expat)->Arg(10 << 20)->Arg(100 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK(copy)->Arg(10 << 20)->Arg(100 << 20)->Unit(benchmark::kMillisecond);

} // namespace
