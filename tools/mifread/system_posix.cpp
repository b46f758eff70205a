#include "system.h"

#include <csignal>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mifread::system
{

namespace
{

std::optional<FileIdentity> identityOf(const struct stat &status) noexcept
{
    return S_ISREG(status.st_mode) ? std::optional(FileIdentity(status.st_dev, status.st_ino)) : std::nullopt;
}

} // namespace

// A closed standard stream must not become the descriptor of a file that is opened later. Output that cannot be written
// is to fail.
void prepareStandardStreams()
{
    for (const auto &[descriptor, mode] :
         {std::pair{STDIN_FILENO, O_RDONLY}, {STDOUT_FILENO, O_RDONLY}, {STDERR_FILENO, O_WRONLY}}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            open("/dev/null", mode);
        }
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool isTerminal(int file) noexcept
{
    return isatty(file) == 1;
}

int openStandardOutput() noexcept
{
    return fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

std::optional<FileIdentity> identityOf(const std::filesystem::path &path) noexcept
{
    struct stat status {
    };
    return stat(path.c_str(), &status) == 0 ? identityOf(status) : std::nullopt;
}

std::optional<FileIdentity> identityOf(int file) noexcept
{
    struct stat status {
    };
    return fstat(file, &status) == 0 ? identityOf(status) : std::nullopt;
}

std::filesystem::path spellingOf(const std::filesystem::path &path)
{
    return path;
}

void catchSignals(void (*handler)(int number)) noexcept
{
    struct sigaction action {
    };
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction present {
        };
        sigaction(number, nullptr, &present);
        if (present.sa_handler != SIG_IGN) { // as under nohup
            sigaction(number, &action, nullptr);
        }
    }
}

void endBySignal(int number) noexcept
{
    std::raise(number);
}

} // namespace mifread::system

int main(int argumentCount, char **arguments)
{
    return mifread::runProgram({arguments + 1, arguments + argumentCount});
}
