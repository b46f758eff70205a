#include "command.h"
#include "html_frame.h"
#include "html_writer.h"

namespace mifread
{

namespace
{

void writePage(Conversion &conversion)
{
    const mifhost::Document &document = conversion.document();
    HtmlFrames frames(conversion);
    const auto showFrame = [&frames](const mifhost::Frame &frame) { frames.write(frame); };
    HtmlWriter writer(document.name(), document.fonts(), conversion.charset(), showFrame, conversion.text());
    while (const mifhost::Token *token = conversion.next()) {
        writer.write(*token);
    }
    writer.finish();
}

} // namespace

Command htmlCommand()
{
    return {.convert = writePage, .results = Results::Single, .extension = ".html"};
}

} // namespace mifread
