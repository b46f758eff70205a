#include "progress.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <system_error>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <unistd.h>

#include "display.h"
#include "system.h"

namespace mifread
{

namespace
{

constexpr auto interval = std::chrono::milliseconds(100);
constexpr int barWidth = 24;

// A number of bytes in at most six characters and its unit.
std::string humanSize(double bytes)
{
    constexpr std::string_view units = "BKMGT";
    std::size_t unit = 0;
    while (bytes >= 999.5 && unit + 1 < units.size()) {
        bytes /= 1024;
        ++unit;
    }
    return unit == 0 ? fmt::format("{:.0f} B", bytes) : fmt::format("{:.1f} {}B", bytes, units[unit]);
}

// A message that nobody can see is no reason to fail, nor to wait longer than the user does.
void show(std::string_view text)
{
    while (!text.empty() && system::waitToWrite(STDERR_FILENO)) {
        const auto size = static_cast<unsigned>(std::min(text.size(), system::smallWrite));
        const ssize_t count = write(STDERR_FILENO, text.data(), size);
        if (count < 0 && errno != EINTR) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
}

} // namespace

Progress::Progress(bool shown, std::uint64_t bytes, std::size_t documents) : bytes_(bytes), documents_(documents)
{
    if (!shown) {
        return;
    }
    try {
        painter_ = std::jthread([this](const std::stop_token &stop) { run(stop); });
    } catch (const std::system_error &) { // no thread to be had: no bar
    }
}

Progress::~Progress()
{
    if (painter_.joinable()) {
        painter_.request_stop();
        painter_.join();
    }
    erase();
}

void Progress::complain(std::string_view message)
{
    const std::lock_guard lock(screen_);
    erase();
    show(fmt::format("mifread: {}\n", shown(message)));
}

void Progress::run(const std::stop_token &stop)
{
    std::unique_lock lock(screen_);
    std::condition_variable_any ended;
    // A run that is over at once shows nothing.
    while (!ended.wait_for(lock, stop, interval, [] { return false; }) && !stop.stop_requested()) {
        draw();
    }
}

void Progress::draw()
{
    show(fmt::format("\r{}\x1b[K", line()));
    isDrawn_ = true;
}

void Progress::erase()
{
    if (isDrawn_) {
        show("\r\x1b[K");
        isDrawn_ = false;
    }
}

std::string Progress::line() const
{
    const auto done = static_cast<double>(bytesDone_.load());
    // Standard input and files that grow have no size that is known before.
    const double all = std::max(static_cast<double>(bytes_), done);
    const double share = all > 0 ? done / all : 0;
    const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    const int filled = static_cast<int>(share * barWidth);
    std::string text =
        fmt::format("[{:#<{}}{:{}}] {:3.0f}%  {} of {}  {}/{} documents", "", filled, "", barWidth - filled,
                    100 * share, humanSize(done), humanSize(all), documentsDone_.load(), documents_);
    if (done > 0) {
        const auto left = std::chrono::seconds(static_cast<std::int64_t>(seconds * (all - done) / done));
        text += fmt::format("  {}/s  {:%H:%M:%S} left", humanSize(done / seconds), left);
    }
    return text;
}

bool canShowProgress(const std::string &output)
{
    return system::isTerminal(STDERR_FILENO) && (output != "-" || !system::isTerminal(STDOUT_FILENO));
}

} // namespace mifread
