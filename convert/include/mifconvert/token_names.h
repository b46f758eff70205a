// What listings call the tokens and the values of their enumerations.
#ifndef MIFCONVERT_TOKEN_NAMES_H
#define MIFCONVERT_TOKEN_NAMES_H

#include <array>
#include <cstddef>
#include <string_view>
#include <type_traits>
#include <variant>

#include "mifhost/token.h"

namespace mifconvert
{

// In the order of the enumerations' values, and of the alternatives of mifhost::Token.
constexpr std::array<std::string_view, 4> alignmentNames = {"left", "right", "center", "left-right"};
constexpr std::array<std::string_view, 4> tabKindNames = {"left", "right", "center", "decimal"};
constexpr std::array<std::string_view, 3> spacingNames = {"single", "one-and-half", "double"};
constexpr std::array<std::string_view, 8> modeNames = {"bold",        "italic",    "underline",  "strike",
                                                       "superscript", "subscript", "small-caps", "upper-case"};
constexpr std::array<std::string_view, 5> placementNames = {"anywhere", "column", "page", "left-page", "right-page"};
constexpr std::array<std::string_view, 3> cellAlignmentNames = {"top", "middle", "bottom"};
constexpr std::array<std::string_view, 4> extendedModeNames = {"overline", "double-underline", "numeric-underline",
                                                               "lower-case"};
constexpr std::array<std::string_view, 3> titlePlaceNames = {"above", "below", "none"};
constexpr std::array<std::string_view, 8> tableEdgeNames = {"left",    "top",       "right",        "bottom",
                                                            "columns", "body-rows", "heading-rows", "separator"};
constexpr std::array<std::string_view, 3> rowKindNames = {"heading", "body", "footing"};
constexpr std::array<std::string_view, 6> framePlaceNames = {"inline", "below", "top", "bottom", "margin", "run-in"};
constexpr std::array<std::string_view, 5> anchorAlignmentNames = {"left", "center", "right", "inside", "outside"};
constexpr std::array<std::string_view, 7> documentFieldNames = {"version",  "title",    "author",  "subject",
                                                                "keywords", "language", "encoding"};
constexpr std::array<std::string_view, 9> lossKindNames = {"statement", "comment",  "end",       "nul",   "character",
                                                           "record",    "unplaced", "reference", "object"};
constexpr std::array<std::string_view, 40> tokenNames = {
    "text",         "para-format", "tab-stops",   "tab",        "attribute",   "table-row",
    "table-end",    "cell-end",    "para-end",    "line-break", "font",        "page-setup",
    "line-spacing", "text-color",  "frame",       "charset",    "paragraph",   "number",
    "mode",         "font-size",   "tab-leaders", "note-begin", "note-end",    "note-reference",
    "marker",       "xref-begin",  "xref-end",    "table-open", "title-begin", "title-end",
    "row",          "cell",        "table-close", "anchor",     "box-begin",   "box-end",
    "document",     "page-size",   "loss",        "loss-total"};
// The first of them are the plain stream's.
constexpr std::size_t plainTokens = 16;
static_assert(tokenNames.size() == std::variant_size_v<mifhost::Token>);

template <typename Names, typename Enum>
constexpr std::string_view nameOf(const Names &names, Enum value)
{
    return names[static_cast<std::size_t>(value)];
}

// A kind of token that tells nothing but that it is there.
template <typename Kind>
concept EmptyToken = std::is_empty_v<Kind>;

constexpr std::string_view tokenName(const mifhost::Token &token)
{
    return tokenNames[token.index()];
}

} // namespace mifconvert

#endif
