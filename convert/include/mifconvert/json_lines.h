// The token stream as JSON Lines: one object a line, its type and then its fields, in UTF-8.
#ifndef MIFCONVERT_JSON_LINES_H
#define MIFCONVERT_JSON_LINES_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "mifconvert/base64.h"
#include "mifconvert/font_introductions.h"
#include "mifhost/fonts.h"
#include "mifhost/token.h"

namespace mifconvert
{

// Writes the lines of one document.
class JsonLines
{
public:
    // fonts  the document's fonts
    // out    the lines are appended here; both must live as long as this
    JsonLines(const mifhost::FontRegistry &fonts, std::string &out) : fonts_(fonts), out_(out) {}

    // The line before all others.
    void begin(const std::string &name, std::uint64_t size);

    // A token's line, and before the first use of a font one that tells its name.
    void append(const mifhost::Token &token);

    // The line of an embedded object grows while its data are read. Nothing else may be appended in between but the
    // document's end.
    void beginObject(std::string_view id, std::string_view mimeType);
    void appendData(std::span<const std::uint8_t> block);
    void endObject(bool isComplete);

    // The line behind all others.
    // status    "converted", "losses" or "failed"
    // messages  what failed or was lost
    void end(std::string_view status, const std::vector<std::string> &messages);

private:
    FontIntroductions fonts_;
    std::string &out_;
    Base64Encoder encoder_;
    bool objectIsOpen_ = false;
    std::uint64_t objectSize_ = 0; // bytes of the open object so far
};

} // namespace mifconvert

#endif
