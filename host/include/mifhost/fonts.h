// The fonts that a document announced. The reader tells the host of each font family by HOST_NOTIFY_FONT before it uses
// it, and the Font tokens name it by the number that the host answered.
#ifndef MIFHOST_FONTS_H
#define MIFHOST_FONTS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "mifhost/charset.h"
#include "mifreader/host.h"

namespace mifhost
{

// A font family of the document.
struct FontFace {
    // In UTF-8, where a Document has registered it; at most 31 bytes before the conversion, to which the reader cuts a
    // longer name. As the document writes it, so that any character but NUL may stand in it.
    std::string name;

    // One of MIF_FONT_CLASS_..., as first announced; a value that is none of them when a faulty plug-in says so.
    std::uint8_t familyClass;
};

// Numbers the font families of one document in the order of their announcement, each name once; names that differ in
// upper and lower case are different. A Document fills its own; a host that calls the reader by itself can use one,
// too.
class FontRegistry
{
public:
    // So many families no honest document has. The bound keeps one that announces a new name with every few bytes from
    // taking memory without end.
    static constexpr std::size_t mostFamilies = 10000;

    // Returns the number of the family in the record, counted from 1, which is the answer to HOST_NOTIFY_FONT; the same
    // for the same name, whatever its class. It is 0 for a new family when there are mostFamilies: the reader then
    // writes the number 0 into the Font tokens, and the family looks as the first one does. A name without a NUL fills
    // its whole field. Throws std::bad_alloc.
    //   charset  converts the name, which stays as it is without it
    std::uint32_t add(const MifFontRecord &record, Windows1252 *charset = nullptr);

    // Returns the family by the number that a Font token carries, counted from 0, or null when there is none: the token
    // stands before any announcement, or its number is beyond all. The next add() may move it, so that a pointer from a
    // Document's registry is valid until the document's next token is asked for.
    const FontFace *find(std::uint32_t tokenNumber) const noexcept;

    // The number of families so far, 0 to mostFamilies; find() has one for each number below it.
    std::size_t size() const noexcept
    {
        return faces_.size();
    }

private:
    // In the order of announcement: the family of number n, as add() counts, is at n - 1.
    std::vector<FontFace> faces_;
    // The families' numbers, counted from 1, by their names.
    std::map<std::string, std::uint32_t, std::less<>> numbers_;
};

// Returns a class's name in lower case, such as "roman"; "unknown" for a value that is none of MIF_FONT_CLASS_....
std::string_view fontClassName(std::uint8_t familyClass) noexcept;

} // namespace mifhost

#endif
