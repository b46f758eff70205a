#include "system.h"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <optional>
#include <type_traits>

#include <dlfcn.h>
#include <fcntl.h>
#include <iconv.h>
#include <unistd.h>

#include "mifhost/error.h"

namespace mifhost::system
{

namespace
{

struct CloseConverter {
    void operator()(iconv_t converter) const noexcept
    {
        iconv_close(converter);
    }
};
static_assert(std::is_pointer_v<iconv_t>);
using Converter = std::unique_ptr<std::remove_pointer_t<iconv_t>, CloseConverter>;

Converter openConverter()
{
    const iconv_t converter = iconv_open("UTF-8", "WINDOWS-1252");
    // The error value is (iconv_t)-1, which the C interface leaves to a cast.
    if (reinterpret_cast<std::intptr_t>(converter) == -1) {
        throw Error("", std::nullopt, "the C library cannot convert Windows-1252 to UTF-8");
    }
    return Converter(converter);
}

} // namespace

int openForReading(const std::string &path)
{
    return open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

int openStandardInput() noexcept
{
    return fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

int openTemporary(const std::filesystem::path &folder)
{
    std::string path = folder / "mifhost-XXXXXX";
    const int file = mkostemp(path.data(), O_CLOEXEC);
    if (file >= 0) {
        unlink(path.c_str());
    }
    return file;
}

std::ptrdiff_t readAt(int file, void *destination, std::size_t count, std::uint64_t position) noexcept
{
    ssize_t delivered = 0;
    do {
        delivered = pread(file, destination, count, static_cast<off_t>(position));
    } while (delivered < 0 && errno == EINTR);
    return delivered;
}

void *loadLibrary(const std::string &path)
{
    return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void *findFunction(void *library, const char *name) noexcept
{
    return dlsym(library, name);
}

void unloadLibrary(void *library) noexcept
{
    dlclose(library);
}

std::string lastLoaderError()
{
    const char *message = dlerror();
    return message != nullptr ? message : "unknown error";
}

std::array<std::string, 128> upperHalfOfWindows1252()
{
    const Converter converter = openConverter();
    std::array<std::string, 128> characters;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        char byte = static_cast<char>(0x80 + i);
        char *source = &byte;
        std::size_t sourceLeft = 1;
        std::array<char, 3> bytes{};
        char *target = bytes.data();
        std::size_t targetLeft = bytes.size();
        if (iconv(converter.get(), &source, &sourceLeft, &target, &targetLeft) == 0) {
            characters[i].assign(bytes.data(), target);
        } else {
            iconv(converter.get(), nullptr, nullptr, nullptr, nullptr);
        }
    }
    return characters;
}

} // namespace mifhost::system
