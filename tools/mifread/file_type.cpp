#include "file_type.h"

#include <algorithm>
#include <array>
#include <utility>

#include "mime_type.h"

namespace mifread
{

namespace
{

struct Extension {
    std::string_view mimeType;
    std::string_view extension;
};

constexpr std::string_view unknownExtension = "bin";

// The types of what documents embed, where the system knows no extension or is not to choose among several.
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

std::string extensionOf(std::string_view mimeType, std::span<const std::uint8_t> beginning)
{
    const auto *found = std::find_if(extensions.begin(), extensions.end(),
                                     [mimeType](const Extension &row) { return row.mimeType == mimeType; });
    if (found != extensions.end()) {
        return std::string(found->extension);
    }
    std::string extension = detectExtension(beginning);
    return extension.empty() ? std::string(unknownExtension) : extension;
}

} // namespace

FileType identifyFile(std::span<const std::uint8_t> beginning)
{
    std::string mimeType = detectMimeType(beginning);
    std::string extension = extensionOf(mimeType, beginning);
    return {std::move(mimeType), std::move(extension)};
}

} // namespace mifread
