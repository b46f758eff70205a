// The types of files as the system knows them.
#ifndef MIFREAD_MIME_TYPE_H
#define MIFREAD_MIME_TYPE_H

#include <cstdint>
#include <span>
#include <string>

namespace mifread
{

// The MIME type of a file that begins with these bytes; "application/octet-stream" for one that the system does not
// know. Throws mifhost::IoError when the system's database of types cannot be read.
std::string detectMimeType(std::span<const std::uint8_t> beginning);

// The usual extension of such a file, without a dot; empty where the system knows none. Throws likewise.
std::string detectExtension(std::span<const std::uint8_t> beginning);

} // namespace mifread

#endif
