// What the program needs of the operating system and the C++ library does not offer.
#ifndef MIFREAD_SYSTEM_H
#define MIFREAD_SYSTEM_H

#include <cstddef>
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

// Whether a path is that of a terminal. Where the system cannot tell it is none.
bool isTerminal(const std::filesystem::path &path) noexcept;

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

// Wait until a file can be read from, or smallWrite bytes can be written to it, without waiting. Return false when one
// of these signals came and the file is not ready. Where the system cannot tell they return true at once.
bool waitToRead(int file) noexcept;
bool waitToWrite(int file) noexcept;
constexpr std::size_t smallWrite = 4096;

// Waits so long. Returns false at once when one of these signals comes.
bool pauseFor(int milliseconds) noexcept;

// Whether writing to a file may wait for somebody who reads: it is a pipe or a terminal.
bool mayWait(int file) noexcept;

// The processor time that the calling thread has used, in seconds.
double processorSeconds() noexcept;

// Ends the program as a signal does that nobody catches.
void endBySignal(int number) noexcept;

// The signal by which a program ends, without a word, whose standard output nobody reads any more; 0 where there is
// none.
int brokenPipeSignal() noexcept;

} // namespace system

} // namespace mifread

#endif
