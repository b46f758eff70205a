#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>

#include "command.h"
#include "display.h"
#include "file_type.h"
#include "mifconvert/html_object.h"
#include "mifconvert/html_writer.h"
#include "object_data.h"
#include "page_pictures.h"
#include "paths.h"

namespace mifread
{

namespace
{

// Shows the objects of one document. One that cannot be read is a loss; the page has its beginning once.
class PageObjects
{
public:
    explicit PageObjects(Conversion &conversion) : conversion_(conversion) {}

    void show(const mifhost::Frame &frame, std::string &out);

private:
    // What the first frame of an object showed of it, which is costly to find out.
    struct Known {
        FileType type;
        bool isWhole = false; // all of its data can be read
    };

    Conversion &conversion_;
    std::map<std::string, Known, std::less<>> objects_; // by identifier
};

void PageObjects::show(const mifhost::Frame &frame, std::string &out)
{
    std::optional<mifconvert::HtmlObject> element;
    const auto begin = [&](const FileType &type) { element.emplace(frame, type.mimeType, type.extension, out); };
    auto known = objects_.find(frame.id);
    if (known != objects_.end()) {
        begin(known->second.type);
    }
    if (known == objects_.end() || known->second.isWhole) {
        const std::string id(frame.id);
        const bool isWhole = readObject(conversion_, id, [&](std::span<const std::uint8_t> block) {
            if (known == objects_.end()) {
                known = objects_.emplace(id, Known{identifyFile(block)}).first;
                begin(known->second.type);
            }
            element->add(block);
        });
        known->second.isWhole = isWhole;
    }
    element->finish();
}

void writePage(Conversion &conversion, EmbedPictures which)
{
    const mifhost::Document &document = conversion.document();
    PageObjects objects(conversion);
    const std::string title = shown(textOf(pathOf(document.name()).filename()));
    mifconvert::HtmlWriter writer(
        title, document.fonts(),
        [&objects](const mifhost::Frame &frame, std::string &out) { objects.show(frame, out); }, conversion.text());
    PagePictures pictures(conversion, which);
    writer.setPictureSource([&pictures](std::string_view path) { return pictures.sourceOf(path); });
    while (const mifhost::Token *token = conversion.next()) {
        writer.write(*token);
    }
    writer.finish();
}

} // namespace

Command htmlCommand(EmbedPictures pictures)
{
    return {.convert = [pictures](Conversion &conversion) { writePage(conversion, pictures); },
            .results = Results::Single,
            .extension = ".html"};
}

} // namespace mifread
