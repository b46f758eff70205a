#include <string>
#include <variant>

#include <fmt/format.h>

#include "command.h"
#include "conversion.h"
#include "mifhost/charset.h"

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

bool writeText(mifhost::Document &document, OutputFile &output)
{
    mifhost::Windows1252 charset;
    const TextWriter writer{charset, output.text()};
    while (const mifhost::Token *token = document.next()) {
        std::visit(writer, *token);
        output.writeFullBlocks();
    }
    if (charset.undefinedBytes() > 0) {
        complain(fmt::format("{}: characters that Windows-1252 does not define were replaced by U+FFFD: {}",
                             document.name(), charset.undefinedBytes()));
        return false;
    }
    return true;
}

} // namespace

ExitCode runText(const Options &options)
{
    return convertInputs(options, writeText);
}

} // namespace mifread
