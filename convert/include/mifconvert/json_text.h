// Strings and values of JSON.
#ifndef MIFCONVERT_JSON_TEXT_H
#define MIFCONVERT_JSON_TEXT_H

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace mifconvert
{

// Appends a document's text to out as a JSON string with its quotes, in UTF-8.
void appendJsonText(std::string_view text, std::string &out);

// An object keeps its members in the order in which they were added.
using Json = nlohmann::ordered_json;

// The value on one line, in ASCII: no character of it does anything to a terminal. Its strings may hold any bytes, as
// paths do: what is not UTF-8 in them becomes U+FFFD.
std::string dumpJson(const Json &value);

} // namespace mifconvert

#endif
