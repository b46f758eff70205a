// The fonts that a document announced.
#ifndef MIFHOST_FONTS_H
#define MIFHOST_FONTS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "mifreader/host.h"

namespace mifhost
{

// A font family of the document.
struct FontFace {
    std::string name;         // at most 31 bytes
    std::uint8_t familyClass; // one of MIF_FONT_CLASS_..., as first announced
};

// Numbers the font families of one document in the order of their announcement, each name once.
class FontRegistry
{
public:
    // So many families no honest document has.
    static constexpr std::size_t mostFamilies = 10000;

    // Returns the number of the family in the record, counted from 1, which is the answer to HOST_NOTIFY_FONT. It is 0
    // for a new family when there are mostFamilies.
    std::uint32_t add(const MifFontRecord &record);

    // Returns the family by the number that a Font token carries, counted from 0, or null when there is none.
    const FontFace *find(std::uint32_t tokenNumber) const noexcept;

    std::size_t size() const noexcept
    {
        return faces_.size();
    }

private:
    std::vector<FontFace> faces_;
    std::map<std::string, std::uint32_t, std::less<>> numbers_;
};

// Returns a class's name in lower case, such as "roman"; "unknown" for a value that is none of MIF_FONT_CLASS_....
std::string_view fontClassName(std::uint8_t familyClass) noexcept;

} // namespace mifhost

#endif
