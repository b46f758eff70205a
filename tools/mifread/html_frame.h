// Embedded objects in a page.
#ifndef MIFREAD_HTML_FRAME_H
#define MIFREAD_HTML_FRAME_H

#include <functional>
#include <map>
#include <string>

#include "conversion.h"
#include "file_type.h"
#include "mifhost/token.h"

namespace mifread
{

// Shows the frames of one document.
class HtmlFrames
{
public:
    // conversion  of the document; must live as long as this
    explicit HtmlFrames(Conversion &conversion) : conversion_(conversion) {}

    // Appends what shows a frame in a line of text: the object as a picture where browsers know its type, otherwise a
    // box that names the type and saves the object. A picture that the browser fails to show is named. The data are in
    // the page. An object that cannot be read is a loss; the page has its beginning once.
    void write(const mifhost::Frame &frame);

private:
    // What the first frame of an object showed of it, which is costly to find out.
    struct Object {
        FileType type;
        bool isWhole = false; // all of its data can be read
    };

    Conversion &conversion_;
    std::map<std::string, Object, std::less<>> objects_; // by identifier
};

} // namespace mifread

#endif
