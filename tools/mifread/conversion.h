// The conversion of one document: what all commands do alike while they walk through its tokens.
#ifndef MIFREAD_CONVERSION_H
#define MIFREAD_CONVERSION_H

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "claims.h"
#include "mifhost/document.h"
#include "output.h"

namespace mifread
{

// One document on its way to one output.
class Conversion
{
public:
    // Told of progress: how much of the document is read, in whole percent, whenever it changes.
    using Progress = std::function<void(int percent)>;

    // document  from its first token
    // output    what the command writes to; it may hold parts of other documents
    // folder    where files that belong to the document go
    // claims    of all files of the run
    // limit     the most bytes that may be written
    Conversion(mifhost::Document &document, Output &output, std::filesystem::path folder, Claims &claims,
               std::uint64_t limit, Progress progress);

    // Returns the document's next token, null at its end, and writes what the output has collected. Throws as
    // Document::next() does, and LimitReached when too much was written, OutputError, Interrupted.
    const mifhost::Token *next();

    // Does what next() does between tokens. To be called from loops that write much and ask for no token.
    // bytesElsewhere  bytes written to other files since the last call
    void keepGoing(std::uint64_t bytesElsewhere = 0);

    mifhost::Document &document() noexcept
    {
        return document_;
    }
    Output &output() noexcept
    {
        return output_;
    }
    std::string &text() noexcept
    {
        return output_.text();
    }
    // The path of a file of this name in the document's folder. Throws OutputError when the run reads or writes it
    // already.
    std::filesystem::path claimFile(const std::string &name);

    // A piece of the document could not be converted: a message without the program's name, and the document is said to
    // be converted with losses. Of each kind the first ones are told and the others counted.
    // kind  what was lost, in the plural; lives as long as the program
    void addLoss(std::string_view kind, std::string message);

    // What was lost: by addLoss(), of the character set, and, when the extended stream was read to its end, by the
    // reader. Of the plain one the reader tells nothing.
    std::vector<std::string> losses() const;

    // What the reader lost, by kind, also what is no text and no data; complete when next() has returned null.
    const std::vector<mifhost::LossTotal> &lossTotals() const noexcept
    {
        return totals_;
    }

private:
    mifhost::Document &document_;
    Output &output_;
    std::filesystem::path folder_;
    Claims &claims_;
    std::uint64_t limit_;
    Progress progress_;
    std::vector<std::string> losses_;
    std::vector<mifhost::LossTotal> totals_;
    std::map<std::string_view, std::uint64_t> lossCounts_; // by kind
    std::uint64_t outputStart_;                            // size of the output before this document
    std::uint64_t bytesElsewhere_ = 0;                     // written to other files
    int percentReported_ = 0;
};

} // namespace mifread

#endif
