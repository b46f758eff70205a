// Which files a run reads and writes: none is written twice, and none that is read is written.
#ifndef MIFREAD_CLAIMS_H
#define MIFREAD_CLAIMS_H

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "system.h"

namespace mifread
{

// Knows files by the places that their paths lead to, and those that are read by their identity as well, as they may
// have several names. All functions may be called from several threads at once.
class Claims
{
public:
    // A file that is read; "-" is standard input.
    void addInput(const std::string &path);

    // A folder for results. Nobody may claim it, or one that it is in, for a file.
    void addFolder(const std::filesystem::path &folder);

    // Claims a file to write; "-" is standard output, to be claimed before others. Returns why it must not be written,
    // or an empty text.
    std::string claim(const std::string &path);

    // The same for all paths that lead to one place.
    std::filesystem::path placeOf(const std::filesystem::path &path);

private:
    std::filesystem::path placeOfText(const std::string &path);
    std::filesystem::path placeOfFolder(const std::filesystem::path &folder);
    const char *findObstacle(const std::string &path);
    void insertFolder(const std::filesystem::path &place);
    bool isBelowFile(const std::filesystem::path &place) const;

    std::mutex mutex_;
    std::map<std::filesystem::path, std::filesystem::path> folderPlaces_; // of those that were asked for
    std::set<std::filesystem::path> read_;
    std::set<std::filesystem::path> written_;
    std::set<std::filesystem::path> folders_; // with all that they are in
    std::set<system::FileIdentity> filesRead_;
    std::optional<system::FileIdentity> standardOutput_; // when it is written to and is a file
};

} // namespace mifread

#endif
