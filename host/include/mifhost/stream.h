// The streams that documents are read from: files, memory, and whatever else a host derives from Stream. No stream is
// synchronised; each belongs to one Document, and so to one thread, at a time. A source of one's own is a class of this
// form:
//
//   class Archived : public mifhost::Stream {
//   public:
//       explicit Archived(Entry &entry) : Stream(entry.path(), entry.size()), entry_(entry) {}
//   private:
//       std::size_t readAt(std::uint64_t position, std::span<std::uint8_t> destination) override
//       { return entry_.copy(position, destination.data(), destination.size()); }
//       Entry &entry_;
//   };
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
// only has to say how bytes at a position are read. The bytes must stay the same while the stream lives: the reader
// reads some of them several times.
class Stream
{
public:
    // The most bytes that a document has, 2 GiB less one: a reader counts them in signed 32 bits.
    static constexpr std::uint64_t largestDocument = std::numeric_limits<std::int32_t>::max();

    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;
    // Not while a Document reads from it.
    virtual ~Stream() = default;

    // What messages call the document: a path, or what the source chose.
    const std::string &name() const noexcept
    {
        return name_;
    }

    // The size of the document in bytes, 0 to largestDocument. It never changes: what a file gains later is not read.
    std::uint64_t size() const noexcept
    {
        return size_;
    }

    // The position of the next read, in bytes from the start, for the reader and the host alike. It may lie beyond the
    // end, where reads give 0.
    std::uint64_t position() const noexcept
    {
        return position_;
    }

    // Reads up to destination.size() bytes and moves past them. Returns their number, which may be less before the end,
    // too; 0 at the end only, or for no room. Throws IoError, also when the source has become shorter than size(), and
    // the position stays. Not for the time between a Document's first token and its last.
    std::size_t read(std::span<std::uint8_t> destination);

    // Moves to a position in bytes from the start of the document, any at all. Costs nothing: the source is asked at
    // the next read.
    void seek(std::uint64_t position) noexcept
    {
        position_ = position;
    }

    // The record to hand to a reader, for mifInitDoc. It lives as long as this object. What fails while the reader
    // reads is kept here, and the reader meets the end of the data there and at every later read.
    HostStream *record() noexcept
    {
        return &record_.stream;
    }

    // Throws what the reader's reading met, an IoError as a rule, or what the watch threw; nothing when all went well.
    // For the reader a failure looks like the end of the document, so that its host asks here after every call. It may
    // be called again, and throws the same.
    void throwPendingError() const;

    // Forgets it: another reader begins, and its reads reach the source again.
    void forgetPendingError() noexcept
    {
        pendingError_ = nullptr;
    }

    // Told of all bytes that the reader reads, with their position, before the reader gets them. It may throw, which
    // counts as a failure of the reading: the reader is told of the end instead of the bytes. Reads of the host are not
    // told.
    using ReadWatch = std::function<void(std::uint64_t position, std::span<const std::uint8_t> bytes)>;

    // watch  takes the place of the one before; null for none. A Document sets its own, and null when it goes
    void watchReads(ReadWatch watch) noexcept
    {
        watch_ = std::move(watch);
    }

protected:
    // name  what messages are to call the document
    // size  in bytes. Throws LimitReached when it is above largestDocument
    Stream(std::string name, std::uint64_t size);

    // Reads up to destination.size() bytes (at least 1) at a position below size(). Returns their number, of which any
    // from 1 will do; 0 means that the source has become shorter. Throws IoError, and may throw anything else, which
    // comes to the host as it is. Called on the thread of the read, also with positions that go back.
    virtual std::size_t readAt(std::uint64_t position, std::span<std::uint8_t> destination) = 0;

private:
    // What the callbacks get is the address of the first member; the second leads from there to the object.
    struct Record {
        HostStream stream;
        Stream *owner;
    };

    // The three operations of the record, as mifreader/host.h describes them. No exception leaves them: the first one
    // that comes up in a read is kept, and the reader meets the end of the data.
    static std::size_t readForReader(HostStream *stream, void *destination, std::size_t count) noexcept;
    // A position below the start becomes the start.
    static void seekForReader(HostStream *stream, std::intptr_t offset, std::int32_t origin) noexcept;
    static std::intptr_t tellForReader(HostStream *stream) noexcept;

    // The slots that the reader does not use are null.
    Record record_{};
    std::string name_;
    std::uint64_t size_;
    // May be beyond size_.
    std::uint64_t position_ = 0;
    // Empty when nobody watches.
    ReadWatch watch_;
    // The first failure of a read of the reader since the last forgetPendingError(), or null.
    std::exception_ptr pendingError_;
};

// An open descriptor of the C library for a file, closed on destruction. It can be moved but not copied.
class FileDescriptor
{
public:
    // descriptor  to be closed by this object from now on; -1 means none
    explicit FileDescriptor(int descriptor = -1) noexcept : descriptor_(descriptor) {}
    // Takes what the other one has, which then has none.
    FileDescriptor(FileDescriptor &&other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

    // Exchanges the two, so that what this object had is closed with the other one.
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }

    // Closes it; what close() would tell is lost, so that who wrote calls that before.
    ~FileDescriptor()
    {
        close();
    }

    // The descriptor, which stays this object's, or -1 when there is none.
    int get() const noexcept
    {
        return descriptor_;
    }

    // Closes the descriptor, if there is one. Returns 0, or -1 with errno set when what was written may be lost;
    // afterwards there is none in either case.
    int close() noexcept;

private:
    // -1 for none.
    int descriptor_;
};

// Makes an empty file without a name, which goes with its descriptor, in the system's folder for temporary files
// (std::filesystem::temp_directory_path(), or /tmp without one). It is open for reading and writing.
// name  what it is for, for the message of the IoError that is thrown when there can be none
FileDescriptor makeTemporaryFile(const std::string &name);

// How a file is opened.
struct FileOptions {
    // The most bytes that the file may have, up to Stream::largestDocument; it holds for what is copied, too.
    std::uint64_t sizeLimit = Stream::largestDocument;

    // Waits until something can be read from a file that is no regular one, given by its descriptor: called before each
    // read of the copying. What it throws ends the wait and the opening. Without it a signal whose handler does not
    // restart system calls ends the wait with IoError.
    std::function<void(int file)> waitForInput{};
};

// A file, read in blocks of 8 to 64 KB, larger ones the longer it is read in order. It stays open as long as the
// object, and is not locked: one that becomes shorter gives an IoError. What cannot seek (a pipe, a device, standard
// input) is first copied whole to a temporary file that has no name and goes with the object.
class FileStream : public Stream
{
public:
    // path     the file to open, on Windows in UTF-8; "-" is standard input
    // options  used while the file is opened, and not kept
    // Standard input and pipes are taken from where they are; a file that somebody else has read a part of as standard
    // input begins where they stopped. A pipe is opened without waiting for somebody who writes to it. The program's
    // own standard input stays open. Throws IoError when it cannot be opened or copied or is a directory, LimitReached
    // when it has more bytes than it may; no more than those are copied.
    explicit FileStream(const std::string &path, const FileOptions &options = {});

private:
    // What is known before the base class can be made.
    struct Source {
        FileDescriptor file;
        std::string name;
        std::uint64_t size;
    };
    // Opens the file, copies what cannot seek, and finds the size.
    static Source open(const std::string &path, const FileOptions &options);
    explicit FileStream(Source source);

    std::size_t readAt(std::uint64_t position, std::span<std::uint8_t> destination) override;
    // Has the window begin at a position, which is not in it.
    void fillWindow(std::uint64_t position);

    // The file, or its copy.
    FileDescriptor file_;

    // The window: the bytes of the file from windowStart_ on that are in memory, windowSize_ of them.
    std::unique_ptr<std::uint8_t[]> window_;
    std::uint64_t windowStart_ = 0;
    std::size_t windowSize_ = 0;
    // Bytes that the last fill asked for: after a jump few, then twice as many each time up to 64 KB.
    std::size_t nextFill_;
};

// A document in memory, of which no copy is made. Several streams, on several threads, may read the same bytes.
class MemoryStream : public Stream
{
public:
    // bytes  the document; must outlive the stream and stay as it is
    // name   what messages call it
    // Throws LimitReached when there are 2 GiB or more.
    explicit MemoryStream(std::span<const std::uint8_t> bytes, std::string name = "memory");

    // The same for bytes that are held as characters, such as a std::string or a literal.
    explicit MemoryStream(std::string_view bytes, std::string name = "memory");

private:
    std::size_t readAt(std::uint64_t position, std::span<std::uint8_t> destination) override;

    // The caller's.
    std::span<const std::uint8_t> bytes_;
};

} // namespace mifhost

#endif
