#include "claims.h"

#include <system_error>

#include <fmt/format.h>

#include <unistd.h>

#include "paths.h"

namespace mifread
{

namespace
{

namespace fs = std::filesystem;

constexpr const char *standardStream = "-";

constexpr int mostLinks = 40; // as the system has it

// Where the first link in the path, which leads to something that is not there yet, leads to; the path when it has
// none.
fs::path followDangling(const fs::path &path)
{
    std::error_code error;
    fs::path place;
    for (auto component = path.begin(); component != path.end(); ++component) {
        const fs::path folder = place;
        place /= *component;
        if (!fs::is_symlink(place, error)) {
            continue;
        }
        place = folder / fs::read_symlink(place, error);
        while (++component != path.end()) {
            place /= *component;
        }
        return error ? path : place;
    }
    return path;
}

fs::path resolve(const fs::path &path)
{
    std::error_code error;
    fs::path place = fs::absolute(path, error);
    for (int links = 0; links <= mostLinks; ++links) {
        const fs::path known = fs::weakly_canonical(place, error);
        place = error ? path : followDangling(known);
        if (place == known || error) {
            break;
        }
    }
    return place.has_filename() ? place : place.parent_path(); // without a slash at the end
}

std::optional<system::FileIdentity> identityOf(const std::string &path, int standardDescriptor)
{
    return path == standardStream ? system::identityOf(standardDescriptor) : system::identityOf(pathOf(path));
}

} // namespace

fs::path Claims::placeOf(const fs::path &path)
{
    const fs::path name = path.filename();
    std::error_code ignored;
    if (name.empty() || name == "." || name == ".." || fs::is_symlink(path, ignored)) {
        return system::spellingOf(resolve(path));
    }
    return system::spellingOf(placeOfFolder(path.parent_path()) / name);
}

// Files are many, folders are few.
fs::path Claims::placeOfFolder(const fs::path &folder)
{
    const std::lock_guard lock(mutex_);
    const auto [place, isNew] = folderPlaces_.try_emplace(folder);
    if (isNew) {
        place->second = resolve(folder.empty() ? "." : folder);
    }
    return place->second;
}

fs::path Claims::placeOfText(const std::string &path)
{
    return path == standardStream ? pathOf(path) : placeOf(pathOf(path));
}

void Claims::addInput(const std::string &path)
{
    const fs::path place = placeOfText(path);
    const auto identity = identityOf(path, STDIN_FILENO);
    const std::lock_guard lock(mutex_);
    if (path != standardStream) {
        read_.insert(place);
    }
    if (identity.has_value()) {
        filesRead_.insert(*identity);
    }
}

void Claims::addFolder(const fs::path &folder)
{
    const fs::path place = placeOf(folder);
    const std::lock_guard lock(mutex_);
    insertFolder(place);
}

std::string Claims::claim(const std::string &path)
{
    const char *obstacle = findObstacle(path);
    const bool isStream = path == standardStream;
    return obstacle == nullptr ? "" : fmt::format("{} would be {}", isStream ? "standard output" : path, obstacle);
}

// Claims the file if there is none.
const char *Claims::findObstacle(const std::string &path)
{
    constexpr const char *isWrittenTwice = "written twice";
    const fs::path place = placeOfText(path);
    const auto identity = identityOf(path, STDOUT_FILENO);
    const std::lock_guard lock(mutex_);
    if (read_.contains(place) || (identity.has_value() && filesRead_.contains(*identity))) {
        return "both read and written";
    }
    if (path == standardStream) {
        standardOutput_ = identity;
    } else if (identity.has_value() && identity == standardOutput_) {
        return isWrittenTwice;
    }
    if (folders_.contains(place) || isBelowFile(place)) {
        return "both a file and a folder";
    }
    if (!written_.insert(place).second) {
        return isWrittenTwice;
    }
    insertFolder(place.parent_path());
    return nullptr;
}

void Claims::insertFolder(const fs::path &place)
{
    fs::path folder = place;
    while (folder.has_relative_path() && folders_.insert(folder).second) {
        folder = folder.parent_path();
    }
}

bool Claims::isBelowFile(const fs::path &place) const
{
    fs::path folder = place.parent_path();
    while (folder.has_relative_path() && !folders_.contains(folder) && !written_.contains(folder)) {
        folder = folder.parent_path();
    }
    return written_.contains(folder);
}

} // namespace mifread
