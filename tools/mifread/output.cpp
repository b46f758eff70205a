#include "output.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <stdexcept>
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
    std::error_code ignored;
    if (fs::is_directory(folder, ignored)) { // who writes there looks at the way to it
        return;
    }
    try {
        makeFolders(folder);
    } catch (const std::runtime_error &error) {
        throw OutputError(textOf(folder), std::nullopt, error.what());
    }
}

bool leadsToTerminal(const std::string &path)
{
    return path == "-" ? system::isTerminal(STDOUT_FILENO) : system::isTerminal(pathOf(path));
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
        if (count < 0 && errno == EPIPE && isStandardOutput_ && system::brokenPipeSignal() != 0) {
            interruptBy(system::brokenPipeSignal());
            throw Interrupted();
        }
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
    throw OutputError(name_, std::nullopt, std::string(what) + ": " + std::generic_category().message(errno));
}

OutputFile::OutputFile(const std::string &path) : Output(path == "-" ? "standard output" : path)
{
    if (path == "-") {
        isStandardOutput_ = true;
        file_ = mifhost::FileDescriptor(system::openStandardOutput());
        if (file_.get() < 0) {
            fail("cannot open for writing");
        }
    } else {
        openTarget(path);
    }
    mayWait_ = system::mayWait(file_.get());
}

void OutputFile::openTarget(const std::string &path)
{
    try {
        target_.emplace(pathOf(path));
        file_ = target_->takeFile();
    } catch (const Interrupted &) {
        throw;
    } catch (const std::runtime_error &error) {
        throw OutputError(name_, std::nullopt, error.what());
    }
}

OutputFile::~OutputFile()
{
    file_.close(); // before target_ removes it
}

bool OutputFile::isDirect() const noexcept
{
    return !target_.has_value() || target_->isDirect();
}

void OutputFile::keepPart() noexcept
{
    kept_ = size();
}

void OutputFile::dropPart()
{
    if (isDirect()) {
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
    if (!target_.has_value()) {
        return;
    }
    try {
        target_->commit();
    } catch (const std::runtime_error &error) {
        throw OutputError(name_, std::nullopt, error.what());
    }
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
