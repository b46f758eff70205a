// What the program needs of the operating system and the C++ library does not offer.
#ifndef MIFREAD_SYSTEM_H
#define MIFREAD_SYSTEM_H

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace mifread
{

// The program, called by the system's own entry point. Returns the exit code.
// arguments  without the program's name
int runProgram(std::vector<std::string> arguments);

namespace system
{

// Readies standard input, output and error: files that are opened later do not get their numbers, output is bytes, and
// a reader of the output that goes away is a write error like others. To be called first.
void prepareStandardStreams();

// Whether a descriptor is a terminal that understands escape sequences.
bool isTerminal(int file) noexcept;

// Files. Descriptors are opened to write bytes and not inherited by programs that are started. What fails returns -1
// and sets errno.

// A descriptor of its own for the file that is standard output, above those of the standard streams.
int openStandardOutput() noexcept;

// Waits until somebody reads from a pipe; a signal ends the wait, and errno is EINTR.
int openExisting(const std::filesystem::path &path) noexcept;

// Makes a file, which must not be there; errno is EEXIST if it is.
// model  a file whose permissions it gets; empty for the usual ones. Where folders give permissions to files it is not
//        looked at.
int createFile(const std::filesystem::path &path, const std::filesystem::path &model) noexcept;

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

// Whether writing to a file may wait for somebody who reads: it is a pipe or a terminal.
bool mayWait(int file) noexcept;

// The processor time that the calling thread has used, in seconds.
double processorSeconds() noexcept;

// Ends the program as a signal does that nobody catches.
void endBySignal(int number) noexcept;

} // namespace system

} // namespace mifread

#endif
