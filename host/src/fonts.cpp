#include "mifhost/fonts.h"

#include <algorithm>
#include <utility>

namespace mifhost
{

std::uint32_t FontRegistry::add(const MifFontRecord &record, Windows1252 *charset)
{
    const char *nameEnd = std::find(std::begin(record.faceName), std::end(record.faceName), '\0');
    const std::string_view name(record.faceName, static_cast<std::size_t>(nameEnd - record.faceName));
    const auto known = numbers_.find(name);
    if (known != numbers_.end()) {
        return known->second;
    }
    if (faces_.size() == mostFamilies) {
        return 0;
    }

    std::string shown;
    if (charset != nullptr) {
        charset->append(name, shown);
    } else {
        shown = name;
    }
    faces_.push_back({std::move(shown), record.familyClass});
    const auto number = static_cast<std::uint32_t>(faces_.size());
    numbers_.emplace(name, number);
    return number;
}

const FontFace *FontRegistry::find(std::uint32_t tokenNumber) const noexcept
{
    return tokenNumber < faces_.size() ? &faces_[tokenNumber] : nullptr;
}

std::string_view fontClassName(std::uint8_t familyClass) noexcept
{
    switch (familyClass) {
    case MIF_FONT_CLASS_ROMAN:
        return "roman";
    case MIF_FONT_CLASS_SWISS:
        return "swiss";
    case MIF_FONT_CLASS_MODERN:
        return "modern";
    case MIF_FONT_CLASS_SCRIPT:
        return "script";
    case MIF_FONT_CLASS_DECORATIVE:
        return "decorative";
    default:
        return "unknown";
    }
}

} // namespace mifhost
