// Fonts of a page: what stands in for the document's fonts, and how wide their text is about.
#ifndef MIFCONVERT_HTML_FONTS_H
#define MIFCONVERT_HTML_FONTS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "mifhost/fonts.h"

namespace mifconvert
{

enum class FontShape : std::uint8_t { Serif, Sans, Mono };

// The class of the page's own font, which text without a font has.
constexpr std::string_view pageFontClass = "times";

// How a page asks for a font family: by a class of its style sheet or, where there is none, by a list of families.
struct FontStyle {
    std::string_view className;
    std::string families;
    FontShape shape = FontShape::Serif;
};

// The size of text for which the document states none, and the most that a page states, in twips.
constexpr std::uint32_t twipsToThePoint = 20;
constexpr std::uint32_t defaultFontSize = 12 * twipsToThePoint;
constexpr std::uint32_t largestFontSize = 400 * twipsToThePoint;

// The styles of a document's fonts.
class FontStyles
{
public:
    // fonts  the document's fonts, which must live as long as the styles
    explicit FontStyles(const mifhost::FontRegistry &fonts) : fonts_(fonts) {}

    // Returns the style of the font that a Font token names; the page's own font for an unknown number. Valid until the
    // next call.
    const FontStyle &find(std::uint32_t number);

private:
    void styleNewFonts();

    const mifhost::FontRegistry &fonts_;
    std::vector<FontStyle> styles_; // by font number
    FontStyle pageFont_{pageFontClass, ""};
};

// Returns the size of text in twips that a page states for a document's.
std::uint32_t pageFontSize(std::uint32_t size);

// Appends the rules for the page's own font and for the classes of fonts.
void appendFontRules(std::string &out);

// Estimates the width of text in twips.
//
// text  in UTF-8
// size   in twips, as pageFontSize() returns it
std::int64_t estimateWidth(std::string_view text, FontShape shape, std::uint32_t size);

} // namespace mifconvert

#endif
