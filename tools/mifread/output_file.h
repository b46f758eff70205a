// The file that a command writes.
#ifndef MIFREAD_OUTPUT_FILE_H
#define MIFREAD_OUTPUT_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "mifhost/error.h"
#include "mifhost/stream.h"

namespace mifread
{

// The output cannot be written, so that there is no point in going on.
class OutputError : public mifhost::IoError
{
public:
    using IoError::IoError;
};

// Collects text and writes it in large blocks. A named file comes into being, or is replaced, as a whole by commit();
// until then the text is in a temporary file beside it, which the destructor removes. Standard output and files that
// are not regular (a device, a pipe) are written directly. What cannot be written is thrown as OutputError.
class OutputFile
{
public:
    // path  the file to write; "-" is standard output
    explicit OutputFile(const std::string &path);
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    ~OutputFile();

    // The text at hand, to append to. Call writeFullBlocks() after every few appended kilobytes at most.
    std::string &text() noexcept
    {
        return text_;
    }
    void writeFullBlocks()
    {
        if (text_.size() >= blockSize) {
            flush();
        }
    }

    // Keeps what was appended so far, or takes back what was appended since the last keepPart(). Where the output is
    // written directly nothing is taken back but all of it written: what could be read stays.
    void keepPart() noexcept;
    void dropPart();

    // Writes all that is left and gives the file its name. Nothing may be appended afterwards.
    void commit();

private:
    static constexpr std::size_t blockSize = std::size_t{256} * 1024;

    void open(const std::string &path);
    void flush();
    [[noreturn]] void fail(const char *what) const;

    std::string name_;          // for messages
    std::string targetPath_;    // what commit() renames the temporary file to
    std::string temporaryPath_; // empty when the output is written directly or is committed
    mifhost::FileDescriptor file_;
    std::string text_;
    std::uint64_t written_ = 0; // bytes written to the file
    std::uint64_t kept_ = 0;    // bytes of the output that keepPart() keeps
};

} // namespace mifread

#endif
