#include "mifconvert/json_text.h"

#include <utility>

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

void appendJsonText(std::string_view text, mifhost::TextConverter &charset, std::string &out)
{
    std::string converted;
    charset.append(text, converted);
    out += withoutDelete(Json(std::move(converted)).dump());
}

std::string dumpJson(const Json &value)
{
    return withoutDelete(value.dump(-1, ' ', true, Json::error_handler_t::replace));
}

} // namespace mifconvert
