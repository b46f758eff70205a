#include "system.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

namespace mifhost::system
{

namespace
{

constexpr int ownBytes = _O_BINARY | _O_NOINHERIT;

// What is not UTF-8 becomes U+FFFD.
std::wstring utf16(const std::string &text)
{
    const auto size = static_cast<int>(text.size());
    std::wstring result(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)), 0);
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, result.data(), static_cast<int>(result.size()));
    return result;
}

} // namespace

int openForReading(const std::string &path)
{
    return _wopen(utf16(path).c_str(), _O_RDONLY | ownBytes);
}

int openStandardInput() noexcept
{
    _setmode(_fileno(stdin), _O_BINARY);
    return _dup(_fileno(stdin));
}

int openTemporary(const std::filesystem::path &folder)
{
    std::array<wchar_t, MAX_PATH> path{};
    if (GetTempFileNameW(folder.c_str(), L"mif", 0, path.data()) == 0) { // makes the file, too
        errno = EACCES;
        return -1;
    }
    return _wopen(path.data(), _O_RDWR | _O_TEMPORARY | ownBytes);
}

int waitForInput(int /*file*/) noexcept
{
    return 0;
}

std::ptrdiff_t readAt(int file, void *destination, std::size_t count, std::uint64_t position) noexcept
{
    if (_lseeki64(file, static_cast<std::int64_t>(position), SEEK_SET) < 0) {
        return -1;
    }
    return _read(file, destination, static_cast<unsigned>(count));
}

void *loadLibrary(const std::string &path)
{
    return LoadLibraryW(utf16(path).c_str());
}

void *findFunction(void *library, const char *name) noexcept
{
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void unloadLibrary(void *library) noexcept
{
    FreeLibrary(static_cast<HMODULE>(library));
}

std::string lastLoaderError()
{
    return std::system_category().message(static_cast<int>(GetLastError()));
}

} // namespace mifhost::system
