// The text of a document, a paragraph to a line.
#ifndef MIFCONVERT_TEXT_WRITER_H
#define MIFCONVERT_TEXT_WRITER_H

#include <string>
#include <variant>

#include "mifhost/charset.h"
#include "mifhost/token.h"

namespace mifconvert
{

// Appends what of a document's tokens is text, in UTF-8.
class TextWriter
{
public:
    // charset  converts the document's text
    // out      the text is appended here; both must live as long as the writer
    TextWriter(mifhost::TextConverter &charset, std::string &out) : charset_(charset), out_(out) {}

    void write(const mifhost::Token &token)
    {
        if (const auto *text = std::get_if<mifhost::Text>(&token)) {
            charset_.append(text->bytes, out_);
        } else if (std::holds_alternative<mifhost::Tab>(token)) {
            out_ += '\t';
        } else if (std::holds_alternative<mifhost::LineBreak>(token)) {
            out_ += '\n';
        }
    }

private:
    mifhost::TextConverter &charset_;
    std::string &out_;
};

} // namespace mifconvert

#endif
