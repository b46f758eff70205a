#include "mime_type.h"

#include <cstddef>
#include <memory>
#include <optional>

#include <magic.h>

#include "mifhost/error.h"

namespace mifread
{

namespace
{

struct CloseMagic {
    void operator()(magic_set *magic) const noexcept
    {
        magic_close(magic);
    }
};
using Magic = std::unique_ptr<magic_set, CloseMagic>;

Magic openMagic()
{
    Magic magic(magic_open(MAGIC_MIME_TYPE));
    if (magic == nullptr || magic_load(magic.get(), nullptr) != 0) {
        const char *reason = magic != nullptr ? magic_error(magic.get()) : nullptr;
        throw mifhost::IoError("the database of file types", std::nullopt,
                               reason != nullptr ? reason : "cannot be opened");
    }
    // Its regular expressions take time in the square of what they look at, which data can be made for.
    constexpr std::size_t lookedAt = 1024;
    magic_setparam(magic.get(), MAGIC_PARAM_REGEX_MAX, &lookedAt);
    return magic;
}

} // namespace

std::string detectMimeType(std::span<const std::uint8_t> beginning)
{
    // One for each thread, as it must not be used by two at once and is costly to make.
    thread_local const Magic magic = openMagic();
    const char *found = magic_buffer(magic.get(), beginning.data(), beginning.size());
    return found != nullptr ? found : "application/octet-stream";
}

} // namespace mifread
