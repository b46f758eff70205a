#include "mifconvert/json_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include <fmt/format.h>

namespace mifconvert
{

namespace
{

// Which bytes a JSON string cannot hold as they are.
constexpr std::array<bool, 256> isSpecial = [] {
    std::array<bool, 256> special{};
    std::fill_n(special.begin(), ' ', true);
    special['"'] = true;
    special['\\'] = true;
    return special;
}();

void appendEscaped(char byte, std::string &out)
{
    if (byte == '"' || byte == '\\') {
        out += '\\';
        out += byte;
        return;
    }
    fmt::format_to(std::back_inserter(out), "\\u{:04x}", static_cast<unsigned char>(byte));
}

} // namespace

void appendJsonText(std::string_view text, mifhost::Windows1252 &charset, std::string &out)
{
    out += '"';
    for (;;) {
        const auto *special = std::find_if(text.begin(), text.end(),
                                           [](char byte) { return isSpecial[static_cast<unsigned char>(byte)]; });
        const auto plain = static_cast<std::size_t>(special - text.begin());
        charset.append(text.substr(0, plain), out);
        if (special == text.end()) {
            break;
        }
        appendEscaped(*special, out);
        text.remove_prefix(plain + 1);
    }
    out += '"';
}

std::string dumpJson(const Json &value)
{
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace mifconvert
