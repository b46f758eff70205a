#include "mifconvert/json_text.h"

#include <utility>

namespace mifconvert
{

void appendJsonText(std::string_view text, mifhost::TextConverter &charset, std::string &out)
{
    std::string converted;
    charset.append(text, converted);
    out += Json(std::move(converted)).dump();
}

std::string dumpJson(const Json &value)
{
    return value.dump(-1, ' ', true, Json::error_handler_t::replace);
}

} // namespace mifconvert
