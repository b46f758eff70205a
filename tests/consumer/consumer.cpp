// Prints the text of a document, as mifread does of the plain stream.
#include <iostream>
#include <variant>

#include <mifhost/mifhost.h>

int main(int, char **arguments)
{
    mifhost::FileStream stream(arguments[1]);
    mifhost::Document document(stream, {.form = mifhost::TokenForm::Plain});
    std::string text;
    while (const mifhost::Token *token = document.next()) {
        if (const auto *run = std::get_if<mifhost::Text>(token)) {
            text += run->bytes;
        } else if (std::holds_alternative<mifhost::Tab>(*token)) {
            text += '\t';
        } else if (std::holds_alternative<mifhost::LineBreak>(*token)) {
            text += '\n';
        }
    }
    std::cout << text;
}
