// The token stream as text: one token a line, its name and then its fields, in ASCII.
#ifndef MIFCONVERT_TOKEN_LISTING_H
#define MIFCONVERT_TOKEN_LISTING_H

#include <string>

#include "mifconvert/font_introductions.h"
#include "mifhost/fonts.h"
#include "mifhost/token.h"

namespace mifconvert
{

// Lists the tokens of one document. A line that begins with '#' is no token; it tells a font's name before the font is
// first used.
class TokenListing
{
public:
    // fonts  the document's fonts, which must live as long as the listing
    explicit TokenListing(const mifhost::FontRegistry &fonts) : fonts_(fonts) {}

    // Appends the token's line to out.
    void append(const mifhost::Token &token, std::string &out);

private:
    FontIntroductions fonts_;
};

} // namespace mifconvert

#endif
