#include "system.h"

#include <cerrno>
#include <cstdlib>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define MIFHOST_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define MIFHOST_SANITIZED
#endif
#endif

namespace mifhost::system
{

namespace
{

// The sanitizers refuse it, as their own functions must come before all others.
#if defined(RTLD_DEEPBIND) && !defined(MIFHOST_SANITIZED)
constexpr int ownNamesFirst = RTLD_DEEPBIND;
#else
constexpr int ownNamesFirst = 0;
#endif

} // namespace

int openForReading(const std::string &path)
{
    struct stat status {
    };
    if (stat(path.c_str(), &status) != 0 || !S_ISFIFO(status.st_mode)) {
        return open(path.c_str(), O_RDONLY | O_CLOEXEC);
    }
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file >= 0) {
        fcntl(file, F_SETFL, O_RDONLY);
    }
    return file;
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

int waitForInput(int file) noexcept
{
    pollfd waiting{file, POLLIN, 0};
    return poll(&waiting, 1, -1) < 0 ? -1 : 0;
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
    return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | ownNamesFirst);
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

} // namespace mifhost::system
