// Where a command writes to.
#ifndef MIFREAD_OUTPUT_H
#define MIFREAD_OUTPUT_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "mifhost/error.h"
#include "mifhost/stream.h"
#include "target_file.h"

namespace mifread
{

// The output cannot be written, so that there is no point in going on.
class OutputError : public mifhost::IoError
{
public:
    using IoError::IoError;
};

// Makes a folder and those that it is in, where they are missing. Throws OutputError.
void makeFolder(const std::filesystem::path &folder);

// Whether what is written to a path, "-" for standard output, is shown on a terminal.
bool leadsToTerminal(const std::string &path);

// Collects text and writes it in large blocks. What cannot be written is thrown as OutputError; a signal that comes
// while nobody reads from a pipe, as Interrupted.
class Output
{
public:
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;
    virtual ~Output() = default;

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

    // What messages call it: its path, as a rule.
    const std::string &name() const noexcept
    {
        return name_;
    }

    // All bytes so far, written or at hand.
    std::uint64_t size() const noexcept
    {
        return written_ + text_.size();
    }

protected:
    static constexpr std::size_t blockSize = std::size_t{256} * 1024;

    // name  for messages
    explicit Output(std::string name);

    // Writes the text at hand to the file.
    void flush();
    [[noreturn]] void fail(const char *what) const; // for the reason that errno has

    // Makes sure that file_ is open; called before the first byte is written.
    virtual void open() = 0;

    std::string name_;
    mifhost::FileDescriptor file_;
    std::string text_;
    std::uint64_t written_ = 0; // bytes written to the file
    bool mayWait_ = false;      // for somebody who reads from the file
    bool isStandardOutput_ = false;
};

// A file or standard output. A named file comes into being, or is replaced, as a whole by commit(); until then the text
// is in a temporary file beside it, which the destructor removes. Standard output and files that are not regular (a
// device, a pipe) are written directly.
class OutputFile : public Output
{
public:
    // path  the file to write; "-" is standard output
    explicit OutputFile(const std::string &path);
    ~OutputFile() override;

    // Keeps what was appended so far, or takes back what was appended since the last keepPart(). Where the output is
    // written directly nothing is taken back but all of it written: what could be read stays.
    void keepPart() noexcept;
    void dropPart();

    // Writes all that is left and gives the file its name. Nothing may be appended afterwards.
    void commit();

private:
    void open() override {}
    void openTarget(const std::string &path);
    bool isDirect() const noexcept;

    std::optional<TargetFile> target_; // none for standard output
    std::uint64_t kept_ = 0;           // bytes of the output that keepPart() keeps
};

// A part of an output that has to wait for the parts before it. A short one stays in memory, a long one goes to a
// temporary file without a name.
class OutputPart : public Output
{
public:
    OutputPart();

    // Moves all of it to the end of another output.
    void moveTo(Output &output);

private:
    void open() override;
};

} // namespace mifread

#endif
