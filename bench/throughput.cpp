// Bytes of MIF a second, of the reader and of the references, for each kind and size of document. The references that
// parse XML are given the same tree and count the bytes of its MIF form, so that all times compare.
//
// The names are KIND/BYTES/RUN. The documents are kept until the end: filter for what is wanted.
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include <benchmark/benchmark.h>

#include "documents.h"
#include "runs.h"

namespace
{

using mifbench::Document;
using mifbench::Kind;

const Document &documentOf(const Kind &kind, std::size_t size)
{
    static std::map<std::pair<const Kind *, std::size_t>, Document> documents;
    auto [place, isNew] = documents.try_emplace({&kind, size});
    if (isNew) {
        place->second = kind.make(size);
    }
    return place->second;
}

template <bool (*run)(std::string_view), std::string Document::*form>
void measure(benchmark::State &state, const Kind &kind, std::size_t size)
{
    const Document &document = documentOf(kind, size);
    for ([[maybe_unused]] auto iteration : state) {
        if (!run(document.*form)) {
            state.SkipWithError("the document was not taken");
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(document.mif.size()));
}

// The text is destroyed each time, so a copy is made, which does not count.
void measurePugixml(benchmark::State &state, const Kind &kind, std::size_t size)
{
    const Document &document = documentOf(kind, size);
    std::string xml;
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        xml = document.xml;
        state.ResumeTiming();
        if (!mifbench::parseWithPugixml(xml)) {
            state.SkipWithError("the document was not taken");
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(document.mif.size()));
}

struct Run {
    const char *name;
    void (*measure)(benchmark::State &state, const Kind &kind, std::size_t size);
};

constexpr Run runs[] = {
    {"reader", measure<mifbench::convert, &Document::mif>},
    {"copy", measure<mifbench::copyPieces, &Document::mif>},
    {"brackets", measure<mifbench::walkBrackets, &Document::mif>},
    {"expat", measure<mifbench::parseWithExpat, &Document::xml>},
    {"pugixml", measurePugixml},
};

constexpr std::size_t kibibyte = 1024;
constexpr std::size_t mebibyte = 1024 * kibibyte;
constexpr std::size_t sizes[] = {kibibyte, 64 * kibibyte, mebibyte, 10 * mebibyte, 50 * mebibyte, 100 * mebibyte};

} // namespace

int main(int argc, char **argv)
{
    for (const Kind &kind : mifbench::kinds()) {
        for (const std::size_t size : sizes) {
            for (const Run &run : runs) {
                const std::string name = std::string(kind.name) + '/' + std::to_string(size) + '/' + run.name;
                benchmark::RegisterBenchmark(name.c_str(), run.measure, kind, size);
            }
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
