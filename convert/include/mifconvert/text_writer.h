// The text of a document, a paragraph to a line.
#ifndef MIFCONVERT_TEXT_WRITER_H
#define MIFCONVERT_TEXT_WRITER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "mifhost/token.h"

namespace mifconvert
{

// Appends what of a document's tokens is text, in UTF-8. Where the stream is the extended one, the cells of a row stand
// on one line with tabs between, and a note after the paragraph, or the table, that refers to it: `[1] ...`, with `[1]`
// in its place. Notes are kept till then.
class TextWriter
{
public:
    // out  the text is appended here; it must live as long as the writer
    explicit TextWriter(std::string &out) : out_(out) {}

    void write(const mifhost::Token &token);

    // Appends the notes that are left, those without a reference last.
    void finish();

private:
    struct Note {
        std::size_t number = 0; // in the order of the references; 0 before the first
        bool isWhole = false;
        std::string text;
    };

    void put(const mifhost::Text &text);
    void put(const mifhost::Number &number);
    void put(const mifhost::Tab &tab);
    void put(const mifhost::LineBreak &lineBreak);
    void put(const mifhost::ParaEnd &end);
    void put(const mifhost::NoteBegin &note);
    void put(const mifhost::NoteEnd &end);
    void put(const mifhost::NoteReference &reference);
    void put(const mifhost::Row &row);
    void put(const mifhost::Cell &cell);
    void put(const mifhost::CellEnd &end);
    void put(const mifhost::TableOpen &table);
    void put(const mifhost::TitleBegin &begin);
    void put(const mifhost::BoxBegin &box);
    void put(const mifhost::TableClose &end);
    template <typename Other>
    void put(const Other & /*other*/)
    {
    }

    std::string &target();
    void beginBlock();
    void endRow();
    void writeNotes();
    void writeNote(Note &note);

    std::string &out_;
    std::map<std::int32_t, Note> notes_;
    std::vector<std::int32_t> openNotes_; // the innermost last
    std::vector<std::int32_t> waiting_;   // notes that were referred to and are not written
    std::size_t references_ = 0;
    bool rowIsOpen_ = false;
    bool cellIsOpen_ = false;
    bool isFirstCell_ = false;
    bool isMidLine_ = false;
    bool lineEnded_ = false; // in a cell, where the next text begins a line that is none
};

} // namespace mifconvert

#endif
