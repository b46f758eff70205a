#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <variant>
#include <vector>

#include <fmt/format.h>

#include "command.h"
#include "conversion.h"
#include "file_type.h"
#include "mifhost/error.h"
#include "mifhost/object.h"

namespace mifread
{

namespace
{

namespace fs = std::filesystem;

constexpr std::size_t blockSize = std::size_t{64} * 1024;

void makeFolder(const fs::path &folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) {
        throw mifhost::IoError(folder, std::nullopt, "cannot make the folder: " + error.message());
    }
}

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
    Extraction(mifhost::Document &document, const fs::path &folder, OutputFile &listing)
        : document_(document), folder_(folder), listing_(listing)
    {
    }

    // Returns whether all objects could be read.
    bool run();

private:
    void extract(const mifhost::Frame &frame);
    void copy(mifhost::Object &object, std::size_t firstCount, OutputFile &file);

    mifhost::Document &document_;
    const fs::path &folder_;
    OutputFile &listing_;
    FileTypes types_;
    std::vector<std::uint8_t> block_ = std::vector<std::uint8_t>(blockSize);
    std::set<std::string, std::less<>> done_; // identifiers
};

bool Extraction::run()
{
    // A document that is refused is so at its first token: then nothing is made.
    const mifhost::Token *token = document_.next();
    makeFolder(folder_);
    listing_.text() += "ID\tType\tSize\tWidth\tHeight\n";
    bool isWhole = true;
    for (; token != nullptr; token = document_.next()) {
        const auto *frame = std::get_if<mifhost::Frame>(token);
        if (frame == nullptr || done_.contains(frame->id)) {
            continue;
        }
        requireNumber(document_, frame->id);
        done_.emplace(frame->id);
        try {
            extract(*frame);
        } catch (const mifhost::LimitReached &error) { // of this object: others may do
            complain(error.what());
            isWhole = false;
        } catch (const OutputError &error) { // of the object's file, not of the listing
            throw mifhost::IoError("", std::nullopt, error.what());
        }
    }
    return isWhole;
}

void Extraction::extract(const mifhost::Frame &frame)
{
    mifhost::Object object(document_, frame.id);
    const std::size_t firstCount = object.read(block_);
    const FileType type = types_.identify(std::span(block_).first(firstCount));
    OutputFile file(folder_ / fmt::format("{}.{}", frame.id, type.extension));
    copy(object, firstCount, file);
    file.commit();
    fmt::format_to(std::back_inserter(listing_.text()), "{}\t{}\t{}\t{}\t{}\n", frame.id, type.mimeType, object.tell(),
                   frame.width, frame.height);
    listing_.writeFullBlocks();
}

// Copies an object of which the first firstCount bytes are in block_ already.
void Extraction::copy(mifhost::Object &object, std::size_t firstCount, OutputFile &file)
{
    for (std::size_t count = firstCount; count > 0; count = object.read(block_)) {
        file.text().append(reinterpret_cast<const char *>(block_.data()), count);
        file.writeFullBlocks();
    }
}

} // namespace

ExitCode runObjects(const Options &options)
{
    const fs::path folder = options.folder;
    return convertInputs(options, [&folder](mifhost::Document &document, OutputFile &listing) {
        return Extraction(document, folder, listing).run();
    });
}

} // namespace mifread
