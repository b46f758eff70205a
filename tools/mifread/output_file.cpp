#include "output_file.h"

#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mifread
{

namespace fs = std::filesystem;

OutputFile::OutputFile(const std::string &path) : name_(path == "-" ? "standard output" : path)
{
    if (path == "-") {
        file_ = mifhost::FileDescriptor(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    } else {
        open(path);
    }
    if (file_.get() < 0) {
        fail("cannot open for writing");
    }
    text_.reserve(2 * blockSize);
}

OutputFile::~OutputFile()
{
    if (!temporaryPath_.empty()) {
        unlink(temporaryPath_.c_str());
    }
}

void OutputFile::open(const std::string &path)
{
    std::error_code ignored;
    const bool exists = fs::exists(path, ignored);
    if (exists && !fs::is_regular_file(path, ignored)) {
        file_ = mifhost::FileDescriptor(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
        return;
    }
    // A link stays a link: the file that it leads to is replaced.
    targetPath_ = exists ? fs::canonical(path, ignored).string() : path;
    const fs::path folder = fs::path(targetPath_).parent_path();
    const std::string stem = folder / (".mifread-" + std::to_string(getpid()) + "-");
    std::string temporary;
    int number = 0;
    do {
        temporary = stem + std::to_string(number++) + ".tmp";
        file_ = mifhost::FileDescriptor(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    } while (file_.get() < 0 && errno == EEXIST);
    if (file_.get() < 0) {
        return;
    }
    temporaryPath_ = temporary;
    struct stat status {
    };
    if (exists && stat(targetPath_.c_str(), &status) == 0) {
        fchmod(file_.get(), status.st_mode & 07777);
    }
}

void OutputFile::flush()
{
    std::size_t done = 0;
    while (done < text_.size()) {
        const ssize_t count = ::write(file_.get(), text_.data() + done, text_.size() - done);
        if (count < 0 && errno != EINTR) {
            fail("cannot write");
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    written_ += done;
    text_.clear();
}

void OutputFile::keepPart() noexcept
{
    kept_ = written_ + text_.size();
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
    if (rename(temporaryPath_.c_str(), targetPath_.c_str()) != 0) {
        fail("cannot replace");
    }
    temporaryPath_.clear();
}

void OutputFile::fail(const char *what) const
{
    throw OutputError(name_, std::nullopt, std::string(what) + ": " + std::generic_category().message(errno));
}

} // namespace mifread
