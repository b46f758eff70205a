#include "command.h"
#include "mifconvert/text_writer.h"

namespace mifread
{

namespace
{

void writeText(Conversion &conversion)
{
    mifconvert::TextWriter writer(conversion.charset(), conversion.text());
    while (const mifhost::Token *token = conversion.next()) {
        writer.write(*token);
    }
}

} // namespace

Command textCommand()
{
    return {.convert = writeText, .extension = ".txt"};
}

} // namespace mifread
