#include "reader/header.h"

#include <algorithm>
#include <cstring>

#include "reader/host_memory.h"
#include "reader/source.h"
#include "reader/units.h"

namespace
{

constexpr char headerName[] = "<MIFFile";
constexpr size_t headerNameLength = sizeof(headerName) - 1;

// The number in [begin, end); end may be overwritten for the moment.
double parseVersion(const char *begin, char *end)
{
    const char after = *end;
    *end = '\0';
    const double version = mifParseNumber(begin);
    *end = after;
    return version;
}

// Keeps the comment whose `#` is at `position`, without it if there is no memory. Returns the end of its line. The
// white space before the comment's text does not pass the line's end: a bare `#` must not take the next line for its
// text.
char *takeComment(MifContext *context, char *position, char *end)
{
    ++position;
    while (position < end && mifIsWhiteSpace(*position) && !mifNewLine(*position)) {
        ++position;
    }
    char *lineEnd = mifFindLineEnd(position, end);
    char *comment = mifCopyBytes(context, position, static_cast<size_t>(lineEnd - position));
    mifFreeHeader(context);
    context->header.comment = comment;
    return lineEnd;
}

} // namespace

int mifMIFFile(MifContext *context)
{
    MifSourceState &source = context->source;
    char *begin = source.scanPosition;
    char *end = source.bufferEnd;
    const auto length = static_cast<size_t>(end - begin);
    if (length < headerNameLength || memcmp(begin, headerName, headerNameLength) != 0) {
        return 0;
    }
    auto *close = static_cast<char *>(memchr(begin, '>', length));
    if (close == nullptr) {
        return 0;
    }
    context->header.version = parseVersion(begin + headerNameLength, close);
    char *position = std::find_if_not(close + 1, end, mifIsWhiteSpace);
    if (position < end && *position == '#') {
        position = std::find_if_not(takeComment(context, position, end), end, mifIsWhiteSpace);
    }
    source.scanPosition = position;
    return 1;
}

void mifFreeHeader(MifContext *context)
{
    mifRelease(context, context->header.comment);
    context->header.comment = nullptr;
}
