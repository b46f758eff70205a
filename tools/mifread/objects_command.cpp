#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <fmt/format.h>

#include "command.h"
#include "display.h"
#include "file_type.h"
#include "mifconvert/json_text.h"
#include "mifhost/error.h"
#include "mifhost/object.h"
#include "object_data.h"
#include "paths.h"

namespace mifread
{

namespace
{

constexpr std::size_t blockSize = std::size_t{64} * 1024;

// The identifier becomes part of a file's name, so it must be what it is meant to be.
void requireNumber(const mifhost::Document &document, std::string_view id)
{
    const std::string_view digits = id.starts_with('-') ? id.substr(1) : id;
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) {
        throw mifhost::StreamError(document.name(), std::nullopt, "the identifier of a frame is not a number");
    }
}

// Writes the objects of one document to files and lists them, each once.
class Extraction
{
public:
    Extraction(Conversion &conversion, Listing listing) : conversion_(conversion), listing_(listing) {}

    void run();

private:
    void extract(const mifhost::Frame &frame);
    void copy(mifhost::Object &object, std::size_t firstCount, OutputFile &file);
    void list(const mifhost::Frame &frame, const std::string &type, std::uint64_t size, const std::string &file);

    Conversion &conversion_;
    const Listing listing_;
    std::vector<std::uint8_t> block_ = std::vector<std::uint8_t>(blockSize);
    std::set<std::string, std::less<>> done_; // identifiers
};

void Extraction::run()
{
    mifhost::Document &document = conversion_.document();
    while (const mifhost::Token *token = conversion_.next()) {
        const auto *frame = std::get_if<mifhost::Frame>(token);
        if (frame == nullptr || done_.contains(frame->id)) {
            continue;
        }
        requireNumber(document, frame->id);
        done_.emplace(frame->id);
        extract(*frame);
    }
}

void Extraction::extract(const mifhost::Frame &frame)
try {
    mifhost::Object object(conversion_.document(), frame.id);
    const std::size_t firstCount = object.read(block_);
    const FileType type = identifyFile(std::span(block_).first(firstCount));
    const std::filesystem::path path = conversion_.claimFile(fmt::format("{}.{}", frame.id, type.extension));
    makeFolder(path.parent_path());
    OutputFile file(textOf(path));
    copy(object, firstCount, file);
    file.commit();
    list(frame, type.mimeType, object.tell(), file.name());
} catch (const mifhost::ObjectLimitReached &error) { // others may do
    conversion_.addLoss(unreadableObjects, error.what());
} catch (const OutputError &error) { // of the object's file, which the other documents do not share
    throw mifhost::IoError("", std::nullopt, error.what());
}

// Copies an object of which the first firstCount bytes are in block_ already.
void Extraction::copy(mifhost::Object &object, std::size_t firstCount, OutputFile &file)
{
    for (std::size_t count = firstCount; count > 0; count = object.read(block_)) {
        file.text().append(reinterpret_cast<const char *>(block_.data()), count);
        file.writeFullBlocks();
        conversion_.keepGoing(count);
    }
}

void Extraction::list(const mifhost::Frame &frame, const std::string &type, std::uint64_t size, const std::string &file)
{
    if (listing_ == Listing::Json) {
        conversion_.text() += mifconvert::dumpJson({{"document", conversion_.document().name()},
                                                    {"id", frame.id},
                                                    {"mimeType", type},
                                                    {"size", size},
                                                    {"width", frame.width},
                                                    {"height", frame.height},
                                                    {"file", file}}) +
                              '\n';
        return;
    }
    const bool forPeople = listing_ == Listing::Rows;
    fmt::format_to(std::back_inserter(conversion_.text()), "{}\t{}\t{}\t{}\t{}\t{}{}", frame.id, type, size,
                   frame.width, frame.height, forPeople ? shown(file) : file, forPeople ? '\n' : '\0');
}

} // namespace

Command objectsCommand(Listing listing)
{
    return {.convert = [listing](Conversion &conversion) { Extraction(conversion, listing).run(); },
            .results = Results::Files,
            .heading = listing == Listing::Rows ? "ID\tType\tSize\tWidth\tHeight\tFile\n" : ""};
}

} // namespace mifread
