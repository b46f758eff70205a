#include "file_type.h"

#include <algorithm>
#include <array>
#include <optional>

#include <magic.h>

#include "mifhost/error.h"

namespace mifread
{

namespace
{

struct Extension {
    std::string_view mimeType;
    std::string_view extension;
};

constexpr std::string_view unknownType = "application/octet-stream";
constexpr std::string_view unknownExtension = "bin";

// The types of what documents embed. The library's own list of extensions lacks some of them.
constexpr std::array extensions = {
    Extension{"application/pdf", "pdf"},
    Extension{"application/postscript", "eps"}, // whole pages of PostScript are not embedded
    Extension{"application/vnd.mif", "mif"},
    Extension{"application/x-ole-storage", "ole"},
    Extension{"application/x-shockwave-flash", "swf"},
    Extension{"application/zip", "zip"},
    Extension{"audio/mpeg", "mp3"},
    Extension{"audio/x-wav", "wav"},
    Extension{"image/bmp", "bmp"},
    Extension{"image/cgm", "cgm"},
    Extension{"image/emf", "emf"},
    Extension{"image/gif", "gif"},
    Extension{"image/jp2", "jp2"},
    Extension{"image/jpeg", "jpg"},
    Extension{"image/png", "png"},
    Extension{"image/svg+xml", "svg"},
    Extension{"image/tiff", "tif"},
    Extension{"image/vnd.adobe.photoshop", "psd"},
    Extension{"image/vnd.dwg", "dwg"},
    Extension{"image/webp", "webp"},
    Extension{"image/wmf", "wmf"},
    Extension{"image/x-eps", "eps"},
    Extension{"image/x-ms-bmp", "bmp"},
    Extension{"image/x-pcx", "pcx"},
    Extension{"image/x-xwindowdump", "xwd"},
    Extension{"text/csv", "csv"},
    Extension{"text/html", "html"},
    Extension{"text/plain", "txt"},
    Extension{"text/rtf", "rtf"},
    Extension{"text/xml", "xml"},
    Extension{"video/mp4", "mp4"},
    Extension{"video/quicktime", "mov"},
    Extension{"video/x-msvideo", "avi"},
};

std::string_view extensionOf(std::string_view mimeType)
{
    const auto *found = std::find_if(extensions.begin(), extensions.end(),
                                     [mimeType](const Extension &row) { return row.mimeType == mimeType; });
    return found != extensions.end() ? found->extension : unknownExtension;
}

} // namespace

FileTypes::FileTypes() : magic_(magic_open(MAGIC_MIME_TYPE))
{
    if (magic_ == nullptr || magic_load(magic_.get(), nullptr) != 0) {
        const char *reason = magic_ != nullptr ? magic_error(magic_.get()) : nullptr;
        throw mifhost::IoError("the database of file types", std::nullopt,
                               reason != nullptr ? reason : "cannot be opened");
    }
}

const FileTypes &FileTypes::ofThread()
{
    thread_local const FileTypes types;
    return types;
}

FileType FileTypes::identify(std::span<const std::uint8_t> beginning) const
{
    const char *found = magic_buffer(magic_.get(), beginning.data(), beginning.size());
    const std::string_view mimeType = found != nullptr ? found : unknownType;
    return {std::string(mimeType), extensionOf(mimeType)};
}

void FileTypes::Close::operator()(magic_set *magic) const noexcept
{
    magic_close(magic);
}

} // namespace mifread
