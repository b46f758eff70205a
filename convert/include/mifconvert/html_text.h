// Text of a document made safe for the places of a page where it stands.
#ifndef MIFCONVERT_HTML_TEXT_H
#define MIFCONVERT_HTML_TEXT_H

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace mifconvert
{

// The largest size that a page states, in twips: 22 inches. Documents can state anything.
constexpr std::int32_t largestMeasure = 22 * 1440;

// Returns the measure in the range nearest to the one given.
constexpr std::int32_t clampMeasure(std::int64_t twips, std::int32_t least, std::int32_t most)
{
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(twips, least, most));
}

// Appends text as the content of an element, never as markup. Control characters, NUL among them, become their visible
// pictures, U+2400 and on.
//
// bytes  in UTF-8
void appendHtmlText(std::string_view bytes, std::string &out);

// Appends a file's name as the content of an element. Names are UTF-8; bytes that are not become U+FFFD.
void appendHtmlName(std::string_view name, std::string &out);

// The same as the value of an attribute in double quotes.
void appendHtmlAttribute(std::string_view text, std::string &out);

// Appends text as a CSS string, in its quotes, that can stand in an attribute's value.
//
// bytes  in UTF-8
void appendCssString(std::string_view bytes, std::string &out);

// Appends a measure in twips as CSS points, such as "50.35pt".
void appendPoints(std::int64_t twips, std::string &out, std::string_view unit = "pt");

} // namespace mifconvert

#endif
