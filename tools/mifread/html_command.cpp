#include <optional>
#include <span>
#include <string>

#include "command.h"
#include "file_type.h"
#include "mifconvert/html_object.h"
#include "mifconvert/html_writer.h"
#include "object_data.h"
#include "paths.h"

namespace mifread
{

namespace
{

// An object that cannot be read is a loss.
void showObject(Conversion &conversion, const mifhost::Frame &frame)
{
    std::optional<mifconvert::HtmlObject> element;
    readObject(conversion, std::string(frame.id), [&](std::span<const std::uint8_t> block) {
        if (!element) {
            const FileType type = identifyFile(block);
            element.emplace(frame, type.mimeType, type.extension, conversion.text());
        }
        element->add(block);
    });
    element->finish();
}

void writePage(Conversion &conversion)
{
    const mifhost::Document &document = conversion.document();
    const std::string title = textOf(pathOf(document.name()).filename());
    mifconvert::HtmlWriter writer(
        title, document.fonts(), conversion.charset(),
        [&conversion](const mifhost::Frame &frame) { showObject(conversion, frame); }, conversion.text());
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
