#include "frames/imported_objects.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "frames/data_lines.h"
#include "frames/frames.h"
#include "reader/host_memory.h"
#include "reader/statement.h"

namespace
{

constexpr std::string_view endInset = "=EndInset";
constexpr uint32_t embeddedKind = 2;
constexpr size_t longestFacetName = 255;
constexpr size_t longestFileName = 1023;

// One run of the raw scan over a stretch. A line counts when the whole of it is there; what an unfinished one changed
// goes back to what it was at the line's start.
class ObjectScan
{
public:
    explicit ObjectScan(MifContext *context)
        : context_(context), frames_(context->frames),
          frame_(frames_.currentFrame != nullptr ? *frames_.currentFrame : frames_.unframed),
          position_(context->source.scanPosition), end_(context->source.bufferEnd)
    {
        beginLine();
    }

    char *run();

private:
    bool step();
    bool facet();
    bool data();
    bool marker();
    bool dataLine();
    bool plainLines();
    bool restOfLine();
    void ordinaryByte();
    void beginLine();
    void passLineEnd();
    bool atInsetEnd() const;
    char *handBack();
    char *lineEnd() const;

    MifContext *context_;
    MifFrameState &frames_;
    MifFrameRecord &frame_;
    char *position_;
    char *end_;
    bool ended_ = false; // by the end of the inset

    // What the line began with.
    char *line_ = nullptr;
    bool isStatementLine_ = false; // other text than blanks has come: a statement, and no line of the object's data
    MifObjectData savedObject_{};
    int32_t savedDepth_ = 0;
    uint32_t savedHexMode_ = 0;
};

char *ObjectScan::run()
{
    frames_.scanCut = 0;
    while (position_ < end_ && frames_.insetDepth != 0 && !ended_) {
        if (!step()) {
            return handBack();
        }
    }
    if (ended_) {
        return position_;
    }
    if (frames_.insetDepth != 0) {
        return handBack();
    }
    mifProcessEndTag(context_, 0);
    return position_;
}

// False when the stretch ends before the step does.
bool ObjectScan::step()
{
    if (*position_ == '=' && atInsetEnd()) {
        position_ = std::find_if_not(position_ + endInset.size(), end_, mifIsWhiteSpace);
        frames_.hexMode = 0;
        ended_ = true;
        return true;
    }
    if (!isStatementLine_) { // a statement's value may hold any of these
        switch (*position_) {
        case '=':
            return facet();
        case '&':
            return data();
        case '%':
            if (frame_.object.skipData != 0) {
                return restOfLine();
            }
            break;
        default:
            break;
        }
    }
    ordinaryByte();
    return true;
}

bool ObjectScan::atInsetEnd() const
{
    return static_cast<size_t>(end_ - position_) > endInset.size() &&
           memcmp(position_, endInset.data(), endInset.size()) == 0;
}

void ObjectScan::ordinaryByte()
{
    const char byte = *position_++;
    if (mifNewLine(byte)) {
        beginLine();
        return;
    }
    isStatementLine_ = isStatementLine_ || !mifIsWhiteSpace(byte);
    if (byte == '<') {
        ++frames_.insetDepth;
    } else if (byte == '>') {
        --frames_.insetDepth;
    }
}

void ObjectScan::beginLine()
{
    line_ = position_;
    isStatementLine_ = false;
    savedObject_ = frame_.object;
    savedDepth_ = frames_.insetDepth;
    savedHexMode_ = frames_.hexMode;
}

// The end of the line that the position is in: its line-end byte, or the end of the stretch.
char *ObjectScan::lineEnd() const
{
    return mifFindLineEnd(position_, end_);
}

void ObjectScan::passLineEnd()
{
    position_ = std::find_if_not(position_, end_, mifNewLine);
    beginLine();
}

// Passes over the rest of the line, brackets and all.
bool ObjectScan::restOfLine()
{
    position_ = lineEnd();
    if (position_ == end_) {
        return false;
    }
    passLineEnd();
    return true;
}

bool ObjectScan::facet()
{
    frames_.hexMode = 0;
    const char *name = position_ + 1;
    if (!restOfLine()) {
        return false;
    }
    if (frame_.object.facetSeen != 0) {
        frame_.object.laterFacetSeen = 1;
    } else {
        const char *nameEnd = std::find_if(name, static_cast<const char *>(position_), mifNewLine);
        mifRelease(context_, frame_.facetName);
        frame_.facetName =
            mifCopyBytes(context_, name, std::min(static_cast<size_t>(nameEnd - name), longestFacetName));
        frame_.object.facetSeen = 1;
    }
    savedObject_ = frame_.object;
    return true;
}

bool ObjectScan::data()
{
    MifObjectData &object = frame_.object;
    if (object.laterFacetSeen != 0) {
        object.skipData = 1;
    }
    if (object.skipData != 0) {
        return restOfLine();
    }
    if (position_ == line_ && object.dataStart != 0 && plainLines()) {
        return true;
    }
    if (end_ - position_ < 3) { // `&`, `%` and its character, or the end of the line
        return false;
    }
    ++position_;
    if (*position_ == '%' && object.percentSeen != 0) {
        ++position_;
    }
    if (*position_ == '%' && end_ - position_ > 1) {
        return marker();
    }
    return dataLine();
}

// The `&%` line of a facet: one character counts.
bool ObjectScan::marker()
{
    frame_.object.percentChar = static_cast<uint8_t>(position_[1]);
    frame_.object.percentSeen = 1;
    ++position_;
    return restOfLine();
}

bool ObjectScan::dataLine()
{
    MifObjectData &object = frame_.object;
    char *limit = lineEnd();
    if (object.dataStart == 0) {
        object.dataStart = mifPositionOf(context_, position_);
        object.kind = embeddedKind;
    }
    const char *read = position_;
    uint8_t byte = 0;
    while (mifInDataLine(read, limit)) {
        object.dataLength += mifDecodeData(read, end_, frames_.hexMode, byte) ? 1 : 0;
    }
    position_ += read - position_;
    if (position_ == end_) {
        return false;
    }
    if (mifNewLine(*position_)) {
        passLineEnd();
    }
    return true;
}

// The data lines from the position on, as far as none needs a closer look: most of an object's data are lines without
// escapes, whose bytes, or pairs of digits, need only be counted. False when there is no such line.
bool ObjectScan::plainLines()
{
    const char *stop = end_;
    const auto find = [&stop](const char *from, char byte) {
        return static_cast<const char *>(memchr(from, byte, static_cast<size_t>(stop - from)));
    };
    for (const char byte : {'\\', '=', '\r'}) {
        const char *found = find(position_, byte);
        stop = found != nullptr ? found : stop;
    }
    const char *line = position_;
    ptrdiff_t count = 0;
    const int shift = frames_.hexMode != 0 ? 1 : 0;
    while (stop - line > 1 && *line == '&' && line[1] != '%') {
        const char *close = find(line, '\n');
        if (close == nullptr) {
            break;
        }
        count += (close - line - 1) >> shift;
        line = close + 1;
    }
    if (line == position_) {
        return false;
    }
    frame_.object.dataLength += static_cast<int32_t>(count);
    position_ += line - position_;
    beginLine();
    return true;
}

// The unfinished line is scanned again when the rest of it has been read. At the document's end there is no rest: the
// line does not count, and the scan goes to the end of the buffer.
char *ObjectScan::handBack()
{
    frame_.object = savedObject_;
    frames_.insetDepth = savedDepth_;
    frames_.hexMode = savedHexMode_;
    frames_.scanCut = 1;
    return mifCarryOver(context_, line_);
}

// A name built up to its longest length; what comes after that is cut off.
class FileName
{
public:
    void set(std::string_view text)
    {
        length_ = 0;
        append(text);
    }

    void append(std::string_view text)
    {
        const size_t count = std::min(text.size(), longestFileName - length_);
        memcpy(text_ + length_, text.data(), count);
        length_ += count;
    }

    char *copy(MifContext *context) const
    {
        return mifCopyBytes(context, text_, length_);
    }

private:
    char text_[longestFileName];
    size_t length_ = 0;
};

// From a device-independent path, such as `<c\>images<c\>logo.gif`, to names with backslashes between.
FileName convertFileReference(std::string_view path)
{
    constexpr std::string_view codeEnd = "\\>";
    FileName name;
    while (path.find(codeEnd) != std::string_view::npos) {
        path.remove_prefix(path.front() == '<' ? 1 : 0);
        const bool isCode = path.size() > 1 && path[1] == '\\';
        if (isCode && path[0] == 'u') {
            name.set("..\\");
        } else if (!isCode || strchr("chrv", path[0]) == nullptr) {
            name.append(path.substr(0, path.find('<')));
            name.append("\\");
        }
        path.remove_prefix(path.find('>') + 1);
    }
    name.append(path);
    return name;
}

} // namespace

int mifImportObFileDI(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    MifFrameRecord *frame = context->frames.currentFrame;
    if (frame == nullptr) {
        return 1;
    }
    char *fileName = convertFileReference(value).copy(context);
    if (fileName == nullptr) {
        return 0;
    }
    mifRelease(context, frame->fileName);
    frame->fileName = fileName;
    frame->object.kind = 0;
    return 1;
}

char *mifProcessImportObject(MifContext *context)
{
    return ObjectScan(context).run();
}

char *mifBeginImportObject(MifContext *context, char *name)
{
    MifFrameState &frames = context->frames;
    const int32_t depthBefore = frames.insetDepth;
    frames.insetDepth = 1;
    context->source.scanPosition = name;
    char *end = mifProcessImportObject(context);
    if (end != name || context->source.carryLength == 0) {
        return end;
    }
    frames.scanCut = 0;
    frames.insetDepth = depthBefore;
    return nullptr;
}

void mifFreeImportObjects(MifContext *context)
{
    MifFrameState &frames = context->frames;
    while (MifFrameRecord *frame = frames.frameList.takeFirst()) {
        mifRelease(context, frame->facetName);
        mifRelease(context, frame->fileName);
        mifRelease(context, frame);
    }
    mifClearUnframed(context);
    frames.frameIDs.clear();
    frames.currentFrame = nullptr;
    frames.file.frame = nullptr;
}
