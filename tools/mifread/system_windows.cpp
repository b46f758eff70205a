#include "system.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <io.h>
#include <unistd.h>
#include <windows.h>

// Has the C library replace arguments with * and ? by the files that they match, which no shell does here.
extern "C" int _dowildcard; // NOLINT: its name
int _dowildcard = -1;

namespace mifread::system
{

namespace
{

HANDLE handleOf(int file) noexcept
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(file));
}

std::optional<FileIdentity> identityOf(HANDLE handle) noexcept
{
    BY_HANDLE_FILE_INFORMATION status{};
    if (GetFileType(handle) != FILE_TYPE_DISK || GetFileInformationByHandle(handle, &status) == 0) {
        return std::nullopt;
    }
    const std::uint64_t high = status.nFileIndexHigh;
    return FileIdentity(status.dwVolumeSerialNumber, high << 32 | status.nFileIndexLow);
}

// What is not UTF-16, as names of files may be, becomes U+FFFD.
std::string utf8(std::wstring_view text)
{
    const auto size = static_cast<int>(text.size());
    std::string result;
    result.resize(3 * text.size()); // at most
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, result.data(),
                                           static_cast<int>(result.size()), nullptr, nullptr);
    result.resize(static_cast<std::size_t>(length));
    return result;
}

} // namespace

void prepareStandardStreams()
{
    _setmode(STDOUT_FILENO, _O_BINARY);
    // The console outlives the program.
    static const UINT codePage = GetConsoleOutputCP();
    if (codePage != 0) {
        SetConsoleOutputCP(CP_UTF8);
        std::atexit([] { SetConsoleOutputCP(codePage); });
    }
}

bool isTerminal(int file) noexcept
{
    DWORD mode = 0;
    return GetConsoleMode(handleOf(file), &mode) != 0 &&
           SetConsoleMode(handleOf(file), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

bool isTerminal(const std::filesystem::path & /*path*/) noexcept
{
    return false;
}

int openStandardOutput() noexcept
{
    return _dup(STDOUT_FILENO);
}

std::optional<FileIdentity> identityOf(const std::filesystem::path &path) noexcept
{
    constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle = CreateFileW(path.c_str(), 0, shared, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return std::nullopt;
    }
    const auto identity = identityOf(handle);
    CloseHandle(handle);
    return identity;
}

std::optional<FileIdentity> identityOf(int file) noexcept
{
    return identityOf(handleOf(file));
}

std::filesystem::path spellingOf(const std::filesystem::path &path)
{
    std::wstring spelling = path.native();
    CharLowerBuffW(spelling.data(), static_cast<DWORD>(spelling.size()));
    return spelling;
}

void catchSignals(void (*handler)(int number)) noexcept
{
    for (const int number : {SIGINT, SIGTERM, SIGBREAK}) {
        std::signal(number, handler);
    }
}

bool waitToRead(int /*file*/) noexcept
{
    return true;
}

bool waitToWrite(int /*file*/) noexcept
{
    return true;
}

bool pauseFor(int milliseconds) noexcept
{
    Sleep(static_cast<DWORD>(milliseconds));
    return true;
}

bool mayWait(int /*file*/) noexcept
{
    return false;
}

double processorSeconds() noexcept
{
    constexpr double unit = 100e-9; // of a FILETIME, in seconds
    FILETIME begin{};
    FILETIME end{};
    FILETIME kernel{};
    FILETIME user{};
    GetThreadTimes(GetCurrentThread(), &begin, &end, &kernel, &user);
    const auto ticks = [](const FILETIME &time) {
        return static_cast<double>(std::uint64_t{time.dwHighDateTime} << 32U | time.dwLowDateTime);
    };
    return (ticks(kernel) + ticks(user)) * unit;
}

int brokenPipeSignal() noexcept
{
    return 0;
}

void endBySignal(int /*number*/) noexcept
{
    ExitProcess(static_cast<UINT>(STATUS_CONTROL_C_EXIT));
}

} // namespace mifread::system

extern "C" int wmain(int argumentCount, wchar_t **arguments)
{
    std::vector<std::string> texts;
    for (int i = 1; i < argumentCount; ++i) {
        texts.push_back(mifread::system::utf8(arguments[i]));
    }
    return mifread::runProgram(std::move(texts));
}
