// What is in a document.
#ifndef MIFREAD_INFO_DOCUMENT_H
#define MIFREAD_INFO_DOCUMENT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "conversion.h"
#include "mifhost/token.h"

namespace mifread
{

struct FontInfo {
    std::string name; // in UTF-8; empty for text without a font
    std::string_view familyClass;
    std::set<std::uint32_t> sizes; // points
};

// An embedded object, with what its first frame says of it.
struct ObjectInfo {
    std::string id;
    std::string mimeType;   // by its content
    std::uint64_t size = 0; // bytes
    std::uint32_t width;    // twips
    std::uint32_t height;   // twips
    std::uint32_t kind;
    bool isComplete = false; // all of its data could be read
};

struct DocumentInfo {
    std::string name;
    std::uint64_t size = 0;                                                  // bytes
    std::array<std::uint64_t, std::variant_size_v<mifhost::Token>> tokens{}; // by kind, in the order of tokenNames
    std::uint64_t characters = 0;                                            // in all runs of text
    std::vector<FontInfo> fonts;                                             // in the order of their announcement
    std::map<std::size_t, std::uint64_t> tables; // how many by columns; 0 columns for tables that state none
    std::vector<ObjectInfo> objects;             // each once, in the order of their first frames
    mifhost::DocumentInfo fields;
    std::vector<mifhost::LossTotal> lossTotals; // of the reader, also of what is no text and no data
    std::vector<std::string> losses;
    std::uint64_t peakMemory = 0; // bytes in use by the reader at the highest
    double seconds = 0;           // that all this took

    template <typename Kind>
    std::uint64_t count() const noexcept
    {
        return tokens[mifhost::Token(Kind{}).index()];
    }
};

// Takes all tokens of the document and looks into its objects. Memory grows with fonts and objects alone.
// Throws as Conversion::next() does.
DocumentInfo inspect(Conversion &conversion);

} // namespace mifread

#endif
