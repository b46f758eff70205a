#include "mifhost/stream.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>
#include <type_traits>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "mifhost/error.h"
#include "mifreader/reader.h"
#include "system.h"

namespace mifhost
{

namespace
{

// After a jump only a little is read, because the reader often jumps back soon (to the text after a table); reading on
// in order doubles the amount until it is large.
constexpr std::size_t smallestFill = std::size_t{8} * 1024;
constexpr std::size_t largestFill = std::size_t{64} * 1024;

std::string systemMessage(int error)
{
    return std::generic_category().message(error);
}

void requireSize(const std::string &name, std::uint64_t size, std::uint64_t limit)
{
    if (size > limit) {
        throw LimitReached(name, std::nullopt,
                           limit == Stream::largestDocument
                               ? "the document is too large, it has 2 GiB or more"
                               : "the document is too large, it has more than " + std::to_string(limit) + " bytes");
    }
}

// read(2), after a wait. Throws IoError at the given position, also when a signal came between: who has signals
// interrupt calls wants to stop waiting.
std::size_t readSome(int file, std::span<std::uint8_t> destination, const std::string &name, std::uint64_t position,
                     const FileOptions &options)
{
    if (options.waitForInput) {
        options.waitForInput(file);
    } else if (system::waitForInput(file) != 0) {
        throw IoError(name, position, "cannot read: " + systemMessage(errno));
    }
    const ssize_t count = ::read(file, destination.data(), static_cast<unsigned>(destination.size()));
    if (count < 0) {
        throw IoError(name, position, "cannot read: " + systemMessage(errno));
    }
    return static_cast<std::size_t>(count);
}

// Copies all that is left in a file to a temporary one.
FileDescriptor spool(int file, const std::string &name, const FileOptions &options)
{
    FileDescriptor copy = makeTemporaryFile(name);
    const auto block = std::make_unique<std::uint8_t[]>(largestFill);
    std::uint64_t size = 0;
    while (const std::size_t count = readSome(file, {block.get(), largestFill}, name, size, options)) {
        size += count;
        requireSize(name, size, options.sizeLimit);
        for (std::size_t done = 0; done < count;) {
            const ssize_t written = ::write(copy.get(), block.get() + done, static_cast<unsigned>(count - done));
            if (written < 0 && errno != EINTR) {
                throw IoError(name, std::nullopt, "cannot write a temporary copy: " + systemMessage(errno));
            }
            done += written > 0 ? static_cast<std::size_t>(written) : 0;
        }
    }
    return copy;
}

} // namespace

FileDescriptor makeTemporaryFile(const std::string &name)
{
    std::error_code error;
    std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (error) {
        folder = "/tmp";
    }
    FileDescriptor file(system::openTemporary(folder));
    if (file.get() < 0) {
        const std::u8string text = folder.u8string();
        throw IoError(name, std::nullopt,
                      "cannot make a temporary file in " + std::string(text.begin(), text.end()) + ": " +
                          systemMessage(errno));
    }
    return file;
}

Stream::Stream(std::string name, std::uint64_t size) : name_(std::move(name)), size_(size)
{
    static_assert(std::is_standard_layout_v<Record> && offsetof(Record, stream) == 0);
    requireSize(name_, size_, largestDocument);
    record_.owner = this;
    record_.stream.read = readForReader;
    record_.stream.seek = seekForReader;
    record_.stream.tell = tellForReader;
}

std::size_t Stream::read(std::span<std::uint8_t> destination)
{
    if (destination.empty() || position_ >= size_) {
        return 0;
    }
    const std::uint64_t left = size_ - position_;
    if (destination.size() > left) {
        destination = destination.first(static_cast<std::size_t>(left));
    }
    const std::size_t count = readAt(position_, destination);
    if (count == 0) {
        throw IoError(name_, position_, "the file became shorter while it was read");
    }
    position_ += count;
    return count;
}

void Stream::throwPendingError() const
{
    if (pendingError_ != nullptr) {
        std::rethrow_exception(pendingError_);
    }
}

std::size_t Stream::readForReader(HostStream *stream, void *destination, std::size_t count) noexcept
{
    Stream &self = *reinterpret_cast<Record *>(stream)->owner;
    if (self.pendingError_ != nullptr) {
        return 0;
    }
    try {
        const std::span<std::uint8_t> bytes(static_cast<std::uint8_t *>(destination), count);
        const std::uint64_t position = self.position_;
        const std::size_t delivered = self.read(bytes);
        if (self.watch_) {
            self.watch_(position, bytes.first(delivered));
        }
        return delivered;
    } catch (...) {
        self.pendingError_ = std::current_exception();
        return 0;
    }
}

void Stream::seekForReader(HostStream *stream, std::intptr_t offset, std::int32_t origin) noexcept
{
    Stream &self = *reinterpret_cast<Record *>(stream)->owner;
    const std::intptr_t start = origin == MIF_SEEK_END ? static_cast<std::intptr_t>(self.size_) : 0;
    self.position_ = static_cast<std::uint64_t>(std::max<std::intptr_t>(0, start + offset));
}

std::intptr_t Stream::tellForReader(HostStream *stream) noexcept
{
    return static_cast<std::intptr_t>(reinterpret_cast<Record *>(stream)->owner->position_);
}

int FileDescriptor::close() noexcept
{
    return descriptor_ < 0 ? 0 : ::close(std::exchange(descriptor_, -1));
}

FileStream::FileStream(const std::string &path, const FileOptions &options) : FileStream(open(path, options)) {}

FileStream::FileStream(Source source)
    : Stream(std::move(source.name), source.size), file_(std::move(source.file)),
      window_(std::make_unique<std::uint8_t[]>(largestFill)), nextFill_(smallestFill)
{
}

FileStream::Source FileStream::open(const std::string &path, const FileOptions &options)
{
    const bool isStandardInput = path == "-";
    const std::string name = isStandardInput ? "standard input" : path;
    FileDescriptor file(isStandardInput ? system::openStandardInput() : system::openForReading(path));
    struct stat status {
    };
    if (file.get() < 0 || fstat(file.get(), &status) != 0) {
        throw IoError(name, std::nullopt, "cannot open: " + systemMessage(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        throw IoError(name, std::nullopt, "is a directory, not a file");
    }

    // Standard input that was partly read by somebody else begins where they stopped.
    const bool isWholeFile = S_ISREG(status.st_mode) && lseek(file.get(), 0, SEEK_CUR) == 0;
    if (!isWholeFile) {
        file = spool(file.get(), name, options);
    }
    const off_t size = lseek(file.get(), 0, SEEK_END);
    if (size < 0) {
        throw IoError(name, std::nullopt, "cannot seek: " + systemMessage(errno));
    }
    requireSize(name, static_cast<std::uint64_t>(size), options.sizeLimit);
    return {std::move(file), name, static_cast<std::uint64_t>(size)};
}

std::size_t FileStream::readAt(std::uint64_t position, std::span<std::uint8_t> destination)
{
    if (position < windowStart_ || position >= windowStart_ + windowSize_) {
        fillWindow(position);
    }
    const auto offset = static_cast<std::size_t>(position - windowStart_);
    const std::size_t count = std::min(destination.size(), windowSize_ - offset);
    std::memcpy(destination.data(), window_.get() + offset, count);
    return count;
}

void FileStream::fillWindow(std::uint64_t position)
{
    const bool readsOn = position == windowStart_ + windowSize_;
    nextFill_ = readsOn ? std::min(2 * nextFill_, largestFill) : smallestFill;
    windowStart_ = position;
    windowSize_ = 0;
    const std::ptrdiff_t count = system::readAt(file_.get(), window_.get(), nextFill_, position);
    if (count < 0) {
        throw IoError(name(), position, "cannot read: " + systemMessage(errno));
    }
    windowSize_ = static_cast<std::size_t>(count);
}

MemoryStream::MemoryStream(std::span<const std::uint8_t> bytes, std::string name)
    : Stream(std::move(name), bytes.size()), bytes_(bytes)
{
}

MemoryStream::MemoryStream(std::string_view bytes, std::string name)
    : MemoryStream(std::span(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size()), std::move(name))
{
}

std::size_t MemoryStream::readAt(std::uint64_t position, std::span<std::uint8_t> destination)
{
    std::memcpy(destination.data(), bytes_.data() + position, destination.size());
    return destination.size();
}

} // namespace mifhost
