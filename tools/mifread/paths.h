// Paths as text. Text is UTF-8, or where the system takes names for bytes, these bytes; the conversions of the standard
// library's own depend on the system and its settings.
#ifndef MIFREAD_PATHS_H
#define MIFREAD_PATHS_H

#include <filesystem>
#include <string>
#include <string_view>

namespace mifread
{

inline std::filesystem::path pathOf(std::string_view text)
{
    return {std::u8string(text.begin(), text.end())};
}

inline std::string textOf(const std::filesystem::path &path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

} // namespace mifread

#endif
