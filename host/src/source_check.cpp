#include "mifhost/source_check.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace mifhost
{

namespace
{

// The words that begin a macro. They count between statements and in values that are not quoted, there even within a
// longer word. The second ones are the words as valueTail_ holds them.
constexpr std::string_view defineWord = "define";
constexpr std::string_view includeWord = "include";

constexpr std::uint64_t asTail(std::string_view word)
{
    std::uint64_t tail = 0;
    for (const char byte : word) {
        tail = tail << 8 | static_cast<unsigned char>(byte);
    }
    return tail;
}

constexpr bool endsWith(std::uint64_t tail, std::string_view word)
{
    return (tail ^ asTail(word)) << (64 - 8 * word.size()) == 0;
}

constexpr std::string_view objectEnd = "EndInset";
constexpr std::string_view pageName = "Page";
constexpr std::string_view objectName = "ImportObject";

using ByteSet = std::array<bool, 256>;

constexpr ByteSet byteSet(std::string_view bytes)
{
    ByteSet set{};
    for (const char byte : bytes) {
        set[static_cast<unsigned char>(byte)] = true;
    }
    return set;
}

constexpr ByteSet whiteSpace = byteSet(" \t\n\v\f\r");
constexpr ByteSet nameEnds = byteSet(" \t\n\v\f\r>");
constexpr ByteSet lineEnds = byteSet("\n\r");
constexpr ByteSet dataEnds = byteSet("\n\r=");
constexpr ByteSet valueStops = byteSet("<>#`e"); // both macro words end in e

bool isIn(const ByteSet &set, char byte)
{
    return set[static_cast<unsigned char>(byte)];
}

// The first such byte, or end.
const char *findByte(char byte, const char *next, const char *end)
{
    const void *found = std::memchr(next, byte, static_cast<std::size_t>(end - next));
    return found != nullptr ? static_cast<const char *>(found) : end;
}

const char *findIn(const ByteSet &set, const char *next, const char *end)
{
    while (next != end && !isIn(set, *next)) {
        ++next;
    }
    return next;
}

} // namespace

void SourceCheck::feed(std::uint64_t position, std::span<const std::uint8_t> bytes)
{
    if (position > bytesSeen_ || position + bytes.size() <= bytesSeen_) {
        return;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(bytesSeen_ - position));
    const char *next = reinterpret_cast<const char *>(bytes.data());
    const char *const end = next + bytes.size();
    chunkEnd_ = end;
    bytesSeen_ += bytes.size();
    chunkHasNul_ = findByte('\0', next, end) != end; // hardly ever
    while (next != end) {
        next = scan(next, end);
    }
}

const char *SourceCheck::scan(const char *next, const char *end)
{
    switch (state_) {
    case State::Between:
        return scanBetween(next, end);
    case State::Name:
        return scanName(next, end);
    case State::Value:
        return scanValue(next, end);
    case State::Quoted:
        return scanQuoted(next, end);
    case State::Line:
        return scanLine(next, end);
    case State::Keyword:
        return scanWord(next, end, State::Macro, State::Line);
    case State::Macro:
        return scanMacro(next, end);
    case State::Object:
        return scanObject(next, end);
    case State::ObjectFacet:
        return scanObjectFacet(next, end);
    case State::ObjectData:
    case State::ObjectRest:
        return scanObjectLine(next, end);
    }
    return end;
}

const char *SourceCheck::scanBetween(const char *next, const char *end)
{
    for (; next != end; ++next) {
        if (isIn(whiteSpace, *next)) {
            continue;
        }
        switch (*next) {
        case '<':
            open_.push_back({static_cast<std::uint32_t>(positionOf(next)) & 0x7FFFFFFFU, 0});
            cutName_.clear();
            state_ = State::Name;
            return scanName(next + 1, end);
        case '>':
            closeStatement();
            break;
        case 'd':
        case 'i':
            word_ = *next == 'd' ? defineWord : includeWord;
            word_.remove_prefix(1);
            state_ = State::Keyword;
            return next + 1;
        default:
            state_ = State::Line;
            return scanLine(next + 1, end);
        }
    }
    return next;
}

const char *SourceCheck::scanName(const char *next, const char *end)
{
    const char *nameEnd = findIn(nameEnds, next, end);
    std::string_view name(next, static_cast<std::size_t>(nameEnd - next));
    if (nameEnd == end || !cutName_.empty()) {
        // One byte more than the longest known name is enough to tell a longer one from it.
        const std::size_t room = objectName.size() + 1 - std::min(cutName_.size(), objectName.size() + 1);
        name = cutName_.append(name.substr(0, room));
    }
    if (nameEnd == end) {
        return end;
    }
    if (*nameEnd == '>') {
        noteLength(open_.back().position, nameEnd);
        open_.pop_back();
        state_ = State::Between;
        return nameEnd + 1;
    }
    beginValue(name);
    return state_ == State::Value ? scanValue(nameEnd + 1, end) : scanObject(nameEnd, end);
}

void SourceCheck::beginValue(std::string_view name) noexcept
{
    state_ = State::Value;
    valueTail_ = 0;
    if (name == pageName) {
        open_.back().isPage = 1;
        inPage_ = true;
    } else if (name == objectName && !inPage_) {
        state_ = State::Object;
        lineStart_ = open_.back().position;
        isBlank_ = false;
    }
}

const char *SourceCheck::scanValue(const char *next, const char *end)
{
    std::uint64_t tail = valueTail_; // a local one stays in a register
    for (; next != end; ++next) {
        tail = tail << 8 | static_cast<unsigned char>(*next);
        if (!isIn(valueStops, *next)) {
            continue;
        }
        switch (*next) {
        case '<':
            noteLength(open_.back().position, next);
            state_ = State::Between;
            return next;
        case '>':
            noteLength(open_.back().position, next);
            closeStatement();
            state_ = State::Between;
            return next + 1;
        case '#':
            noteLength(open_.back().position, next);
            state_ = State::Line;
            return next + 1;
        case '`':
            lastByte_ = '`';
            state_ = State::Quoted;
            stringIsCut_ = false;
            return scanQuoted(next + 1, end);
        default:
            if (endsWith(tail, defineWord) || endsWith(tail, includeWord)) {
                state_ = State::Macro;
                return next + 1;
            }
        }
    }
    valueTail_ = tail;
    return next;
}

// Looks for a NUL byte in a piece of a string.
void SourceCheck::noteNul(const char *start, const char *end) noexcept
{
    const char *const nul = findByte('\0', start, end);
    if (nul == end || stringIsCut_) {
        return;
    }
    stringIsCut_ = true;
    if (cutStrings_++ == 0) {
        firstCut_ = positionOf(nul);
    }
}

const char *SourceCheck::scanQuoted(const char *next, const char *end)
{
    while (next != end) {
        const auto *close = static_cast<const char *>(std::memchr(next, '>', static_cast<std::size_t>(end - next)));
        if (chunkHasNul_) {
            noteNul(next, close != nullptr ? close : end);
        }
        if (close == nullptr) {
            lastByte_ = end[-1];
            return end;
        }
        const char before = close == next ? lastByte_ : close[-1];
        next = close + 1;
        lastByte_ = '>';
        if (before != '\\') {
            noteLength(open_.back().position, close);
            closeStatement();
            state_ = State::Between;
            return next;
        }
    }
    return next;
}

const char *SourceCheck::scanLine(const char *next, const char *end)
{
    const char *lineEnd = findByte('\r', next, findByte('\n', next, end));
    if (lineEnd != end) {
        state_ = State::Between;
    }
    return lineEnd;
}

// Compares the bytes with the rest of word_ and goes on in one state when it is there and in the other when it is not.
const char *SourceCheck::scanWord(const char *next, const char *end, State found, State missed)
{
    while (next != end) {
        if (*next != word_.front()) {
            state_ = missed;
            return next;
        }
        word_.remove_prefix(1);
        ++next;
        if (word_.empty()) {
            state_ = found;
            return next;
        }
    }
    return next;
}

const char *SourceCheck::scanMacro(const char *next, const char *end)
{
    next = std::find(next, end, ')');
    if (next == end) {
        return end;
    }
    state_ = State::Between;
    return next + 1;
}

// In an embedded object the reader counts brackets, quoted or not, and passes over facet and data lines, which begin
// behind nothing but blanks. The object's end may stand anywhere.
const char *SourceCheck::scanObject(const char *next, const char *end)
{
    for (; next != end; ++next) {
        if (isIn(lineEnds, *next)) {
            noteLength(lineStart_, next);
            lineStart_ = positionOf(next) + 1;
            isBlank_ = true;
        } else if (*next == '=') {
            word_ = objectEnd;
            state_ = State::ObjectFacet;
            return next + 1;
        } else if (*next == '&' && isBlank_) {
            state_ = State::ObjectData;
            return next + 1;
        } else if (*next == '>' && objectDepth_ == 0) {
            noteLength(lineStart_, next);
            closeStatement();
            state_ = State::Between;
            return next + 1;
        } else {
            objectDepth_ += *next == '<' ? 1 : 0;
            objectDepth_ -= *next == '>' ? 1 : 0;
            isBlank_ = isBlank_ && isIn(whiteSpace, *next);
        }
    }
    return next;
}

const char *SourceCheck::scanObjectFacet(const char *next, const char *end)
{
    next = scanWord(next, end, State::Between, isBlank_ ? State::ObjectRest : State::Object);
    if (state_ == State::Between) {
        objectDepth_ = 0; // the brackets of the object's statements need not balance
    }
    return next;
}

// A data line ends with its line or with the '=' of a facet.
const char *SourceCheck::scanObjectLine(const char *next, const char *end)
{
    next = findIn(state_ == State::ObjectData ? dataEnds : lineEnds, next, end);
    if (next != end) {
        state_ = State::Object;
    }
    return next;
}

void SourceCheck::closeStatement() noexcept
{
    if (open_.empty()) {
        return;
    }
    if (open_.back().isPage != 0) {
        inPage_ = false;
    }
    open_.pop_back();
}

// What must fit in the reader's buffer as a whole stands from the position start to the byte at last.
void SourceCheck::noteLength(std::uint64_t start, const char *last) noexcept
{
    const std::uint64_t length = positionOf(last) + 1 - start;
    if (length <= maximumStatement) {
        return;
    }
    if (droppedStatements_ == 0) {
        firstDropped_ = start;
    }
    ++droppedStatements_;
    longestDropped_ = std::max(longestDropped_, length);
}

} // namespace mifhost
