#include "mifconvert/json_text.h"

namespace mifconvert
{

namespace
{

// JSON allows DEL as it is; a terminal may take it for a command.
std::string withoutDelete(std::string json)
{
    for (std::size_t place = 0; (place = json.find('\x7F', place)) != std::string::npos;) {
        json.replace(place, 1, "\\u007f");
    }
    return json;
}

} // namespace

void appendJsonText(std::string_view text, std::string &out)
{
    out += withoutDelete(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string dumpJson(const Json &value)
{
    return withoutDelete(value.dump(-1, ' ', true, Json::error_handler_t::replace));
}

} // namespace mifconvert
