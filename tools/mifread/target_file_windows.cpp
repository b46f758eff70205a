#include "target_file.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mifread
{

namespace
{

namespace fs = std::filesystem;
using mifhost::FileDescriptor;

constexpr int forWriting = _O_WRONLY | _O_BINARY | _O_NOINHERIT;
constexpr int mayWrite = 2; // of _waccess()

[[noreturn]] void fail(const char *what, const std::error_code &reason = {errno, std::generic_category()})
{
    throw std::system_error(reason, what);
}

} // namespace

void makeFolders(const fs::path &folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) {
        fail("cannot make the folder", error);
    }
}

// Only administrators make links here, and folders give their permissions to files.
TargetFile::TargetFile(const fs::path &path)
{
    constexpr const char *cannotOpen = "cannot open for writing";
    std::error_code ignored;
    const bool exists = fs::exists(path, ignored);
    isDirect_ = exists && !fs::is_regular_file(path, ignored);
    if (isDirect_) {
        file_ = FileDescriptor(_wopen(path.c_str(), forWriting));
    } else if (!exists || _waccess(path.c_str(), mayWrite) == 0) {
        target_ = exists || fs::is_symlink(path, ignored) ? fs::weakly_canonical(path, ignored) : path;
        const std::string stem = ".mifread-" + std::to_string(getpid()) + "-";
        int number = 0;
        do {
            temporary_ = target_.parent_path() / (stem + std::to_string(number++) + ".tmp");
            file_ = FileDescriptor(_wopen(temporary_.c_str(), forWriting | _O_CREAT | _O_EXCL, _S_IREAD | _S_IWRITE));
        } while (file_.get() < 0 && errno == EEXIST);
    }
    if (file_.get() < 0) {
        fail(cannotOpen);
    }
}

TargetFile::~TargetFile()
{
    if (!temporary_.empty()) {
        std::error_code ignored;
        fs::remove(temporary_, ignored);
    }
}

void TargetFile::commit()
{
    if (temporary_.empty()) {
        return;
    }
    std::error_code error;
    fs::rename(temporary_, target_, error);
    if (error) {
        fail("cannot replace", error);
    }
    temporary_.clear();
}

} // namespace mifread
