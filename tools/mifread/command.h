// The commands of mifread and what they share with the reading of the arguments.
#ifndef MIFREAD_COMMAND_H
#define MIFREAD_COMMAND_H

#include <cstdint>
#include <string>
#include <vector>

namespace mifread
{

enum class ExitCode {
    Success = 0,
    Losses = 1, // converted, but not everything; or inputs failed in different ways
    Usage = 2,
    Io = 3,     // cannot open, read or write; a plug-in that cannot be used
    NotMif = 4, // refused
    Limit = 5   // a limit was reached
};

struct Options {
    std::vector<std::string> inputs;      // paths; "-" is standard input
    std::string output = "-";             // a path; "-" is standard output
    std::uint32_t bufferSize = 64 * 1024; // bytes
    std::string plugin;                   // a path; empty means the reader that the program is linked with
    std::string folder;                   // a path; where the objects go
};

// Each converts all inputs, reports what went wrong on standard error, and goes on with the next input after a failure.

// The documents' text, in UTF-8.
ExitCode runText(const Options &options);

// The documents' token streams, one token a line.
ExitCode runTokens(const Options &options);

// The data of the documents' embedded objects, each in a file of the folder, and a list of them.
ExitCode runObjects(const Options &options);

} // namespace mifread

#endif
