#include "reader/drive/scanner.h"

#include <cstring>
#include <string_view>

#include "formats/catalog.h"
#include "formats/extended_formats.h"
#include "formats/fonts.h"
#include "formats/paragraphs.h"
#include "frames/extended_objects.h"
#include "frames/imported_objects.h"
#include "reader/drive/statement_table.h"
#include "reader/drive/suspension.h"
#include "reader/losses.h"
#include "reader/source.h"
#include "reader/statement.h"
#include "reader/tokens.h"
#include "tables/columns.h"
#include "tables/tables.h"

namespace
{

// MIF's own macro and include statements are not carried out, only reported.
constexpr std::string_view defineWord = "define";
constexpr std::string_view includeWord = "include";
constexpr std::string_view defineNotice = "define macro statement encountered";
constexpr std::string_view includeNotice = "include statment encountered"; // misspelt, as hosts know it

// What statements in a definition become, in the plain stream and in the extended one.
constexpr MifStatementEntry storing(MifStatementHandler handler)
{
    return {"", handler, nullptr, nullptr, nullptr, 0, nullptr};
}

constexpr MifStatementEntry storedInParagraph[] = {storing(mifPgfStoreInformation), storing(mifStoreParagraphProperty)};
constexpr MifStatementEntry storedInFont[] = {storing(mifFontStoreInformation), storing(mifStoreFontProperty)};

// While a format's definition is being stored, its statements are kept instead of being carried out. Those of a
// replayed table are carried out all the same, like those of any other cell.
template <bool isExtended>
const MifStatementEntry &rowToOpen(const MifContext *context, const MifStatementEntry &row)
{
    const MifFormatState &formats = context->formats;
    if (formats.inPgf != 0 && mifIsDefining(context, formats.pgfCatalog) && (row.traits & TRAIT_CONTAINER) == 0) {
        return storedInParagraph[isExtended];
    }
    if (formats.inFont != 0 && mifIsDefining(context, formats.fontCatalog)) {
        return storedInFont[isExtended];
    }
    return row;
}

// Opens a statement and raises its inside flag. Returns false when memory is exhausted.
template <bool isExtended>
bool mifProcessStartTag(MifContext *context, const MifStatementEntry &row, char *valueStart)
{
    MifScannerState &scanner = context->scanner;
    const MifStatementEntry &opened = rowToOpen<isExtended>(context, row);
    MifStatement *statement = mifPushStatement<isExtended>(context, opened, valueStart);
    if (statement == nullptr) {
        return false;
    }
    if constexpr (isExtended) {
        static_cast<MifLocatedStatement *>(statement)->position =
            mifLossPosition(context, context->source.scanPosition);
    }
    scanner.row = &row;
    if ((row.traits & TRAIT_FLAG) != 0) {
        uint32_t &flag = row.insideFlag(*context);
        scanner.insideFlagBefore = flag;
        flag = 1;
    } else if ((row.traits & TRAIT_TABLE) != 0) {
        mifNoteTableStart(context);
    }
    return true;
}

enum class Step {
    next, // the step is complete; go on at the scan position
    stop, // go back to the fill cycle
    fail  // stop, and the document with it
};

// One run over the stretch. Each step begins at the scan position and leaves it after what it has taken up.
//
// The open statements are a stack of nodes. A start tag pushes one, which holds the statement's row and, once it is
// found, the statement's value; the next step is either the `>` after that value or the `<` of a nested statement,
// which takes the value away from the one around it. At a `>` the innermost statement's handler runs while its node is
// still on the stack, since that is where it finds its value, and the node is popped. So inner statements are carried
// out before those around them, and a handler learns what it stands in from the flags that the open statements have
// raised. The stack lives in the context and outlasts stretches and calls: a step that the stretch cuts is taken back
// whole, its node and its flag included, and comes again with more text after it. A replayed table's statements are
// pushed on top of those of the text that anchors it.
//
// The extended stream has a few steps of its own: statements whose beginning counts, the lines of an object, and what
// is given up and lost. The plain one pays nothing for them.
template <bool isExtended>
class Scan
{
public:
    explicit Scan(MifContext *context) : context_(context), source_(context->source) {}

    int run();

private:
    Step step();
    Step startTag();
    Step beginObject(char *name);
    Step goOnInObject();
    Step leaveObject(char *end);
    Step value(char *cursor);
    Step quotedValue(char *cursor);
    Step closeValue(char *close);
    Step cutValue(char *cut);
    Step undoStartTag();
    Step endTag();
    Step comment();
    Step macro(std::string_view word, std::string_view notice);
    Step strayText();
    Step objectLine();
    Step whiteSpaceAndComment();
    Step giveBack();
    void begin();
    void writeRowLayout();
    void noteLossOf(const char *step);

    bool atWord(const char *cursor, std::string_view word) const;
    bool atCutWord(const char *cursor, std::string_view word) const;
    char *findByte(char *from, char byte) const;

    MifContext *context_;
    MifSourceState &source_;
};

template <bool isExtended>
int Scan<isExtended>::run()
{
    // An object is cut by a stretch's end alone, so that a scan can only begin in one.
    if (context_->frames.scanCut != 0 && !mifOutputStopped(context_->output) && goOnInObject() != Step::next) {
        return 1;
    }
    for (;;) {
        if (mifOutputStopped(context_->output)) {
            context_->output.outputFull = 1;
            return 1;
        }
        const Step done = step();
        if (done != Step::next) {
            return done == Step::stop;
        }
    }
}

template <bool isExtended>
Step Scan<isExtended>::step()
{
    if (*source_.scanPosition == '<') { // these two are most steps
        return startTag();
    }
    if (*source_.scanPosition == '>') { // of the document, or the one after the text
        return source_.scanPosition != source_.bufferEnd ? endTag() : Step::stop;
    }
    switch (*source_.scanPosition) {
    case '#':
        return comment();
    case 'd':
        return macro(defineWord, defineNotice);
    case 'i':
        return macro(includeWord, includeNotice);
    default:
        if (mifIsWhiteSpace(*source_.scanPosition)) {
            return whiteSpaceAndComment();
        }
        return strayText();
    }
}

// The stretch ends inside the step: it is scanned again, from its first byte, when more text has been read. At the end
// of the document there is none, and the rest is dropped.
template <bool isExtended>
Step Scan<isExtended>::giveBack()
{
    if constexpr (isExtended) {
        noteLossOf(source_.scanPosition);
    }
    source_.scanPosition = mifCarryOver(context_, source_.scanPosition);
    return Step::stop;
}

// The first such byte from `from` on, or null.
template <bool isExtended>
char *Scan<isExtended>::findByte(char *from, char byte) const
{
    return static_cast<char *>(memchr(from, byte, static_cast<size_t>(source_.bufferEnd - from)));
}

template <bool isExtended>
bool Scan<isExtended>::atWord(const char *cursor, std::string_view word) const
{
    return static_cast<size_t>(source_.bufferEnd - cursor) >= word.size() &&
           memcmp(cursor, word.data(), word.size()) == 0;
}

// Whether the stretch ends inside the word.
template <bool isExtended>
bool Scan<isExtended>::atCutWord(const char *cursor, std::string_view word) const
{
    const auto length = static_cast<size_t>(source_.bufferEnd - cursor);
    return length < word.size() && memcmp(cursor, word.data(), length) == 0;
}

template <bool isExtended>
Step Scan<isExtended>::startTag()
{
    char *nameStart = source_.scanPosition + 1;
    char *nameEnd = mifFindNameEnd(nameStart);
    context_->scanner.nameStart = nameStart;
    context_->scanner.nameEnd = nameEnd;
    if (nameEnd == source_.bufferEnd) {
        return giveBack();
    }
    if (*nameEnd == '>') {
        // `<Name>` has neither value nor content: no statement is opened.
        if constexpr (isExtended) {
            const MifStatementEntry &row = mifFindStatement(context_, nameStart, nameEnd);
            if ((row.traits & TRAIT_BARE) != 0) {
                row.handler(context_);
            }
        }
        source_.scanPosition = nameEnd + 1;
        return Step::next;
    }
    if (!mifProcessStartTag<isExtended>(context_, mifFindStatement(context_, nameStart, nameEnd), nameEnd + 1)) {
        return Step::fail;
    }
    if ((context_->scanner.row->traits & TRAIT_OBJECT) != 0 && context_->pages.inPage == 0) {
        // In the extended stream its lines are steps like all others.
        return isExtended ? cutValue(mifEatWhiteSpace(nameEnd + 1)) : beginObject(nameStart);
    }
    if constexpr (!isExtended) {
        writeRowLayout();
    }
    return value(nameEnd + 1);
}

// An imported object is scanned raw, from the name of its start tag.
template <bool isExtended>
Step Scan<isExtended>::beginObject(char *name)
{
    char *start = source_.scanPosition;
    char *end = mifBeginImportObject(context_, name);
    if (end == nullptr) {
        source_.scanPosition = start; // without its `<` the object's first line would be stray text
        return undoStartTag();
    }
    return leaveObject(end);
}

// The raw scan goes on where a stretch has ended inside it, or at further data lines.
template <bool isExtended>
Step Scan<isExtended>::goOnInObject()
{
    return leaveObject(mifProcessImportObject(context_));
}

template <bool isExtended>
Step Scan<isExtended>::leaveObject(char *end)
{
    source_.scanPosition = end;
    return end != source_.bufferEnd && source_.carryLength == 0 ? Step::next : Step::stop;
}

// From the start of a value, as long as no backquote has come.
template <bool isExtended>
Step Scan<isExtended>::value(char *cursor)
{
    for (cursor = mifEatWhiteSpace(cursor);; ++cursor) {
        if (!mifByteIs(*cursor, BYTE_STOPS_VALUE)) {
            continue;
        }
        switch (*cursor) {
        case '`':
            return quotedValue(cursor);
        case '>':
            return cursor != source_.bufferEnd ? closeValue(cursor) : undoStartTag();
        case '<':
        case '#':
            return cutValue(cursor);
        default:
            if (atWord(cursor, defineWord) || atWord(cursor, includeWord)) {
                return cutValue(cursor);
            }
        }
    }
}

// After a backquote only a `>` ends the value, and not one with a backslash before it. The quote's own end ends
// nothing.
template <bool isExtended>
Step Scan<isExtended>::quotedValue(char *cursor)
{
    while ((cursor = findByte(cursor, '>')) != nullptr) {
        if (cursor[-1] != '\\') {
            return closeValue(cursor);
        }
        ++cursor;
    }
    return undoStartTag();
}

// The end tag, which is the next step, stands right after its value.
template <bool isExtended>
Step Scan<isExtended>::closeValue(char *close)
{
    MifStatement *statement = context_->scanner.statementStack;
    char *valueEnd = close - 1;
    while (valueEnd >= statement->valueStart && *valueEnd == ' ') {
        --valueEnd;
    }
    statement->valueEnd = valueEnd;
    begin();
    source_.scanPosition = close;
    return Step::next;
}

// A nested statement, a comment or a macro inside the value: the statement stays open but has no value.
template <bool isExtended>
Step Scan<isExtended>::cutValue(char *cut)
{
    context_->scanner.statementStack->valueStart = nullptr;
    begin();
    source_.scanPosition = cut;
    return Step::next;
}

// The start tag is complete and will not be undone. A statement that is being stored has no beginning.
template <bool isExtended>
void Scan<isExtended>::begin()
{
    if constexpr (isExtended) {
        const MifStatementEntry &row = *context_->scanner.statementStack->row;
        if ((row.traits & TRAIT_BEGINNING) != 0) {
            row.beginning(context_);
        }
        writeRowLayout();
    }
}

// The layout of a table's rows waits for the first statement in one.
template <bool isExtended>
void Scan<isExtended>::writeRowLayout()
{
    const MifTableState &tables = context_->tables;
    if (tables.inRow != 0 && tables.rowLayoutPending != 0) {
        mifWriteRowLayout(context_);
    }
}

// Notes what is lost when a step is given back that the rest of the buffer does not hold: at the document's end, and
// when the buffer is full.
template <bool isExtended>
void Scan<isExtended>::noteLossOf(const char *step)
{
    if (!mifMoreToRead(context_)) {
        if (*step == '<') {
            mifNoteLoss(context_, MIF_LOSS_END, mifLossPosition(context_, step)); // and not those around it
        }
    } else if (source_.bufferEnd - step == sourceBufferSize) {
        const bool isComment = *step == '#' || *step == 'd' || *step == 'i';
        const int32_t position = mifLossPosition(context_, step);
        int32_t &givenUpTo = context_->extension.givenUpTo;
        if (position != givenUpTo) { // else it is the rest of what was given up
            mifNoteLoss(context_, isComment ? MIF_LOSS_COMMENT : MIF_LOSS_STATEMENT, position);
        }
        givenUpTo = position + sourceBufferSize;
    }
}

// The stretch ends inside the value: the statement is opened anew after the next read, so its flag must be as before.
template <bool isExtended>
Step Scan<isExtended>::undoStartTag()
{
    const MifScannerState &scanner = context_->scanner;
    if ((scanner.row->traits & TRAIT_FLAG) != 0) {
        scanner.row->insideFlag(*context_) = scanner.insideFlagBefore;
    }
    mifProcessEndTag(context_, 0);
    return giveBack();
}

template <bool isExtended>
Step Scan<isExtended>::endTag()
{
    mifProcessEndTag(context_, 1);
    ++source_.scanPosition;
    if constexpr (isExtended) {
        mifTellRefusals(context_);
    }
    const MifReplayState &replay = context_->replay;
    if (replay.suspendPending != 0) {
        mifSuspendCurrentBuffer(context_);
        return Step::stop;
    }
    if (replay.restorePending != 0 && replay.readingStretch != 0) {
        mifRestoreCurrentBuffer(context_);
        return Step::stop;
    }
    return whiteSpaceAndComment();
}

// The white space and the comment that may follow a statement.
template <bool isExtended>
Step Scan<isExtended>::whiteSpaceAndComment()
{
    source_.scanPosition = mifEatWhiteSpace(source_.scanPosition);
    return *source_.scanPosition == '#' ? comment() : Step::next;
}

template <bool isExtended>
Step Scan<isExtended>::comment()
{
    if constexpr (isExtended) {
        if (mifMoreToRead(context_) && mifFindLineEnd(source_.scanPosition, source_.bufferEnd) == source_.bufferEnd) {
            noteLossOf(source_.scanPosition);
        }
    }
    mifSkipComments(context_);
    return source_.carryLength == 0 ? Step::next : Step::stop;
}

// A macro that the stretch's end cuts is given back whole. Its notice comes when it is done with: at its end, at the
// document's end, or when it is as long as the buffer, so that the next read gives it up.
template <bool isExtended>
Step Scan<isExtended>::macro(std::string_view word, std::string_view notice)
{
    char *cursor = source_.scanPosition;
    if (atCutWord(cursor, word)) {
        return giveBack();
    }
    if (!atWord(cursor, word)) {
        return strayText();
    }
    char *close = findByte(cursor, ')');
    if (close != nullptr || !mifMoreToRead(context_) || source_.bufferEnd - cursor == sourceBufferSize) {
        mifWriteText(context_, notice.data(), notice.size());
    }
    if (close == nullptr) {
        return giveBack();
    }
    source_.scanPosition = close + 1;
    return whiteSpaceAndComment();
}

// Text outside of every value is ignored up to the end of its line: it becomes a comment, which stays one when the
// stretch's end cuts it. Lines of an imported object's data are the exception.
template <bool isExtended>
Step Scan<isExtended>::strayText()
{
    const MifFrameState &frames = context_->frames;
    const char byte = *source_.scanPosition;
    if ((byte == '=' || byte == '&') && frames.inImportObject != 0 && frames.insetDepth != 0 &&
        context_->pages.inPage == 0) {
        return isExtended ? objectLine() : goOnInObject();
    }
    *source_.scanPosition = '#';
    return comment();
}

// A line of an object's data, which counts when the whole of it is there.
template <bool isExtended>
Step Scan<isExtended>::objectLine()
{
    char *lineEnd = mifFindLineEnd(source_.scanPosition, source_.bufferEnd);
    if (lineEnd == source_.bufferEnd) {
        return giveBack();
    }
    source_.scanPosition = mifTakeObjectLine(context_, lineEnd);
    return whiteSpaceAndComment();
}

} // namespace

int mifProcessBuffer(MifContext *context)
{
    return context->extension.version != 0 ? Scan<true>(context).run() : Scan<false>(context).run();
}
