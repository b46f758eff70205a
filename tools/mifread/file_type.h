// Recognising what an object's data are.
#ifndef MIFREAD_FILE_TYPE_H
#define MIFREAD_FILE_TYPE_H

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct magic_set;

namespace mifread
{

struct FileType {
    std::string mimeType;       // such as "image/png"
    std::string_view extension; // such as "png"; "bin" for types that have none
};

// Tells types from content.
class FileTypes
{
public:
    // Throws mifhost::IoError when the database of types cannot be read.
    FileTypes();

    // One for each thread, as an object must not be used by two at once and is costly to make. Throws as above.
    static const FileTypes &ofThread();

    // beginning  the first bytes of the file; some kilobytes are enough
    FileType identify(std::span<const std::uint8_t> beginning) const;

private:
    struct Close {
        void operator()(magic_set *magic) const noexcept;
    };
    std::unique_ptr<magic_set, Close> magic_;
};

} // namespace mifread

#endif
