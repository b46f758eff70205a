// What is measured: the reader and the references beside it. Each goes once over the whole document and returns whether
// it came to its end.
#ifndef MIFREADER_BENCH_RUNS_H
#define MIFREADER_BENCH_RUNS_H

#include <string>
#include <string_view>

namespace mifbench
{

// Converts through the entry table, from a stream in memory into a buffer of 64 KiB, with a host that does nothing.
bool convert(std::string_view mif);

// Copies the document piece by piece, of the size in which the reader reads it.
bool copyPieces(std::string_view mif);

// Walks from bracket to bracket with memchr.
bool walkBrackets(std::string_view mif);

// Parses with libexpat, with empty handlers, piece by piece as above.
bool parseWithExpat(std::string_view xml);

// Parses with pugixml in place: the text is overwritten and the tree discarded.
bool parseWithPugixml(std::string &xml);

} // namespace mifbench

#endif
