// The documents that the arguments name.
#ifndef MIFREAD_INPUTS_H
#define MIFREAD_INPUTS_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "options.h"

namespace mifread
{

// A document, or what stands in its place and cannot be read.
struct Input {
    std::string path;             // "-" is standard input
    std::filesystem::path result; // of its results, below the folder for results, without an extension
    std::uint64_t size = 0;       // bytes; 0 where it is not known
    std::string failure;          // why there is nothing to read; empty as a rule
    bool isNamed = true;          // by an argument, not found in a folder or a list
};

struct Inputs {
    std::vector<Input> documents;
    std::vector<std::string> notes; // on what was passed over
};

// Lists the documents that the arguments name, and then those that the list of the options names, in their order. With
// Options::recursive a folder stands for all files in it, and in the folders in it, whose names end in .mif, in the
// order of their names; their results keep the tree. Links to folders are not followed. A result is always below the
// folder for results, whatever its document is called. Throws mifhost::Error when the list cannot be read.
Inputs findInputs(const Options &options);

} // namespace mifread

#endif
