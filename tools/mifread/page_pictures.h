// Pictures in files that a document names, taken into its page.
#ifndef MIFREAD_PAGE_PICTURES_H
#define MIFREAD_PAGE_PICTURES_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "conversion.h"
#include "options.h"

namespace mifread
{

// Finds and reads the pictures of one document.
class PagePictures
{
public:
    PagePictures(Conversion &conversion, EmbedPictures which) : conversion_(conversion), which_(which) {}

    // The picture as a data URL. Empty when it is not to be taken in, is not there, or is none that browsers show; one
    // that cannot be read, or is too large, is a loss.
    std::string sourceOf(std::string_view path);

private:
    std::filesystem::path find(std::string_view path) const;

    Conversion &conversion_;
    EmbedPictures which_;
};

} // namespace mifread

#endif
