#include <string>

#include "command.h"
#include "display.h"
#include "mifconvert/text_writer.h"

namespace mifread
{

namespace
{

void writeText(Conversion &conversion)
{
    mifconvert::TextWriter writer(conversion.text());
    while (const mifhost::Token *token = conversion.next()) {
        writer.write(*token);
    }
    writer.finish();
}

void showText(Conversion &conversion)
{
    std::string text;
    mifconvert::TextWriter writer(text);
    while (const mifhost::Token *token = conversion.next()) {
        writer.write(*token);
        appendShownLines(text, conversion.text());
        text.clear();
    }
    writer.finish();
    appendShownLines(text, conversion.text());
}

} // namespace

Command textCommand(bool forTerminal)
{
    return {.convert = forTerminal ? showText : writeText, .extension = ".txt"};
}

} // namespace mifread
