#include "html_frame.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <span>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "base64.h"
#include "file_type.h"
#include "html_style.h"
#include "html_text.h"
#include "object_data.h"

namespace mifread
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

// Returns the type's name in a page, or nothing when browsers show no such pictures.
std::string_view pictureTypeOf(std::string_view mimeType)
{
    const auto *found = std::find_if(pictureTypes.begin(), pictureTypes.end(),
                                     [mimeType](const PictureType &row) { return row.found == mimeType; });
    return found != pictureTypes.end() ? found->named : std::string_view{};
}

// The identifier becomes part of an attribute and of a file's name.
std::string safeName(std::string_view id)
{
    std::string name(id);
    std::replace_if(
        name.begin(), name.end(), [](char byte) { return byte != '-' && (byte < '0' || byte > '9'); }, '_');
    return name;
}

// A picture keeps its shape where the page is narrower than it; a measure that the document does not state is the
// picture's own.
void appendSize(const mifhost::Frame &frame, std::string &out)
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

// Appends a frame's element: its beginning, its data and its end.
class FrameWriter
{
public:
    FrameWriter(const mifhost::Frame &frame, std::string &out) : frame_(frame), name_(safeName(frame.id)), out_(out) {}

    void begin(const FileType &type);
    void add(std::span<const std::uint8_t> block);
    void finish();

private:
    const mifhost::Frame &frame_;
    std::string name_;
    std::string &out_;
    std::string end_; // of the element, once it is begun
    Base64Encoder encoder_;
};

void FrameWriter::add(std::span<const std::uint8_t> block)
{
    encoder_.append(block, out_);
}

void FrameWriter::finish()
{
    encoder_.finish(out_);
    out_ += end_;
}

void FrameWriter::begin(const FileType &type)
{
    const std::string_view picture = pictureTypeOf(type.mimeType);
    const bool alone = standsAlone(frame_);
    if (!picture.empty()) {
        fmt::format_to(std::back_inserter(out_), "<img{} alt=\"{}.{}\"", alone ? " class=\"alone\"" : "", name_,
                       type.extension);
        appendSize(frame_, out_);
        fmt::format_to(std::back_inserter(out_), " src=\"data:{};base64,", picture);
        end_ = "\">";
        return;
    }
    fmt::format_to(std::back_inserter(out_), "<a class=\"object{}\" download=\"{}.{}\"", alone ? " alone" : "", name_,
                   type.extension);
    appendSize(frame_, out_);
    out_ += " href=\"data:application/octet-stream;base64,";
    end_ = "\">";
    appendHtmlName(type.mimeType, end_);
    end_ += "</a>";
}

} // namespace

void HtmlFrames::write(const mifhost::Frame &frame)
{
    FrameWriter writer(frame, conversion_.text());
    auto known = objects_.find(frame.id);
    if (known != objects_.end()) {
        writer.begin(known->second.type);
    }
    if (known == objects_.end() || known->second.isWhole) {
        const std::string id(frame.id);
        const bool isWhole = readObject(conversion_, id, [&](std::span<const std::uint8_t> block) {
            if (known == objects_.end()) {
                known = objects_.emplace(id, Object{identifyFile(block)}).first;
                writer.begin(known->second.type);
            }
            writer.add(block);
        });
        known->second.isWhole = isWhole;
    }
    writer.finish();
}

} // namespace mifread
