#include <variant>

#include "command.h"

namespace mifread
{

namespace
{

// What of a token is text.
struct TextWriter {
    mifhost::Windows1252 &charset;
    std::string &out;

    void operator()(const mifhost::Text &text) const
    {
        charset.append(text.bytes, out);
    }
    void operator()(const mifhost::Tab &) const
    {
        out += '\t';
    }
    void operator()(const mifhost::LineBreak &) const
    {
        out += '\n';
    }
    template <typename Other>
    void operator()(const Other &) const
    {
    }
};

void writeText(Conversion &conversion)
{
    const TextWriter writer{conversion.charset(), conversion.text()};
    while (const mifhost::Token *token = conversion.next()) {
        std::visit(writer, *token);
    }
}

} // namespace

Command textCommand()
{
    return {.convert = writeText, .extension = ".txt"};
}

} // namespace mifread
