// What the user sees on standard error while documents are converted.
#ifndef MIFREAD_PROGRESS_H
#define MIFREAD_PROGRESS_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace mifread
{

// Writes messages to standard error and, when asked to, keeps a progress bar below them: bytes done of all, documents,
// rate, time left. The bar is gone when the object is. All functions may be called from several threads at once.
class Progress
{
public:
    // shown      whether there is a bar
    // bytes      the size of all documents
    // documents  their number
    Progress(bool shown, std::uint64_t bytes, std::size_t documents);
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    ~Progress();

    void addBytes(std::uint64_t bytes) noexcept
    {
        bytesDone_ += bytes;
    }
    void addDocument() noexcept
    {
        ++documentsDone_;
    }

    // Writes a line, after the program's name.
    void complain(std::string_view message);

private:
    using Clock = std::chrono::steady_clock;

    void run(const std::stop_token &stop);
    void draw();
    void erase();
    std::string line() const;

    std::uint64_t bytes_;
    std::size_t documents_;
    std::atomic<std::uint64_t> bytesDone_ = 0;
    std::atomic<std::size_t> documentsDone_ = 0;
    Clock::time_point start_ = Clock::now();
    std::mutex screen_;
    bool isDrawn_ = false;
    std::jthread painter_; // last, so that it ends first
};

// Whether there is a person to show a bar to, whose screen the results do not go to.
bool canShowProgress(const std::string &output);

} // namespace mifread

#endif
