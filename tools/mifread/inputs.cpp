#include "inputs.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "paths.h"
#include "system.h"

namespace mifread
{

namespace
{

namespace fs = std::filesystem;

bool isMifName(const fs::path &path)
{
    std::string extension = textOf(path.extension());
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return extension == ".mif";
}

Input inputAt(const fs::path &path, fs::path result)
{
    std::error_code error;
    const std::uintmax_t size = fs::file_size(path, error);
    if (isMifName(result)) {
        result.replace_extension();
    }
    return {textOf(path), std::move(result), error ? 0 : size, ""};
}

// Appends the documents in a folder and below, whose results keep their places below root. A folder that cannot be
// listed stands for what is in it.
void listFolder(const fs::path &folder, const fs::path &root, std::vector<Input> &inputs)
{
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
            listFolder(entry->path(), root, inputs);
        } else if (isMifName(entry->path()) && entry->is_regular_file(ignored)) {
            inputs.push_back(inputAt(entry->path(), entry->path().lexically_relative(root)));
        }
    }
    if (error) {
        inputs.push_back({textOf(folder), {}, 0, fmt::format("cannot list the folder: {}", error.message())});
    }
}

void listTree(const fs::path &folder, std::vector<Input> &inputs)
{
    const std::size_t first = inputs.size();
    listFolder(folder, folder, inputs);
    std::sort(inputs.begin() + static_cast<std::ptrdiff_t>(first), inputs.end(),
              [](const Input &a, const Input &b) { return a.path < b.path; });
    if (inputs.size() == first) {
        inputs.push_back({textOf(folder), {}, 0, "there is no .mif document in the folder"});
    }
}

// What tells whether two paths lead to the same file.
fs::path placeOf(const std::string &text)
{
    const fs::path path = pathOf(text);
    std::error_code error;
    const fs::path place = fs::weakly_canonical(fs::absolute(path, error), error);
    return system::spellingOf(error ? path : place);
}

} // namespace

std::vector<Input> findInputs(const std::vector<std::string> &arguments, bool recursive)
{
    std::vector<Input> inputs;
    for (const std::string &argument : arguments) {
        const fs::path path = pathOf(argument);
        std::error_code ignored;
        if (argument == "-") {
            inputs.push_back({argument, "standard-input", 0, ""});
        } else if (!fs::is_directory(path, ignored)) {
            inputs.push_back(inputAt(path, path.filename()));
        } else if (recursive) {
            listTree(path, inputs);
        } else {
            inputs.push_back({argument, {}, 0, "is a directory; with -r the documents in it are taken"});
        }
    }
    return inputs;
}

std::string findCollision(const std::vector<Input> &inputs, const std::vector<std::string> &outputs)
{
    std::set<fs::path> read;
    bool readsStandardInput = false;
    for (const Input &input : inputs) {
        if (input.path == "-" && std::exchange(readsStandardInput, true)) {
            return "standard input is named twice";
        }
        read.insert(placeOf(input.path));
    }
    std::set<fs::path> written;
    for (const std::string &output : outputs) {
        const fs::path place = placeOf(output);
        if (output != "-" && read.contains(place)) {
            return fmt::format("{} would be both read and written", output);
        }
        if (!written.insert(place).second) {
            return fmt::format("{} would be written twice", output);
        }
    }
    for (const fs::path &place : written) {
        for (fs::path folder = place.parent_path(); folder.has_relative_path(); folder = folder.parent_path()) {
            if (written.contains(folder)) {
                return fmt::format("{} would be both a file and a folder", textOf(folder));
            }
        }
    }
    return "";
}

} // namespace mifread
