// Recognising what an object's data are.
#ifndef MIFREAD_FILE_TYPE_H
#define MIFREAD_FILE_TYPE_H

#include <cstdint>
#include <span>
#include <string>

namespace mifread
{

struct FileType {
    std::string mimeType;  // such as "image/png"
    std::string extension; // such as "png"; "bin" for types that have none
};

// Tells what data are from their content.
// beginning  the first bytes of the file; some kilobytes are enough
// Throws mifhost::IoError when the system's database of types cannot be read.
FileType identifyFile(std::span<const std::uint8_t> beginning);

} // namespace mifread

#endif
