// Making and replacing files without trusting what other users put in their way. Links are followed, and pipes and
// devices opened, that belong to the user or the administrator, or that are in a folder of theirs to which nobody else
// can write; others are refused.
#ifndef MIFREAD_TARGET_FILE_H
#define MIFREAD_TARGET_FILE_H

#include <filesystem>
#include <utility>

#include "mifhost/stream.h"

namespace mifread
{

// Makes a folder and those that it is in, where they are missing. Throws std::runtime_error.
void makeFolders(const std::filesystem::path &folder);

// A file that comes into being, or is replaced, as a whole: until commit() what is written is in a hidden file beside
// it, which the destructor removes. A link stays a link, and the file that it leads to is replaced. Devices, pipes
// and what the program was started with and a path names, as /dev/stdout does, are written directly.
//
// A new file has the usual permissions. One that is replaced keeps them and its group, without those that would have it
// run as its owner, and the group's where it cannot have that group; one that the user may not write is not replaced.
class TargetFile
{
public:
    // Both throw std::runtime_error.
    explicit TargetFile(const std::filesystem::path &path);
    void commit(); // when the descriptor is closed

    TargetFile(const TargetFile &) = delete;
    TargetFile &operator=(const TargetFile &) = delete;
    ~TargetFile();

    // Hands over the descriptor to write to. It must be closed before the object goes.
    mifhost::FileDescriptor takeFile() noexcept
    {
        return std::move(file_);
    }

    // Whether what is written cannot be taken back.
    bool isDirect() const noexcept
    {
        return isDirect_;
    }

private:
    mifhost::FileDescriptor file_;
    mifhost::FileDescriptor folder_; // where the paths begin, if there is one: it cannot be exchanged for another
    std::filesystem::path target_;
    std::filesystem::path temporary_; // empty when there is none
    bool isDirect_ = false;
};

} // namespace mifread

#endif
