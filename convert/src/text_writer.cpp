#include "mifconvert/text_writer.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace mifconvert
{

void TextWriter::write(const mifhost::Token &token)
{
    std::visit([this](const auto &kind) { put(kind); }, token);
}

// Where text goes now. In a cell the ends of lines are blanks.
std::string &TextWriter::target()
{
    std::string &target = openNotes_.empty() ? out_ : notes_[openNotes_.back()].text;
    if (lineEnded_ && openNotes_.empty()) {
        lineEnded_ = false;
        target += ' ';
    }
    isMidLine_ = isMidLine_ || openNotes_.empty();
    return target;
}

void TextWriter::put(const mifhost::Text &text)
{
    target() += text.bytes;
}

void TextWriter::put(const mifhost::Number &number)
{
    target() += number.text;
}

void TextWriter::put(const mifhost::Tab & /*tab*/)
{
    target() += '\t';
}

void TextWriter::put(const mifhost::LineBreak & /*lineBreak*/)
{
    if (cellIsOpen_ && openNotes_.empty()) {
        lineEnded_ = true;
    } else {
        target() += '\n';
        isMidLine_ = isMidLine_ && !openNotes_.empty();
    }
}

void TextWriter::put(const mifhost::ParaEnd & /*end*/)
{
    if (openNotes_.empty() && !rowIsOpen_) {
        writeNotes();
    }
}

void TextWriter::put(const mifhost::NoteBegin &note)
{
    openNotes_.push_back(note.id);
}

void TextWriter::put(const mifhost::NoteEnd & /*end*/)
{
    if (!openNotes_.empty()) {
        notes_[openNotes_.back()].isWhole = true;
        openNotes_.pop_back();
    }
}

void TextWriter::put(const mifhost::NoteReference &reference)
{
    Note &note = notes_[reference.id];
    if (note.number == 0) {
        note.number = ++references_;
        waiting_.push_back(reference.id);
    }
    target() += '[' + std::to_string(note.number) + ']';
}

void TextWriter::put(const mifhost::Row & /*row*/)
{
    endRow();
    rowIsOpen_ = true;
    isFirstCell_ = true;
}

void TextWriter::put(const mifhost::Cell & /*cell*/)
{
    lineEnded_ = false;
    if (!std::exchange(isFirstCell_, false)) {
        target() += '\t';
    }
    cellIsOpen_ = true;
}

void TextWriter::put(const mifhost::CellEnd & /*end*/)
{
    lineEnded_ = false;
    cellIsOpen_ = false;
}

// What is a table's own, or a box's, does not go on with the line that anchors it.
void TextWriter::beginBlock()
{
    endRow();
    if (isMidLine_ && openNotes_.empty()) {
        out_ += '\n';
        isMidLine_ = false;
    }
}

void TextWriter::put(const mifhost::TableOpen & /*table*/)
{
    beginBlock();
}

void TextWriter::put(const mifhost::TitleBegin & /*begin*/)
{
    beginBlock();
}

void TextWriter::put(const mifhost::BoxBegin & /*box*/)
{
    beginBlock();
}

void TextWriter::put(const mifhost::TableClose & /*end*/)
{
    endRow();
    if (openNotes_.empty()) {
        writeNotes();
    }
}

void TextWriter::endRow()
{
    lineEnded_ = false;
    cellIsOpen_ = false;
    if (std::exchange(rowIsOpen_, false)) {
        target() += '\n';
        isMidLine_ = isMidLine_ && !openNotes_.empty();
    }
}

// Notes that come later in the document go on waiting.
void TextWriter::writeNotes()
{
    const auto isReady = [this](std::int32_t id) {
        Note &note = notes_[id];
        if (!note.isWhole) {
            return false;
        }
        writeNote(note);
        return true;
    };
    waiting_.erase(std::remove_if(waiting_.begin(), waiting_.end(), isReady), waiting_.end());
}

void TextWriter::writeNote(Note &note)
{
    out_ += '[' + std::to_string(note.number) + "] " + note.text;
    if (!out_.ends_with('\n')) {
        out_ += '\n';
    }
    note.text.clear();
    note.isWhole = false; // it is written
}

void TextWriter::finish()
{
    endRow();
    writeNotes();
    for (auto &[id, note] : notes_) {
        if (!note.text.empty()) {
            note.number = note.number != 0 ? note.number : ++references_;
            writeNote(note);
        }
    }
}

} // namespace mifconvert
