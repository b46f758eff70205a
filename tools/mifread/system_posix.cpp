#include "system.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <poll.h>
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

static_assert(smallWrite <= PIPE_BUF);

void (*signalHandler)(int number) = nullptr;

// Has something to read as soon as a signal was caught. A signal that comes between a look at a variable and a wait, or
// to another thread, does not get lost in it.
std::array<int, 2> signalPipe = {-1, -1};

void handleSignal(int number)
{
    const int error = errno;
    signalHandler(number);
    [[maybe_unused]] const ssize_t written = write(signalPipe[1], "", 1);
    errno = error;
}

// Returns whether the file is ready, or there was an error; false when a signal came, or at the end of the time.
bool waitFor(int file, short event, int milliseconds = -1)
{
    std::array<pollfd, 2> waiting = {{{file, event, 0}, {signalPipe[0], POLLIN, 0}}};
    while (poll(waiting.data(), waiting.size(), milliseconds) < 0 && errno == EINTR) {
    }
    return waiting[0].revents != 0;
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

// Only a device is opened to ask: somebody may wait for a pipe to be opened.
bool isTerminal(const std::filesystem::path &path) noexcept
{
    struct stat status {
    };
    if (stat(path.c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) {
        return false;
    }
    const int file = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    const bool isOne = isTerminal(file);
    close(file);
    return isOne;
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
    if (pipe(signalPipe.data()) == 0) {
        for (const int end : signalPipe) {
            fcntl(end, F_SETFD, FD_CLOEXEC);
            fcntl(end, F_SETFL, O_NONBLOCK);
        }
    }
    signalHandler = handler;
    struct sigaction action {
    };
    action.sa_handler = handleSignal;
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

bool waitToRead(int file) noexcept
{
    return waitFor(file, POLLIN);
}

bool waitToWrite(int file) noexcept
{
    return waitFor(file, POLLOUT);
}

bool pauseFor(int milliseconds) noexcept
{
    return !waitFor(signalPipe[0], POLLIN, milliseconds);
}

bool mayWait(int file) noexcept
{
    struct stat status {
    };
    return fstat(file, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode) || isTerminal(file));
}

double processorSeconds() noexcept
{
    constexpr double nanosecond = 1e-9;
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * nanosecond;
}

int brokenPipeSignal() noexcept
{
    return SIGPIPE;
}

void endBySignal(int number) noexcept
{
    std::signal(number, SIG_DFL);
    std::raise(number);
}

} // namespace mifread::system

int main(int argumentCount, char **arguments)
{
    return mifread::runProgram({arguments + 1, arguments + argumentCount});
}
