// Embedded objects in a page.
#ifndef MIFREAD_HTML_FRAME_H
#define MIFREAD_HTML_FRAME_H

#include "conversion.h"
#include "mifhost/token.h"

namespace mifread
{

// Appends what shows a frame in a line of text: the object as a picture where browsers know its type, otherwise a box
// that names the type and saves the object. A picture that the browser fails to show is named. The data are in the
// page. An object that cannot be read is a loss.
void writeHtmlFrame(Conversion &conversion, const mifhost::Frame &frame);

} // namespace mifread

#endif
