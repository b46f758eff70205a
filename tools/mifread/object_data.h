// Walking through the data of an embedded object.
#ifndef MIFREAD_OBJECT_DATA_H
#define MIFREAD_OBJECT_DATA_H

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "conversion.h"

namespace mifread
{

// The kind of loss that an object is whose data cannot be read.
constexpr std::string_view unreadableObjects = "objects that cannot be read";

// Hands an object's data to take, block by block: at least one, which may be empty. The first one is large enough to
// tell the type of the data. Returns whether all of the data could be read; that the rest could not is a loss of the
// conversion.
// Throws IoError when the document has no such object or cannot be read, and as Conversion::keepGoing() does.
bool readObject(Conversion &conversion, const std::string &id,
                const std::function<void(std::span<const std::uint8_t> block)> &take);

} // namespace mifread

#endif
