// Documents of any size for the benchmarks: one tree of statements written as MIF and as XML.
#ifndef MIFREADER_BENCH_DOCUMENTS_H
#define MIFREADER_BENCH_DOCUMENTS_H

#include <cstddef>
#include <span>
#include <string>

namespace mifbench
{

// The same tree twice, over the same line ends and indents.
struct Document {
    std::string mif;
    std::string xml;
};

// A kind of document. `make` gives one whose MIF form has the given number of bytes, or a little more.
struct Kind {
    const char *name;
    Document (*make)(std::size_t size);
};

std::span<const Kind> kinds();

} // namespace mifbench

#endif
