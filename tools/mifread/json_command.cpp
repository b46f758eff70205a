#include <cstdint>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "command.h"
#include "conversion.h"
#include "file_type.h"
#include "mifconvert/json_lines.h"
#include "mifhost/error.h"
#include "object_data.h"

namespace mifread
{

namespace
{

class JsonConversion
{
public:
    JsonConversion(Conversion &conversion, bool withObjects)
        : conversion_(conversion), withObjects_(withObjects), lines_(conversion.document().fonts(), conversion.text())
    {
    }

    void run();

private:
    void writeTokens(const mifhost::Token *token);
    void writeObject(const std::string &id);

    Conversion &conversion_;
    bool withObjects_;
    mifconvert::JsonLines lines_;
    std::set<std::string, std::less<>> written_; // identifiers of objects
};

void JsonConversion::run()
{
    // A document that is refused is so at its first token: then it has no lines.
    const mifhost::Token *token = conversion_.next();
    lines_.begin(conversion_.document().name(), conversion_.document().size());
    try {
        writeTokens(token);
    } catch (const mifhost::Error &error) {
        std::vector<std::string> messages = conversion_.losses();
        messages.emplace_back(error.what());
        lines_.end("failed", messages);
        throw;
    }
    const std::vector<std::string> losses = conversion_.losses();
    lines_.end(losses.empty() ? "converted" : "losses", losses);
}

void JsonConversion::writeTokens(const mifhost::Token *token)
{
    for (; token != nullptr; token = conversion_.next()) {
        lines_.append(*token);
        const auto *frame = std::get_if<mifhost::Frame>(token);
        if (withObjects_ && frame != nullptr && !written_.contains(frame->id)) {
            writeObject(*written_.emplace(frame->id).first);
        }
    }
}

void JsonConversion::writeObject(const std::string &id)
{
    bool isBegun = false;
    const bool isWhole = readObject(conversion_, id, [&](std::span<const std::uint8_t> block) {
        if (!isBegun) {
            isBegun = true;
            lines_.beginObject(id, identifyFile(block).mimeType);
        }
        lines_.appendData(block);
    });
    lines_.endObject(isWhole);
}

} // namespace

Command jsonCommand(bool withObjects)
{
    return {.convert = [withObjects](Conversion &conversion) { JsonConversion(conversion, withObjects).run(); },
            .extension = ".jsonl"};
}

} // namespace mifread
