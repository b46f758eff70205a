// The streams that documents are read from.
#ifndef MIFHOST_STREAM_H
#define MIFHOST_STREAM_H

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "mifreader/host.h"

namespace mifhost
{

// A document's bytes with a position, for the reader (through record()) and for the host alike. A new kind of source
// only has to say how bytes at a position are read.
class Stream
{
public:
    // The most bytes that a document has: what a reader can count.
    static constexpr std::uint64_t largestDocument = std::numeric_limits<std::int32_t>::max();

    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;
    virtual ~Stream() = default;

    // What messages call the document: a path, or what the source chose.
    const std::string &name() const noexcept
    {
        return name_;
    }

    // The size of the document and the position of the next read, in bytes. The position may lie beyond the end.
    std::uint64_t size() const noexcept
    {
        return size_;
    }
    std::uint64_t position() const noexcept
    {
        return position_;
    }

    // Reads up to destination.size() bytes and moves past them. Returns their number; 0 at the end only.
    // Throws IoError.
    std::size_t read(std::span<std::uint8_t> destination);

    // Moves to a position counted from the start of the document.
    void seek(std::uint64_t position) noexcept
    {
        position_ = position;
    }

    // The record to hand to a reader. It lives as long as this object. What fails while the reader reads is kept here,
    // and the reader meets the end of the data there and at every later read.
    HostStream *record() noexcept
    {
        return &record_.stream;
    }

    // Throws what the reader's reading met, an IoError as a rule; nothing when all went well.
    void throwPendingError() const;

    // Forgets it: another reader begins.
    void forgetPendingError() noexcept
    {
        pendingError_ = nullptr;
    }

    // Told of all bytes that the reader reads, with their position, before the reader gets them. It may throw, which
    // counts as a failure of the reading.
    using ReadWatch = std::function<void(std::uint64_t position, std::span<const std::uint8_t> bytes)>;
    void watchReads(ReadWatch watch) noexcept
    {
        watch_ = std::move(watch);
    }

protected:
    // Throws LimitReached when the size is above largestDocument.
    Stream(std::string name, std::uint64_t size);

    // Reads up to destination.size() bytes (at least 1) at a position below size(). Returns their number; 0 means that
    // the source has become shorter. Throws IoError.
    virtual std::size_t readAt(std::uint64_t position, std::span<std::uint8_t> destination) = 0;

private:
    // What the callbacks get is the address of the first member.
    struct Record {
        HostStream stream;
        Stream *owner;
    };

    static std::size_t readForReader(HostStream *stream, void *destination, std::size_t count) noexcept;
    static void seekForReader(HostStream *stream, std::intptr_t offset, std::int32_t origin) noexcept;
    static std::intptr_t tellForReader(HostStream *stream) noexcept;

    Record record_{};
    std::string name_;
    std::uint64_t size_;
    std::uint64_t position_ = 0;
    ReadWatch watch_;
    std::exception_ptr pendingError_;
};

// An open file descriptor, closed on destruction.
class FileDescriptor
{
public:
    // Takes over the descriptor; -1 means none.
    explicit FileDescriptor(int descriptor = -1) noexcept : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor &&other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~FileDescriptor()
    {
        close();
    }

    int get() const noexcept
    {
        return descriptor_;
    }

    // Closes the descriptor, if there is one. Returns 0, or -1 with errno set when what was written may be lost.
    int close() noexcept;

private:
    int descriptor_;
};

// Makes an empty file without a name, which goes with its descriptor, in the system's folder for temporary files.
// name  what it is for, for the message of the IoError that is thrown when there can be none
FileDescriptor makeTemporaryFile(const std::string &name);

struct FileOptions {
    // The most bytes that the file may have, up to Stream::largestDocument.
    std::uint64_t sizeLimit = Stream::largestDocument;

    // Waits until something can be read from a file that is no regular one, given by its descriptor. What it throws
    // ends the wait and the opening. Without it a signal whose handler does not restart system calls ends the wait with
    // IoError.
    std::function<void(int file)> waitForInput{};
};

// A file, read in large blocks. What cannot seek (a pipe, a device, standard input) is first copied whole to a
// temporary file that has no name and goes with the object.
class FileStream : public Stream
{
public:
    // path  the file to open, on Windows in UTF-8; "-" is standard input
    // Throws IoError when it cannot be opened or copied or is a directory, LimitReached when it has more bytes than it
    // may; no more than those are copied.
    explicit FileStream(const std::string &path, const FileOptions &options = {});

private:
    struct Source {
        FileDescriptor file;
        std::string name;
        std::uint64_t size;
    };
    static Source open(const std::string &path, const FileOptions &options);
    explicit FileStream(Source source);

    std::size_t readAt(std::uint64_t position, std::span<std::uint8_t> destination) override;
    void fillWindow(std::uint64_t position);

    FileDescriptor file_;
    // The window: the bytes of the file from windowStart_ on that are in memory.
    std::unique_ptr<std::uint8_t[]> window_;
    std::uint64_t windowStart_ = 0;
    std::size_t windowSize_ = 0;
    std::size_t nextFill_;
};

// A document in memory.
class MemoryStream : public Stream
{
public:
    // bytes  the document; must outlive the stream
    // name   what messages call it
    // Throws LimitReached when there are 2 GiB or more.
    explicit MemoryStream(std::span<const std::uint8_t> bytes, std::string name = "memory");
    explicit MemoryStream(std::string_view bytes, std::string name = "memory");

private:
    std::size_t readAt(std::uint64_t position, std::span<std::uint8_t> destination) override;

    std::span<const std::uint8_t> bytes_;
};

} // namespace mifhost

#endif
