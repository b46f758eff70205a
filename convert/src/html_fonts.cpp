#include "mifconvert/html_fonts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <limits>

#include <fmt/format.h>

#include "mifconvert/html_text.h"
#include "mifreader/host.h"

namespace mifconvert
{

namespace
{

// The families that documents name most, by the class for them, with what is as wide and found on most systems.
struct FontClass {
    std::string_view name;
    std::string_view families;
    FontShape shape;
};

constexpr std::array fontClasses = {
    FontClass{pageFontClass, "Times,'Times New Roman','Liberation Serif','Nimbus Roman',serif", FontShape::Serif},
    FontClass{"helvetica", "Helvetica,Arial,'Liberation Sans','Nimbus Sans',sans-serif", FontShape::Sans},
    FontClass{"courier", "'Courier New',Courier,'Liberation Mono','Nimbus Mono PS',monospace", FontShape::Mono},
    FontClass{"palatino", "Palatino,'Palatino Linotype','Book Antiqua','TeX Gyre Pagella',P052,serif",
              FontShape::Serif},
    FontClass{"schoolbook", "'New Century Schoolbook','Century Schoolbook','TeX Gyre Schola',C059,serif",
              FontShape::Serif},
    FontClass{"bookman", "'ITC Bookman','Bookman Old Style','TeX Gyre Bonum','URW Bookman',serif", FontShape::Serif},
    FontClass{"gothic", "'ITC Avant Garde Gothic','Century Gothic','TeX Gyre Adventor','URW Gothic',sans-serif",
              FontShape::Sans},
};

// The names, in lower case, under which documents know the families of the classes.
struct KnownFont {
    std::string_view name;
    std::string_view className;
};

constexpr std::array knownFonts = {
    KnownFont{"", pageFontClass},
    KnownFont{"times", pageFontClass},
    KnownFont{"times roman", pageFontClass},
    KnownFont{"times new roman", pageFontClass},
    KnownFont{"times-roman", pageFontClass},
    KnownFont{"tms rmn", pageFontClass},
    KnownFont{"nimbus roman", pageFontClass},
    KnownFont{"helvetica", "helvetica"},
    KnownFont{"helv", "helvetica"},
    KnownFont{"arial", "helvetica"},
    KnownFont{"nimbus sans", "helvetica"},
    KnownFont{"courier", "courier"},
    KnownFont{"courier new", "courier"},
    KnownFont{"nimbus mono", "courier"},
    KnownFont{"palatino", "palatino"},
    KnownFont{"palatino linotype", "palatino"},
    KnownFont{"book antiqua", "palatino"},
    KnownFont{"new century schoolbook", "schoolbook"},
    KnownFont{"newcenturyschlbk", "schoolbook"},
    KnownFont{"century schoolbook", "schoolbook"},
    KnownFont{"bookman", "bookman"},
    KnownFont{"itc bookman", "bookman"},
    KnownFont{"bookman old style", "bookman"},
    KnownFont{"avantgarde", "gothic"},
    KnownFont{"avant garde", "gothic"},
    KnownFont{"itc avant garde gothic", "gothic"},
    KnownFont{"century gothic", "gothic"},
};

// Widths of the characters from the blank to the tilde in thousandths of the font size, of the usual serif and sans
// serif text fonts, and of all others.
using Widths = std::array<std::uint16_t, 95>;

constexpr Widths serifWidths = {
    250, 333, 408, 500, 500, 833, 778, 180, 333, 333, 500, 564, 250, 333, 250, 278,      // blank to /
    500, 500, 500, 500, 500, 500, 500, 500, 500, 500, 278, 278, 564, 564, 564, 444, 921, // 0 to @
    722, 667, 667, 722, 611, 556, 722, 722, 333, 389, 722, 611, 889,                     // A to M
    722, 722, 556, 722, 667, 556, 611, 722, 722, 944, 722, 722, 611,                     // N to Z
    333, 278, 333, 469, 500, 333,                                                        // [ to `
    444, 500, 444, 500, 444, 333, 500, 500, 278, 278, 500, 278, 778,                     // a to m
    500, 500, 500, 500, 333, 389, 278, 500, 500, 722, 500, 500, 444,                     // n to z
    480, 200, 480, 541,                                                                  // { to ~
};
constexpr Widths sansWidths = {
    278, 278, 355, 556, 556, 889, 667, 191, 333, 333, 389, 584, 278, 333, 278, 278,       // blank to /
    556, 556, 556, 556, 556, 556, 556, 556, 556, 556, 278, 278, 584, 584, 584, 556, 1015, // 0 to @
    667, 667, 722, 722, 667, 611, 778, 722, 278, 500, 667, 556, 833,                      // A to M
    722, 778, 667, 778, 722, 667, 611, 722, 667, 944, 667, 667, 611,                      // N to Z
    278, 278, 278, 469, 556, 333,                                                         // [ to `
    556, 556, 500, 556, 556, 278, 556, 556, 222, 222, 500, 222, 833,                      // a to m
    556, 556, 556, 556, 333, 500, 278, 556, 500, 722, 500, 500, 500,                      // n to z
    334, 260, 334, 584,                                                                   // { to ~
};
constexpr std::uint16_t monoWidth = 600;
constexpr std::uint16_t otherWidth = 500;

std::string lowerCase(std::string_view name)
{
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return lower;
}

FontShape shapeOfClass(std::string_view className)
{
    return std::find_if(fontClasses.begin(), fontClasses.end(),
                        [className](const FontClass &row) { return row.name == className; })
        ->shape;
}

// What a browser takes when it has no font of the name.
std::string_view genericFamily(std::uint8_t familyClass)
{
    switch (familyClass) {
    case MIF_FONT_CLASS_SWISS:
        return "sans-serif";
    case MIF_FONT_CLASS_MODERN:
        return "monospace";
    case MIF_FONT_CLASS_SCRIPT:
        return "cursive";
    case MIF_FONT_CLASS_DECORATIVE:
        return "fantasy";
    default:
        return "serif";
    }
}

FontShape shapeOf(std::uint8_t familyClass)
{
    if (familyClass == MIF_FONT_CLASS_MODERN) {
        return FontShape::Mono;
    }
    return familyClass == MIF_FONT_CLASS_SWISS ? FontShape::Sans : FontShape::Serif;
}

FontStyle styleOf(const mifhost::FontFace &face)
{
    const std::string name = lowerCase(face.name);
    const auto *known =
        std::find_if(knownFonts.begin(), knownFonts.end(), [&name](const KnownFont &row) { return row.name == name; });
    if (known != knownFonts.end()) {
        return {known->className, "", shapeOfClass(known->className)};
    }
    FontStyle style{"", "", shapeOf(face.familyClass)};
    appendCssString(face.name, style.families);
    style.families.append(",").append(genericFamily(face.familyClass));
    return style;
}

} // namespace

const FontStyle &FontStyles::find(std::uint32_t number)
{
    if (number >= fonts_.size()) {
        return pageFont_;
    }
    if (number >= styles_.size()) {
        styleNewFonts();
    }
    return styles_[number];
}

void FontStyles::styleNewFonts()
{
    while (styles_.size() < fonts_.size()) {
        styles_.push_back(styleOf(*fonts_.find(static_cast<std::uint32_t>(styles_.size()))));
    }
}

std::uint32_t pageFontSize(std::uint32_t size)
{
    const bool isStated = size != 0 && size <= std::numeric_limits<std::int32_t>::max(); // and not negative
    return isStated ? std::min(size, largestFontSize) : defaultFontSize;
}

void appendFontRules(std::string &out)
{
    fmt::format_to(std::back_inserter(out), "body{{font:{}pt/1.2 {}}}\n", defaultFontSize / twipsToThePoint,
                   fontClasses[0].families);
    for (const FontClass &row : fontClasses) {
        fmt::format_to(std::back_inserter(out), ".{}{{font-family:{}}}\n", row.name, row.families);
    }
}

std::int64_t estimateWidth(std::string_view text, FontShape shape, std::uint32_t size)
{
    const Widths &widths = shape == FontShape::Serif ? serifWidths : sansWidths;
    std::int64_t thousandths = 0;
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        if ((code & 0xC0U) == 0x80) { // the rest of a character
            continue;
        }
        const auto index = static_cast<std::size_t>(code) - ' ';
        const std::uint16_t width = index < widths.size() ? widths[index] : otherWidth;
        thousandths += shape == FontShape::Mono ? monoWidth : width;
    }
    return thousandths * size / 1000;
}

} // namespace mifconvert
