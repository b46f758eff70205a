// The page as a whole: its geometry and its head.
#ifndef MIFCONVERT_HTML_PAGE_H
#define MIFCONVERT_HTML_PAGE_H

#include <cstdint>
#include <string>
#include <string_view>

#include "mifhost/token.h"

namespace mifconvert
{

// Measures that the style sheet has too, in twips.
constexpr std::int32_t cellPadding = 60;  // of a table's cell, on either side
constexpr std::int64_t leastShrunk = 480; // a narrow window shrinks neither text nor lengths up to this one

// The least width that margins and indents leave for text, in twips.
constexpr std::int32_t leastTextWidth = 1440;

// A page's size and margins in twips, such that there is room for text.
struct PageLayout {
    std::int32_t width = 12240;
    std::int32_t height = 15840;
    std::int32_t leftMargin = 1440;
    std::int32_t topMargin = 1440;
    std::int32_t rightMargin = 1440;
    std::int32_t bottomMargin = 1440;
};

// Returns what of a page setup can be shown.
PageLayout layoutOf(const mifhost::PageSetup &setup);

// Where lines of text may stand: between the edges of a text column or of a cell, and how far out of it. In twips.
struct Column {
    std::int32_t width = 0;
    std::int32_t leftRoom = 0;
    std::int32_t rightRoom = 0;

    bool operator==(const Column &) const = default;
};

// The text column of a page.
Column columnOf(const PageLayout &page);

// Appends the page from its beginning to the start tag of its body.
//
// title     in UTF-8
// language  of the document, as in BCP 47; empty for none
// author    in UTF-8; empty for none
void appendPageHead(std::string_view title, std::string_view language, std::string_view author, const PageLayout &page,
                    std::string &out);

// Whether a page can name that language: letters, digits and hyphens.
bool isLanguage(std::string_view language);

// Appends the page's end.
void appendPageEnd(std::string &out);

} // namespace mifconvert

#endif
