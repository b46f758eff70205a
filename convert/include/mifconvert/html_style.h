// Formats of the document as the tags of a page.
#ifndef MIFCONVERT_HTML_STYLE_H
#define MIFCONVERT_HTML_STYLE_H

#include <cstdint>
#include <string>
#include <string_view>

#include "mifconvert/html_fonts.h"
#include "mifconvert/html_page.h"
#include "mifhost/token.h"

namespace mifconvert
{

// Where a paragraph's lines begin and end, in twips from the left edge of the column.
struct LineEdges {
    std::int32_t left = 0;
    std::int32_t first = 0; // where the first line begins
    std::int32_t right = 0;
};

// Returns the edges that a format asks for, as far as they leave room for text.
LineEdges edgesIn(const Column &column, const mifhost::ParaFormat &format);

struct CharacterFormat {
    std::uint32_t font = 0;  // number of the document's font
    std::uint32_t size = 0;  // twips; 0 when the document states none
    std::uint32_t color = 0; // 0xRRGGBB
    std::uint32_t modes = 0; // a bit for each Mode, the first one lowest, and then for each ExtendedMode

    bool operator==(const CharacterFormat &) const = default;
};

constexpr std::uint32_t modeBit(mifhost::Mode mode)
{
    return 1U << static_cast<unsigned>(mode);
}

constexpr std::uint32_t modeBit(mifhost::ExtendedMode mode)
{
    constexpr unsigned plainModes = 8;
    return 1U << (plainModes + static_cast<unsigned>(mode));
}

struct ParagraphFormat {
    LineEdges edges;
    mifhost::Alignment alignment = mifhost::Alignment::Left;
    mifhost::Spacing spacing = mifhost::Spacing::Single;
    CharacterFormat characters;  // but for the modes, which are its runs' own
    std::int32_t spaceAbove = 0; // twips
    std::int32_t spaceBelow = 0;
    bool beginsPage = false;
    bool keepsWithNext = false;
    std::string_view language{}; // where it is not that of the page; letters, digits and hyphens
};

// Whether a frame is too high for a line of text, so that it stands between the lines.
constexpr bool standsAlone(const mifhost::Frame &frame)
{
    constexpr std::uint32_t highestInLine = 720; // twips
    return frame.height > highestInLine;
}

// Appends the start tag of a paragraph.
void appendParagraphTag(const ParagraphFormat &format, const Column &column, FontStyles &fonts, std::string &out);

// Appends the start tag of a run in a paragraph whose characters have another format: a link's when link, which is safe
// to stand in an attribute, is not empty.
void appendRunTag(const CharacterFormat &run, const CharacterFormat &paragraph, FontStyles &fonts, std::string &out,
                  std::string_view link = {});

} // namespace mifconvert

#endif
