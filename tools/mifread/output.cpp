#include "output.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include <unistd.h>

#include "interruption.h"
#include "paths.h"
#include "system.h"

namespace mifread
{

namespace fs = std::filesystem;

void makeFolder(const fs::path &folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) {
        throw OutputError(textOf(folder), std::nullopt, "cannot make the folder: " + error.message());
    }
}

Output::Output(std::string name) : name_(std::move(name))
{
    text_.reserve(2 * blockSize);
}

void Output::flush()
{
    open();
    std::size_t done = 0;
    while (done < text_.size() && (!mayWait_ || system::waitToWrite(file_.get()))) {
        const std::size_t left = text_.size() - done;
        const std::size_t size = mayWait_ ? std::min(left, system::smallWrite) : left;
        const ssize_t count = ::write(file_.get(), text_.data() + done, static_cast<unsigned>(size));
        if (count < 0 && errno != EINTR) {
            fail("cannot write");
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    written_ += done;
    text_.erase(0, done);
    if (!text_.empty()) { // nobody reads
        throw Interrupted();
    }
}

void Output::fail(const char *what) const
{
    fail(what, {errno, std::generic_category()});
}

void Output::fail(const char *what, const std::error_code &reason) const
{
    throw OutputError(name_, std::nullopt, std::string(what) + ": " + reason.message());
}

OutputFile::OutputFile(const std::string &path) : Output(path == "-" ? "standard output" : path)
{
    if (path == "-") {
        file_ = mifhost::FileDescriptor(system::openStandardOutput());
    } else {
        openPath(pathOf(path));
    }
    if (file_.get() < 0) {
        throwIfInterrupted();
        fail("cannot open for writing");
    }
    mayWait_ = system::mayWait(file_.get());
}

OutputFile::~OutputFile()
{
    if (!temporaryPath_.empty()) {
        file_.close(); // an open one cannot be removed everywhere
        std::error_code ignored;
        fs::remove(temporaryPath_, ignored);
    }
}

void OutputFile::openPath(const fs::path &path)
{
    std::error_code ignored;
    const bool exists = fs::exists(path, ignored);
    if (exists && !fs::is_regular_file(path, ignored)) {
        file_ = mifhost::FileDescriptor(system::openExisting(path));
        return;
    }
    // A link stays a link: the file that it leads to is replaced.
    targetPath_ = exists || fs::is_symlink(path, ignored) ? fs::weakly_canonical(path, ignored) : path;
    const fs::path folder = targetPath_.parent_path();
    const std::string stem = ".mifread-" + std::to_string(getpid()) + "-";
    fs::path temporary;
    int number = 0;
    do {
        temporary = folder / (stem + std::to_string(number++) + ".tmp");
        file_ = mifhost::FileDescriptor(system::createFile(temporary, exists ? targetPath_ : fs::path()));
    } while (file_.get() < 0 && errno == EEXIST);
    if (file_.get() >= 0) {
        temporaryPath_ = temporary;
    }
}

void OutputFile::keepPart() noexcept
{
    kept_ = size();
}

void OutputFile::dropPart()
{
    if (temporaryPath_.empty()) {
        flush();
        return;
    }
    if (kept_ >= written_) {
        text_.resize(static_cast<std::size_t>(kept_ - written_));
        return;
    }
    text_.clear();
    const auto size = static_cast<off_t>(kept_);
    if (ftruncate(file_.get(), size) != 0 || lseek(file_.get(), size, SEEK_SET) != size) {
        fail("cannot write");
    }
    written_ = kept_;
}

void OutputFile::commit()
{
    flush();
    // Some file systems tell only here that they could not write.
    if (file_.close() != 0) {
        fail("cannot write");
    }
    if (temporaryPath_.empty()) {
        return;
    }
    std::error_code error;
    fs::rename(temporaryPath_, targetPath_, error);
    if (error) {
        fail("cannot replace", error);
    }
    temporaryPath_.clear();
}

OutputPart::OutputPart() : Output("a temporary file") {}

void OutputPart::open()
{
    if (file_.get() < 0) {
        file_ = mifhost::makeTemporaryFile(name_);
    }
}

void OutputPart::moveTo(Output &output)
{
    if (written_ > 0) {
        flush();
        if (lseek(file_.get(), 0, SEEK_SET) != 0) {
            fail("cannot read");
        }
        std::uint64_t position = 0;
        while (position < written_) {
            std::string &target = output.text();
            const std::size_t start = target.size();
            target.resize(start + blockSize);
            const ssize_t count = read(file_.get(), target.data() + start, blockSize);
            target.resize(start + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
            if (count == 0 || (count < 0 && errno != EINTR)) {
                fail("cannot read");
            }
            position += static_cast<std::uint64_t>(std::max<ssize_t>(count, 0));
            throwIfInterrupted();
            output.writeFullBlocks();
        }
        file_.close();
        written_ = 0;
        return;
    }
    output.text() += text_;
    output.writeFullBlocks();
    text_.clear();
}

} // namespace mifread
