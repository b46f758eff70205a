#include "refusal.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "mime_type.h"

namespace mifread
{

namespace
{

using namespace std::string_view_literals;

struct Beginning {
    std::string_view bytes;
    std::string_view explanation;
};

// What the system takes for text, or what something can be done about.
constexpr std::array beginnings = {
    Beginning{"\xEF\xBB\xBF"sv, "it begins with a byte order mark; save it without one"},
    Beginning{"\xFF\xFE\0\0"sv, "it is in UTF-32; convert it with iconv -f UTF-32 -t UTF-8"},
    Beginning{"\0\0\xFE\xFF"sv, "it is in UTF-32; convert it with iconv -f UTF-32 -t UTF-8"},
    Beginning{"<\0\0\0"sv, "it is in UTF-32; convert it with iconv -f UTF-32LE -t UTF-8"},
    Beginning{"\0\0\0<"sv, "it is in UTF-32; convert it with iconv -f UTF-32BE -t UTF-8"},
    Beginning{"\xFF\xFE"sv, "it is in UTF-16; convert it with iconv -f UTF-16 -t UTF-8"},
    Beginning{"\xFE\xFF"sv, "it is in UTF-16; convert it with iconv -f UTF-16 -t UTF-8"},
    Beginning{"<\0"sv, "it is in UTF-16; convert it with iconv -f UTF-16LE -t UTF-8"},
    Beginning{"\0<"sv, "it is in UTF-16; convert it with iconv -f UTF-16BE -t UTF-8"},
    Beginning{"\x1F\x8B"sv, "it is compressed with gzip; unpack it with gunzip"},
    Beginning{"<Book"sv, "it is a book, which only lists the files of its chapters; give those"},
};

} // namespace

std::string explainRefusal(std::span<const std::uint8_t> beginning)
{
    const std::string_view bytes(reinterpret_cast<const char *>(beginning.data()), beginning.size());
    if (bytes.empty()) {
        return "";
    }
    const auto *found = std::find_if(beginnings.begin(), beginnings.end(),
                                     [bytes](const Beginning &row) { return bytes.starts_with(row.bytes); });
    if (found != beginnings.end()) {
        return std::string(found->explanation);
    }
    const std::string type = detectMimeType(beginning);
    return type == "application/octet-stream" ? "" : "its type is " + type;
}

} // namespace mifread
