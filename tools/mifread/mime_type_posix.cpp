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

Magic openMagic(int flags)
{
    Magic magic(magic_open(flags));
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

std::string ask(const Magic &magic, std::span<const std::uint8_t> beginning)
{
    const char *found = magic_buffer(magic.get(), beginning.data(), beginning.size());
    return found != nullptr ? found : "";
}

} // namespace

// One of each for each thread, as it must not be used by two at once and is costly to make.

std::string detectMimeType(std::span<const std::uint8_t> beginning)
{
    thread_local const Magic types = openMagic(MAGIC_MIME_TYPE);
    const std::string found = ask(types, beginning);
    return found.empty() ? "application/octet-stream" : found;
}

std::string detectExtension(std::span<const std::uint8_t> beginning)
{
    thread_local const Magic extensions = openMagic(MAGIC_EXTENSION);
    const std::string found = ask(extensions, beginning); // such as "jpeg/jpg/jpe", or "???"
    return found.starts_with('?') ? "" : found.substr(0, found.find('/'));
}

} // namespace mifread
