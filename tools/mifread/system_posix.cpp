#include "system.h"

#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mifread::system
{

void prepareStandardStreams()
{
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        close(descriptor);
    }
    std::signal(SIGPIPE, SIG_IGN);
}

bool isTerminal(int file) noexcept
{
    return isatty(file) == 1;
}

int openStandardOutput() noexcept
{
    return fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

int openExisting(const std::filesystem::path &path) noexcept
{
    return open(path.c_str(), O_WRONLY | O_CLOEXEC);
}

int createFile(const std::filesystem::path &path, const std::filesystem::path &model) noexcept
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    struct stat status {
    };
    if (file >= 0 && !model.empty() && stat(model.c_str(), &status) == 0) {
        fchmod(file, status.st_mode & 07777);
    }
    return file;
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
