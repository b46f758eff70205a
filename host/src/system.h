// What the host library needs of the operating system and the C++ library does not offer.
#ifndef MIFHOST_SYSTEM_H
#define MIFHOST_SYSTEM_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace mifhost::system
{

// Files. Descriptors are those of the C library, opened for bytes and not inherited by programs that are started. What
// fails returns -1 and sets errno. Paths are UTF-8 where the system does not take them for bytes.

// A pipe is opened also while nobody writes to it.
int openForReading(const std::string &path);

// A descriptor of its own for the file that is standard input, above those of the standard streams.
int openStandardInput() noexcept;

// An empty file in the folder, which goes with its descriptor.
int openTemporary(const std::filesystem::path &folder);

// Waits until reading does not have to wait, or a signal comes, where the system can tell. Returns 0, or -1.
int waitForInput(int file) noexcept;

// Reads up to count bytes, less than 2 GiB, at a position. Returns their number, 0 at the end.
std::ptrdiff_t readAt(int file, void *destination, std::size_t count, std::uint64_t position) noexcept;

// Shared libraries. Null when there is none; lastLoaderError() then says why.

// The library finds its own functions before those of the program that have the same names, where the system can do so.
void *loadLibrary(const std::string &path);
void *findFunction(void *library, const char *name) noexcept;
void unloadLibrary(void *library) noexcept;
std::string lastLoaderError();

} // namespace mifhost::system

#endif
