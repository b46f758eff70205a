// Embedded objects in a page.
#ifndef MIFCONVERT_HTML_OBJECT_H
#define MIFCONVERT_HTML_OBJECT_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "mifconvert/base64.h"
#include "mifhost/token.h"

namespace mifconvert
{

// Appends the size of a frame as the style of an element; nothing for a frame without one.
void appendFrameSize(const mifhost::Frame &frame, std::string &out);

// The name that a page has for a type of pictures that browsers show; empty for other types.
std::string_view pagePictureType(std::string_view mimeType);

// Appends what shows an object in a line of text, while its data come: a picture where browsers know its type,
// otherwise a box that names the type and saves the object. A picture that the browser fails to show is named. The data
// are in the page.
class HtmlObject
{
public:
    // frame      the object's frame
    // mimeType   of the data, such as "image/png"
    // extension  of a file of that type, without a dot
    // out        the element is appended here; it must live as long as this
    HtmlObject(const mifhost::Frame &frame, std::string_view mimeType, std::string_view extension, std::string &out);

    // Appends the next data. Nothing else may be appended in between.
    void add(std::span<const std::uint8_t> data)
    {
        encoder_.append(data, out_);
    }

    // Ends the element.
    void finish();

private:
    std::string &out_;
    std::string end_; // of the element
    Base64Encoder encoder_;
};

} // namespace mifconvert

#endif
