// Which fonts the output has told the names of.
#ifndef MIFCONVERT_FONT_INTRODUCTIONS_H
#define MIFCONVERT_FONT_INTRODUCTIONS_H

#include <cstdint>
#include <vector>

#include "mifhost/fonts.h"

namespace mifconvert
{

class FontIntroductions
{
public:
    // fonts  the document's fonts, which must live as long as this
    explicit FontIntroductions(const mifhost::FontRegistry &fonts) : fonts_(fonts) {}

    // The font, when this is the first time that it is asked for; null when it is not, or there is no such font.
    const mifhost::FontFace *firstUse(std::uint32_t number)
    {
        const mifhost::FontFace *face = fonts_.find(number);
        if (face == nullptr) {
            return nullptr;
        }
        isIntroduced_.resize(fonts_.size());
        if (isIntroduced_[number]) {
            return nullptr;
        }
        isIntroduced_[number] = true;
        return face;
    }

private:
    const mifhost::FontRegistry &fonts_;
    std::vector<bool> isIntroduced_; // by font number
};

} // namespace mifconvert

#endif
