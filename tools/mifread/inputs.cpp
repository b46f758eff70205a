#include "inputs.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "interruption.h"
#include "mifhost/error.h"
#include "mifhost/stream.h"
#include "paths.h"

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

// The name of a document's results: its own without .mif, unless only dots are left, which would name a folder.
fs::path resultName(const fs::path &name)
{
    const bool hasStem = textOf(name.stem()).find_first_not_of(". ") != std::string::npos;
    return isMifName(name) && hasStem ? name.stem() : name;
}

Input inputAt(const fs::path &path, const fs::path &folder)
{
    std::error_code error;
    const std::uintmax_t size = fs::file_size(path, error);
    return {textOf(path), folder / resultName(path.filename()), error ? 0 : size, ""};
}

// Appends the documents in a folder and below, whose results go to the folder results. A folder that cannot be listed,
// or a link to a document that leads nowhere, stands for what it hides.
void listFolder(const fs::path &folder, const fs::path &results, Inputs &found)
{
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        throwIfInterrupted();
        const fs::path &path = entry->path();
        std::error_code ignored;
        std::error_code reason;
        const bool isLink = entry->is_symlink(ignored);
        const fs::file_status status = entry->status(reason);
        if (fs::is_directory(status)) {
            if (isLink) {
                found.notes.push_back(textOf(path) + ": a link to a folder, which is not followed");
            } else {
                listFolder(path, results / path.filename(), found);
            }
        } else if (isLink && !fs::exists(status)) {
            const std::string message = "cannot follow the link: " + reason.message();
            if (isMifName(path)) {
                found.documents.push_back({textOf(path), {}, 0, message});
            } else {
                found.notes.push_back(textOf(path) + ": " + message);
            }
        } else if (isMifName(path) && fs::is_regular_file(status)) {
            found.documents.push_back(inputAt(path, results));
        }
    }
    if (error) {
        found.documents.push_back({textOf(folder), {}, 0, fmt::format("cannot list the folder: {}", error.message())});
    }
}

void listTree(const fs::path &folder, Inputs &inputs)
{
    Inputs found;
    listFolder(folder, {}, found);
    if (found.documents.empty()) {
        found.documents.push_back({textOf(folder), {}, 0, "there is no .mif document in the folder"});
    }
    std::sort(found.documents.begin(), found.documents.end(),
              [](const Input &a, const Input &b) { return a.path < b.path; });
    std::sort(found.notes.begin(), found.notes.end());
    for (Input &input : found.documents) {
        input.isNamed = false;
        inputs.documents.push_back(std::move(input));
    }
    std::move(found.notes.begin(), found.notes.end(), std::back_inserter(inputs.notes));
}

void addInputs(const std::string &name, bool recursive, Inputs &inputs)
{
    throwIfInterrupted();
    const fs::path path = pathOf(name);
    std::error_code ignored;
    if (name == "-") {
        inputs.documents.push_back({name, "standard-input", 0, ""});
    } else if (!fs::is_directory(path, ignored)) {
        inputs.documents.push_back(inputAt(path, {}));
    } else if (recursive) {
        listTree(path, inputs);
    } else {
        inputs.documents.push_back({name, {}, 0, "is a directory; with -r the documents in it are taken"});
    }
}

std::string readWhole(const std::string &path)
{
    mifhost::FileStream file(path, {mifhost::Stream::largestDocument, waitForInput});
    std::string text(static_cast<std::size_t>(file.size()), '\0');
    std::size_t done = 0;
    while (done < text.size()) {
        done += file.read({reinterpret_cast<std::uint8_t *>(text.data()) + done, text.size() - done});
    }
    return text;
}

// The names in a list, without empty ones. Lines may end as on Windows.
std::vector<std::string> readList(const std::string &path, bool isNulSeparated)
{
    const std::string text = readWhole(path);
    const char separator = isNulSeparated ? '\0' : '\n';
    std::vector<std::string> names;
    for (std::size_t start = 0, end = 0; start < text.size(); start = end + 1) {
        end = std::min(text.find(separator, start), text.size());
        std::string name = text.substr(start, end - start);
        if (const std::size_t nul = name.find('\0'); nul != std::string::npos) {
            throw mifhost::IoError(path == "-" ? "standard input" : path, start + nul,
                                   "a NUL byte in a name; for names that end with NUL give -0");
        }
        if (!isNulSeparated && name.ends_with('\r')) {
            name.pop_back();
        }
        if (!name.empty()) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

} // namespace

Inputs findInputs(const Options &options)
{
    Inputs inputs;
    for (const std::string &argument : options.inputs) {
        addInputs(argument, options.recursive, inputs);
    }
    if (options.list.empty()) {
        return inputs;
    }
    const std::size_t arguments = inputs.documents.size();
    for (const std::string &name : readList(options.list, options.isListNulSeparated)) {
        addInputs(name, options.recursive, inputs);
    }
    for (std::size_t i = arguments; i < inputs.documents.size(); ++i) {
        inputs.documents[i].isNamed = false;
    }
    return inputs;
}

} // namespace mifread
