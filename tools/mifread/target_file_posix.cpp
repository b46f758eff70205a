#include "target_file.h"

#include <cerrno>
#include <charconv>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include "interruption.h"
#include "system.h"

namespace mifread
{

namespace
{

namespace fs = std::filesystem;
using mifhost::FileDescriptor;

constexpr int mostLinks = 40;        // as the system has it
constexpr mode_t permissions = 0777; // without those to run as the file's owner
constexpr mode_t usualMode = 0666;   // of which the user's mask takes away

constexpr const char *cannotOpen = "cannot open for writing";
constexpr const char *cannotMakeFolder = "cannot make the folder";

[[noreturn]] void fail(const char *what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

struct stat statusOf(const FileDescriptor &file, const char *what)
{
    struct stat status {
    };
    if (fstat(file.get(), &status) != 0) {
        fail(what);
    }
    return status;
}

bool isTrusted(uid_t owner) noexcept
{
    return owner == geteuid() || owner == 0;
}

// A place in the file system, found without following links that another user may have made.
class Walk
{
public:
    enum class Missing { Fails, IsMade };

    // what     for messages
    // missing  what happens to folders on the way that are missing
    Walk(const fs::path &path, const char *what, Missing missing);

    FileDescriptor folder;
    std::string name; // in the folder
    struct stat status {
    };                   // of what has the name; all zeros if there is nothing, a link's if it leads to no path
    FileDescriptor open; // what the program was started with, when the path names it as /dev/stdout does

private:
    void start(const fs::path &path);
    FileDescriptor enter(Missing missing);
    bool follow(const FileDescriptor &link);
    FileDescriptor openAlready() const;
    void requireTrust() const;

    const char *what_;
    std::vector<std::string> rest_; // the components still to come, the next one last
};

Walk::Walk(const fs::path &path, const char *what, Missing missing) : what_(what)
{
    start(path);
    int links = 0;
    while (true) {
        name = std::move(rest_.back());
        rest_.pop_back();
        FileDescriptor entry = enter(missing);
        if (entry.get() < 0) {
            status = {};
            return;
        }
        status = statusOf(entry, what_);
        if (S_ISLNK(status.st_mode)) {
            requireTrust();
            if (++links > mostLinks) {
                errno = ELOOP;
                fail(what_);
            }
            open = openAlready();
            if (open.get() >= 0 || !follow(entry)) {
                return;
            }
        } else if (rest_.empty()) {
            if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) {
                requireTrust();
            }
            return;
        } else {
            folder = std::move(entry);
        }
    }
}

// Puts a path before the components still to come.
void Walk::start(const fs::path &path)
{
    if (path.is_absolute() || folder.get() < 0) {
        folder = FileDescriptor(::open(path.is_absolute() ? "/" : ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (folder.get() < 0) {
            fail(what_);
        }
    }
    const fs::path components = path.relative_path();
    if (components.empty()) {
        rest_.emplace_back(".");
    }
    for (auto component = components.end(); component != components.begin();) {
        --component;
        rest_.push_back(component->empty() ? "." : component->native()); // a slash at the end
    }
}

// Returns what has the name; none where the last component is missing.
FileDescriptor Walk::enter(Missing missing)
{
    constexpr int flags = O_PATH | O_NOFOLLOW | O_CLOEXEC;
    const bool isLast = rest_.empty();
    // Only asking for a folder has one mounted that is mounted when it is needed.
    FileDescriptor entry(openat(folder.get(), name.c_str(), isLast ? flags : flags | O_DIRECTORY));
    const bool isMissing = entry.get() < 0 && errno == ENOENT;
    const bool isNoFolder = entry.get() < 0 && errno == ENOTDIR; // but perhaps a link to one
    const bool isToBeMade = isMissing && !isLast && missing == Missing::IsMade;
    if (isToBeMade && mkdirat(folder.get(), name.c_str(), permissions) != 0 && errno != EEXIST) {
        fail(what_);
    }
    if (isToBeMade || isNoFolder) {
        entry = FileDescriptor(openat(folder.get(), name.c_str(), flags));
    }
    if (entry.get() < 0 && (!isMissing || !isLast)) {
        fail(what_);
    }
    return entry;
}

// Returns false for a link of the system's own that leads to something without a path, such as a pipe.
bool Walk::follow(const FileDescriptor &link)
{
    std::string text(PATH_MAX, '\0');
    const ssize_t size = readlinkat(link.get(), "", text.data(), text.size());
    if (size <= 0) {
        fail(what_);
    }
    text.resize(static_cast<std::size_t>(size));
    struct stat end {
    };
    if (rest_.empty() && text.front() != '/' && fstatat(folder.get(), text.c_str(), &end, AT_SYMLINK_NOFOLLOW) != 0 &&
        fstatat(folder.get(), name.c_str(), &end, 0) == 0) {
        return false;
    }
    start(text);
    return true;
}

// A copy of the descriptor that a link of the system stands for in the program's own list of them. What it was started
// with is inherited; what it has opened itself is not.
FileDescriptor Walk::openAlready() const
{
    struct stat own {
    };
    const struct stat place = statusOf(folder, what_);
    const bool isOwn =
        rest_.empty() && stat("/proc/self/fd", &own) == 0 && own.st_dev == place.st_dev && own.st_ino == place.st_ino;
    const std::string digits = isOwn ? name : "";
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const int flags = error == std::errc() ? fcntl(number, F_GETFD) : -1;
    if (flags < 0 || (flags & FD_CLOEXEC) != 0) {
        return FileDescriptor();
    }
    return FileDescriptor(fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

void Walk::requireTrust() const
{
    const struct stat place = statusOf(folder, what_);
    const bool isShared = !isTrusted(place.st_uid) || (place.st_mode & (S_IWGRP | S_IWOTH)) != 0;
    if (isShared && !isTrusted(status.st_uid)) {
        throw std::runtime_error(std::string(what_) + ": " + (S_ISLNK(status.st_mode) ? "a link" : "a pipe or device") +
                                 " of another user, '" + name + "', in a folder that others can write to");
    }
}

// Opens a device or a pipe. A pipe is waited for until somebody reads from it, or a signal comes.
FileDescriptor openAsItIs(const Walk &place)
{
    constexpr int milliseconds = 50;
    const int flags = O_WRONLY | O_CLOEXEC | O_NONBLOCK | (S_ISLNK(place.status.st_mode) ? 0 : O_NOFOLLOW);
    FileDescriptor file(openat(place.folder.get(), place.name.c_str(), flags));
    while (file.get() < 0 && errno == ENXIO && S_ISFIFO(place.status.st_mode)) {
        if (!system::pauseFor(milliseconds)) {
            throw Interrupted();
        }
        file = FileDescriptor(openat(place.folder.get(), place.name.c_str(), flags));
    }
    if (file.get() < 0) {
        fail(cannotOpen);
    }
    fcntl(file.get(), F_SETFL, O_WRONLY);
    return file;
}

// Who may do what with the file that takes the place of a present one, which the user must be allowed to write.
struct Rights {
    mode_t mode = usualMode;
    bool areExact = false; // the user's mask is not looked at
    gid_t group = 0;       // when they are exact
};

// Of a file that somebody else made it is what the user's own files may have, too.
Rights rightsOfPresent(const Walk &place)
{
    // Opening it is the one sure way to know. What took its place meanwhile is not waited for.
    const FileDescriptor file(
        openat(place.folder.get(), place.name.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file.get() < 0) {
        fail(cannotOpen);
    }
    const struct stat status = statusOf(file, cannotOpen);
    const bool isOwn = status.st_uid == geteuid();
    return {status.st_mode & (isOwn ? permissions : usualMode), isOwn, status.st_gid};
}

// Gives a file of one's own the rights of another one. A group that cannot be taken over loses its rights; its members
// are then others, who get no more than it had.
void takeOver(const FileDescriptor &file, const Rights &rights)
{
    const bool hasGroup = fchown(file.get(), static_cast<uid_t>(-1), rights.group) == 0;
    const mode_t ofAll = rights.mode & S_IRWXO & ((rights.mode & S_IRWXG) >> 3U);
    fchmod(file.get(), hasGroup ? rights.mode : (rights.mode & S_IRWXU) | ofAll);
}

} // namespace

void makeFolders(const fs::path &folder)
{
    const Walk walk(folder / ".", cannotMakeFolder, Walk::Missing::IsMade);
}

TargetFile::TargetFile(const fs::path &path)
{
    Walk walk(path, cannotOpen, Walk::Missing::Fails);
    target_ = walk.name;
    const bool exists = walk.status.st_mode != 0;
    isDirect_ = exists && !S_ISREG(walk.status.st_mode);
    if (isDirect_) {
        file_ = walk.open.get() >= 0 ? std::move(walk.open) : openAsItIs(walk);
        return;
    }
    const Rights rights = exists ? rightsOfPresent(walk) : Rights();
    // Until it has the group its rights are for.
    const mode_t mode = rights.areExact ? rights.mode & ~static_cast<mode_t>(S_IRWXG) : rights.mode;
    folder_ = std::move(walk.folder);
    for (int number = 0; file_.get() < 0; ++number) {
        temporary_ = ".mifread-" + std::to_string(getpid()) + "-" + std::to_string(number) + ".tmp";
        file_ = FileDescriptor(
            openat(folder_.get(), temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
        if (file_.get() < 0 && errno != EEXIST) {
            fail(cannotOpen);
        }
    }
    if (rights.areExact) {
        takeOver(file_, rights);
    }
}

TargetFile::~TargetFile()
{
    if (!temporary_.empty()) {
        unlinkat(folder_.get(), temporary_.c_str(), 0);
    }
}

void TargetFile::commit()
{
    if (temporary_.empty()) {
        return;
    }
    if (renameat(folder_.get(), temporary_.c_str(), folder_.get(), target_.c_str()) != 0) {
        fail("cannot replace");
    }
    temporary_.clear();
}

} // namespace mifread
