// Names and texts made safe to show: a document or a file's name may hold what a terminal takes for a command, or what
// makes a line read otherwise than it stands.
#ifndef MIFREAD_DISPLAY_H
#define MIFREAD_DISPLAY_H

#include <string>
#include <string_view>

namespace mifread
{

// The text in UTF-8 with escapes in place of control characters (C0, DEL, C1), of characters that set the direction of
// text, and of bytes that are no UTF-8: \n, \x1b, \u202e and the like. A backslash stays as it is.
std::string shown(std::string_view text);

// Appends what a terminal is to show of text that comes in lines: the same, but for tabs and line ends, and directions
// stay.
void appendShownLines(std::string_view text, std::string &out);

} // namespace mifread

#endif
