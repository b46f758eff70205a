// What a document lacks that its token stream cannot tell.
#ifndef MIFHOST_SOURCE_CHECK_H
#define MIFHOST_SOURCE_CHECK_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mifhost
{

// Follows the statements of a document while a reader reads it and finds three kinds of loss: the document ends inside
// a statement; statements, or lines of embedded objects, that the reader drops because they are longer than its source
// buffer; and strings that it ends early at a NUL byte. It sees every byte once, in order; bytes that a reader reads
// again are passed over.
class SourceCheck
{
public:
    // The most bytes of one statement that the reader takes up: from its '<' to its '>', or to the '<' of the first
    // statement nested in it. In an embedded object it is the most bytes of a line, its line end included.
    static constexpr std::size_t maximumStatement = 4096;

    // Takes note of bytes read at a position. Only what follows the bytes seen so far counts. May throw std::bad_alloc.
    void feed(std::uint64_t position, std::span<const std::uint8_t> bytes);

    // The number of bytes seen, which is the position of the next one.
    std::uint64_t bytesSeen() const noexcept
    {
        return bytesSeen_;
    }

    // The number of statements that are open after the bytes seen. More than 0 at the end of the document means that
    // the document is cut.
    std::size_t openStatements() const noexcept
    {
        return open_.size() + objectDepth_;
    }

    // The positions of the '<' of the open statements that began first and last; 0 when none is open. Inside an
    // embedded object the last one is the object.
    std::uint64_t outermostOpen() const noexcept
    {
        return open_.empty() ? 0 : open_.front().position;
    }
    std::uint64_t innermostOpen() const noexcept
    {
        return open_.empty() ? 0 : open_.back().position;
    }

    // The statements and lines longer than maximumStatement: their number, the position of the first one's first byte,
    // and the length of the longest.
    std::size_t droppedStatements() const noexcept
    {
        return droppedStatements_;
    }
    std::uint64_t firstDropped() const noexcept
    {
        return firstDropped_;
    }
    std::uint64_t longestDropped() const noexcept
    {
        return longestDropped_;
    }

    // The strings that hold a NUL byte, which ends them for the reader: their number, and the position of the first
    // such byte.
    std::size_t cutStrings() const noexcept
    {
        return cutStrings_;
    }
    std::uint64_t firstCut() const noexcept
    {
        return firstCut_;
    }

private:
    enum class State : std::uint8_t {
        Between,     // between statements
        Name,        // after the '<' of a statement
        Value,       // after the name, before any backquote
        Quoted,      // in a value, after a backquote
        Line,        // in a comment or stray text, which end with the line
        Keyword,     // in what may be the word of a macro
        Macro,       // after the word of a macro, which ends with a ')'
        Object,      // among the statements of an embedded object
        ObjectFacet, // after a '=' in an object
        ObjectData,  // in a data line of an object
        ObjectRest   // in the rest of a facet's line
    };

    // Open statements take 4 bytes each, so that no document makes the check grow beyond its own size.
    struct OpenStatement {
        std::uint32_t position : 31;
        std::uint32_t isPage : 1;
    };

    // Takes up bytes in the present state, from next on, and returns the first byte that it left; so do those that
    // follow.
    const char *scan(const char *next, const char *end);
    const char *scanBetween(const char *next, const char *end);
    const char *scanName(const char *next, const char *end);
    const char *scanValue(const char *next, const char *end);
    const char *scanQuoted(const char *next, const char *end);
    const char *scanLine(const char *next, const char *end);
    const char *scanWord(const char *next, const char *end, State found, State missed);
    const char *scanMacro(const char *next, const char *end);
    const char *scanObject(const char *next, const char *end);
    const char *scanObjectFacet(const char *next, const char *end);
    const char *scanObjectLine(const char *next, const char *end);

    std::uint64_t positionOf(const char *byte) const noexcept
    {
        return bytesSeen_ - static_cast<std::uint64_t>(chunkEnd_ - byte);
    }
    void closeStatement() noexcept;
    void noteNul(const char *start, const char *end) noexcept;
    void noteLength(std::uint64_t start, const char *last) noexcept;
    void beginValue(std::string_view name) noexcept;

    State state_ = State::Between;
    std::uint64_t bytesSeen_ = 0;
    const char *chunkEnd_ = nullptr; // the end of the bytes being fed
    std::vector<OpenStatement> open_;
    bool inPage_ = false; // objects on pages are ordinary statements

    std::string cutName_;         // Name: what earlier bytes held of it, or more than any known name's length of it
    std::uint64_t valueTail_ = 0; // Value: the last bytes, the newest lowest, to recognise the word of a macro
    char lastByte_ = 0;           // Quoted: the byte before the ones being fed
    std::string_view word_;       // Keyword, ObjectFacet: what is still to come of the word
    std::size_t objectDepth_ = 0; // statements open inside an embedded object
    std::uint64_t lineStart_ = 0; // Object: the position of this line's first byte
    bool isBlank_ = false;        // Object: only blanks have stood in this line, or in it before its facet or data

    bool chunkHasNul_ = false; // the bytes being fed do
    bool stringIsCut_ = false; // Quoted: a NUL byte was met
    std::size_t cutStrings_ = 0;
    std::uint64_t firstCut_ = 0;

    std::size_t droppedStatements_ = 0;
    std::uint64_t firstDropped_ = 0;
    std::uint64_t longestDropped_ = 0;
};

} // namespace mifhost

#endif
