// What the arguments say.
#ifndef MIFREAD_OPTIONS_H
#define MIFREAD_OPTIONS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mifhost/document.h"
#include "mifhost/stream.h"
#include "mifreader/extended.h"

namespace mifread
{

enum class ExitCode {
    Success = 0,
    Losses = 1, // converted, but not everything: pieces or documents are missing; or inputs failed in different ways
    Usage = 2,
    Io = 3,     // cannot open, read or write; a plug-in that cannot be used
    NotMif = 4, // refused
    Limit = 5   // a limit was reached
};

// html: which of the pictures in files that a document names are taken into its page.
enum class EmbedPictures {
    None,
    Beside, // those in the document's folder or below
    All
};

struct Options {
    std::vector<std::string> inputs; // paths; "-" is standard input
    std::string list;                // a path, "-" is standard input; a file that names further inputs; empty for none
    bool isListNulSeparated = false; // its names end with NUL, not with lines
    bool recursive = false;          // take the documents in folders
    std::string output = "-";        // a path; "-" is standard output
    std::string folder;              // a path; where results go as files of their own; empty for none
    std::string report;              // a path; where the account of the run goes; empty for none
    unsigned jobs = 0;               // documents at once; 0 for as many as there are processors
    bool quiet = false;              // no progress, no summary
    bool failFast = false;           // stop at the first document that fails
    bool update = false;             // leave documents alone whose results are newer
    bool dryRun = false;             // only say what would be written where

    bool asJson = false;        // objects and info: as JSON instead of for people
    bool withObjects = false;   // json: the data of objects as well
    std::string embedPictures;  // html: "true" for those beside the document, "all", or empty for none
    bool listsExtended = false; // tokens: the extended stream

    mifhost::TokenForm form = mifhost::TokenForm::Extended;  // of the tokens to convert
    std::uint32_t encoding = MIF_ENCODING_AUTO;              // of the extended stream's documents, a MIF_ENCODING value
    std::uint32_t bufferSize = 64 * 1024;                    // bytes
    std::string plugin;                                      // a path; empty: the reader the program is linked with
    std::size_t maxMemory = std::size_t{1024} * 1024 * 1024; // bytes of the reader's memory for a document; 0: no limit
    std::uint64_t maxOutput = 0; // bytes written for a document; 0: in proportion to the document
    std::uint64_t maxWork = 0;   // bytes read and given by the reader for a document; 0: in proportion to the document
    std::optional<double> timeout; // seconds of processor time for a document; 0 for no limit
    std::uint64_t maxInput = mifhost::Stream::largestDocument; // bytes of a document
};

} // namespace mifread

#endif
