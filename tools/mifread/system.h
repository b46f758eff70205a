// What the program needs of the operating system and the C++ library does not offer.
#ifndef MIFREAD_SYSTEM_H
#define MIFREAD_SYSTEM_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace mifread
{

// The program, called by the system's own entry point. Returns the exit code.
// arguments  without the program's name
int runProgram(std::vector<std::string> arguments);

namespace system
{

// Readies standard input, output and error: files that are opened later do not get their numbers, output is bytes, and
// a reader of the output that goes away, or a file that reaches the largest size that the user is allowed, is a write
// error like others. To be called first.
void prepareStandardStreams();

// Whether a descriptor is a terminal that understands escape sequences.
bool isTerminal(int file) noexcept;

// A descriptor of its own for the file that is standard output, above those of the standard streams, not inherited by
// programs that are started. -1 with errno set if there can be none.
int openStandardOutput() noexcept;

// Tells files apart whatever they are called: the device, and the file there.
using FileIdentity = std::pair<std::uint64_t, std::uint64_t>;

// That of the file behind a path or an open descriptor; none when there is no file, or not a regular one.
std::optional<FileIdentity> identityOf(const std::filesystem::path &path) noexcept;
std::optional<FileIdentity> identityOf(int file) noexcept;

// The same for all spellings of a path that lead to one file, as far as the system takes names for the same. For paths
// without links and dots.
std::filesystem::path spellingOf(const std::filesystem::path &path);

// Has the signals by which a user ends a program call handler once each; a second one ends the program. Those that the
// program was started to ignore stay ignored.
void catchSignals(void (*handler)(int number)) noexcept;

// Ends the program as a signal does that nobody catches.
void endBySignal(int number) noexcept;

} // namespace system

} // namespace mifread

#endif
