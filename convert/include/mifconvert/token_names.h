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
constexpr std::array<std::string_view, 3> tabKindNames = {"left", "right", "center"};
constexpr std::array<std::string_view, 3> spacingNames = {"single", "one-and-half", "double"};
constexpr std::array<std::string_view, 8> modeNames = {"bold",        "italic",    "underline",  "strike",
                                                       "superscript", "subscript", "small-caps", "upper-case"};
constexpr std::array<std::string_view, 16> tokenNames = {
    "text",     "para-format", "tab-stops", "tab",        "attribute",    "table-row",  "table-end", "cell-end",
    "para-end", "line-break",  "font",      "page-setup", "line-spacing", "text-color", "frame",     "charset"};
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
