#include "mifconvert/html_object.h"

#include <algorithm>
#include <array>
#include <iterator>

#include <fmt/format.h>

#include "mifconvert/html_style.h"
#include "mifconvert/html_text.h"

namespace mifconvert
{

namespace
{

// What browsers show, by the type as it is recognised and as a page names it.
struct PictureType {
    std::string_view found;
    std::string_view named;
};

constexpr std::array pictureTypes = {
    PictureType{"image/png", "image/png"},         PictureType{"image/jpeg", "image/jpeg"},
    PictureType{"image/gif", "image/gif"},         PictureType{"image/bmp", "image/bmp"},
    PictureType{"image/x-ms-bmp", "image/bmp"},    PictureType{"image/webp", "image/webp"},
    PictureType{"image/svg+xml", "image/svg+xml"},
};

// The identifier becomes part of an attribute and of a file's name.
std::string safeName(std::string_view id)
{
    std::string name(id);
    std::replace_if(
        name.begin(), name.end(), [](char byte) { return byte != '-' && (byte < '0' || byte > '9'); }, '_');
    return name;
}

} // namespace

std::string_view pagePictureType(std::string_view mimeType)
{
    const auto *found = std::find_if(pictureTypes.begin(), pictureTypes.end(),
                                     [mimeType](const PictureType &row) { return row.found == mimeType; });
    return found != pictureTypes.end() ? found->named : std::string_view{};
}

// A picture keeps its shape where the page is narrower than it; a measure that the document does not state is the
// picture's own.
void appendFrameSize(const mifhost::Frame &frame, std::string &out)
{
    const std::int32_t width = clampMeasure(frame.width, 0, largestMeasure);
    const std::int32_t height = clampMeasure(frame.height, 0, largestMeasure);
    if (width == 0 && height == 0) {
        return;
    }
    out += " style=\"";
    if (width > 0) {
        out += "width:";
        appendPoints(width, out);
    }
    if (width > 0 && height > 0) {
        fmt::format_to(std::back_inserter(out), ";aspect-ratio:{}/{}", width, height);
    } else if (height > 0) {
        out += "height:";
        appendPoints(height, out);
    }
    out += '"';
}

HtmlObject::HtmlObject(const mifhost::Frame &frame, std::string_view mimeType, std::string_view extension,
                       std::string &out)
    : out_(out)
{
    const std::string_view picture = pagePictureType(mimeType);
    const std::string name = safeName(frame.id);
    const bool alone = standsAlone(frame);
    if (!picture.empty()) {
        fmt::format_to(std::back_inserter(out), "<img{} alt=\"{}.{}\"", alone ? " class=\"alone\"" : "", name,
                       extension);
        appendFrameSize(frame, out);
        fmt::format_to(std::back_inserter(out), " src=\"data:{};base64,", picture);
        end_ = "\">";
        return;
    }
    fmt::format_to(std::back_inserter(out), "<a class=\"object{}\" download=\"{}.{}\"", alone ? " alone" : "", name,
                   extension);
    appendFrameSize(frame, out);
    out += " href=\"data:application/octet-stream;base64,";
    end_ = "\">";
    appendHtmlName(mimeType, end_);
    end_ += "</a>";
}

void HtmlObject::finish()
{
    encoder_.finish(out_);
    out_ += end_;
}

} // namespace mifconvert
