#include "page_pictures.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include "file_type.h"
#include "mifconvert/base64.h"
#include "mifconvert/html_object.h"
#include "mifhost/error.h"
#include "mifhost/stream.h"
#include "paths.h"

namespace mifread
{

namespace
{

namespace fs = std::filesystem;

constexpr std::uint64_t largestPicture = std::uint64_t{32} * 1024 * 1024;

bool isBelow(const fs::path &file, const fs::path &folder)
{
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}

} // namespace

// A regular file; beside the document, or in a folder beside it, links and dots resolved, unless all are wanted. Empty
// when there is none.
fs::path PagePictures::find(std::string_view path) const
{
    const std::string &document = conversion_.document().name();
    const fs::path named = pathOf(path);
    if (which_ == EmbedPictures::None || document == "standard input" ||
        (which_ == EmbedPictures::Beside && named.has_root_path())) {
        return {};
    }
    std::error_code error;
    const fs::path parent = pathOf(document).parent_path();
    const fs::path folder = fs::canonical(parent.empty() ? "." : parent, error);
    const fs::path file = error ? fs::path() : fs::canonical(folder / named, error);
    const bool isAllowed = !error && (which_ == EmbedPictures::All || isBelow(file, folder));
    return isAllowed && fs::is_regular_file(file, error) ? file : fs::path();
}

std::string PagePictures::sourceOf(std::string_view path)
{
    const fs::path file = find(path);
    if (file.empty()) {
        return "";
    }
    try {
        mifhost::FileStream stream(textOf(file), {.sizeLimit = largestPicture});
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(stream.size()));
        std::size_t size = 0;
        while (size < bytes.size()) {
            size += stream.read(std::span(bytes).subspan(size));
        }
        const std::string_view type = mifconvert::pagePictureType(identifyFile(bytes).mimeType);
        if (type.empty()) {
            return "";
        }
        std::string source = fmt::format("data:{};base64,", type);
        mifconvert::Base64Encoder encoder;
        encoder.append(bytes, source);
        encoder.finish(source);
        return source;
    } catch (const mifhost::Error &error) {
        conversion_.addLoss("pictures that cannot be taken in",
                            fmt::format("{}: {}", conversion_.document().name(), error.what()));
        return "";
    }
}

} // namespace mifread
