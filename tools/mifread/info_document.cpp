#include "info_document.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>
#include <span>
#include <utility>

#include "file_type.h"
#include "mifhost/fonts.h"
#include "object_data.h"

namespace mifread
{

namespace
{

// Fills a document's information from its tokens.
class Inspection
{
public:
    explicit Inspection(Conversion &conversion) : conversion_(conversion) {}

    DocumentInfo run();

    // What is noted of a token besides its kind.
    void operator()(const mifhost::Text &text)
    {
        info_.characters +=
            static_cast<std::uint64_t>(std::count_if(text.bytes.begin(), text.bytes.end(), [](char byte) {
                return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
            }));
    }
    void operator()(const mifhost::Font &font)
    {
        if (font.number != mifhost::Font::none) {
            fontSizes_[font.number].insert(font.size);
        }
    }
    void operator()(const mifhost::TableRow &row)
    {
        columns_ = std::max(columns_.value_or(0), row.columnWidths.size());
    }
    void operator()(const mifhost::TableEnd &)
    {
        endTable();
    }
    void operator()(const mifhost::Frame &frame);
    template <typename Other>
    void operator()(const Other &)
    {
    }

private:
    void endTable();
    void addFonts();

    Conversion &conversion_;
    DocumentInfo info_;
    std::map<std::uint32_t, std::set<std::uint32_t>> fontSizes_; // by font number
    std::optional<std::size_t> columns_; // of the table at hand: the most of its row layouts; none outside of tables
    std::set<std::string, std::less<>> objectIds_;
};

DocumentInfo Inspection::run()
{
    const mifhost::Document &document = conversion_.document();
    while (const mifhost::Token *token = conversion_.next()) {
        ++info_.tokens[token->index()];
        std::visit(*this, *token);
    }
    if (columns_.has_value()) { // the document ends inside a table
        endTable();
    }
    addFonts();
    info_.name = document.name();
    info_.size = document.size();
    info_.fields = document.info();
    info_.lossTotals = conversion_.lossTotals();
    info_.losses = conversion_.losses();
    info_.peakMemory = document.memory().peakBytes();
    return std::move(info_);
}

void Inspection::operator()(const mifhost::Frame &frame)
{
    const auto [id, isNew] = objectIds_.emplace(frame.id);
    if (!isNew) {
        return;
    }
    ObjectInfo object{.id = *id, .mimeType{}, .width = frame.width, .height = frame.height, .kind = frame.kind};
    object.isComplete = readObject(conversion_, *id, [&object](std::span<const std::uint8_t> block) {
        if (object.mimeType.empty()) {
            object.mimeType = identifyFile(block).mimeType;
        }
        object.size += block.size();
    });
    info_.objects.push_back(std::move(object));
}

void Inspection::endTable()
{
    ++info_.tables[columns_.value_or(0)];
    columns_.reset();
}

void Inspection::addFonts()
{
    for (auto &[number, sizes] : fontSizes_) {
        FontInfo font{{}, "unknown", std::move(sizes)};
        if (const mifhost::FontFace *face = conversion_.document().fonts().find(number)) {
            font.name = face->name;
            font.familyClass = mifhost::fontClassName(face->familyClass);
        }
        info_.fonts.push_back(std::move(font));
    }
}

} // namespace

DocumentInfo inspect(Conversion &conversion)
{
    const auto start = std::chrono::steady_clock::now();
    DocumentInfo info = Inspection(conversion).run();
    info.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return info;
}

} // namespace mifread
