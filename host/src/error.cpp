#include "mifhost/error.h"

namespace mifhost
{

namespace
{

std::string describe(const std::string &name, std::optional<std::uint64_t> position, const std::string &reason)
{
    std::string message;
    if (!name.empty()) {
        message += name + ": ";
    }
    if (position.has_value()) {
        message += "byte " + std::to_string(*position) + ": ";
    }
    return message + reason;
}

} // namespace

Error::Error(const std::string &name, std::optional<std::uint64_t> position, const std::string &reason)
    : std::runtime_error(describe(name, position, reason)), position_(position)
{
}

} // namespace mifhost
