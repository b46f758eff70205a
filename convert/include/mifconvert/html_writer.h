// A document as a page.
#ifndef MIFCONVERT_HTML_WRITER_H
#define MIFCONVERT_HTML_WRITER_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "mifconvert/html_fonts.h"
#include "mifconvert/html_page.h"
#include "mifconvert/html_style.h"
#include "mifconvert/html_table.h"
#include "mifconvert/html_tabs.h"
#include "mifhost/charset.h"
#include "mifhost/fonts.h"
#include "mifhost/token.h"

namespace mifconvert
{

// Writes the tokens of one document as one page that looks like it. Tokens may come in any order. What is kept back
// between two tokens is bounded; all else can be taken from the output at any time.
class HtmlWriter
{
public:
    // Appends what shows a frame to the output: elements that may stand in a line of text.
    using ShowFrame = std::function<void(const mifhost::Frame &)>;

    // title      of the page, in UTF-8: the name of the document's file, as a rule
    // fonts      the document's fonts
    // charset    converts the document's text
    // showFrame  called for each frame, perhaps some tokens later
    // out        what the page is appended to
    // Fonts, charset and out must live as long as the writer.
    HtmlWriter(std::string title, const mifhost::FontRegistry &fonts, mifhost::TextConverter &charset,
               ShowFrame showFrame, std::string &out);

    // Appends what the token adds to the page.
    void write(const mifhost::Token &token);

    // Appends the end of the page.
    void finish();

private:
    void put(const mifhost::Text &text);
    void put(const mifhost::ParaFormat &format);
    void put(const mifhost::TabStops &tabStops);
    void put(const mifhost::Tab &tab);
    void put(const mifhost::Attribute &attribute);
    void put(const mifhost::TableRow &row);
    void put(const mifhost::TableEnd &end);
    void put(const mifhost::CellEnd &end);
    void put(const mifhost::ParaEnd &end);
    void put(const mifhost::LineBreak &lineBreak);
    void put(const mifhost::Font &font);
    void put(const mifhost::PageSetup &page);
    void put(const mifhost::LineSpacing &spacing);
    void put(const mifhost::TextColor &color);
    void put(const mifhost::Frame &frame);
    void put(const mifhost::Charset &charset);
    template <typename Other>
    void put(const Other & /*other*/)
    {
    }

    // A tab or a frame that came before its paragraph's formats did.
    struct Leader {
        bool isTab = false;
        std::string id;
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        std::uint32_t kind = 0;
    };

    void beginPage(const mifhost::Token *first);
    void writeLineBreak();
    void writeFrame(const mifhost::Frame &frame);
    void addLeader(Leader leader);
    void writeLeaders();
    void openParagraph();
    void closeParagraph();
    void openRun();
    void closeRun();

    std::string title_;
    mifhost::TextConverter &charset_;
    ShowFrame showFrame_;
    std::string &out_;
    FontStyles fonts_;
    PageLayout page_;
    HtmlTable table_;
    TabLine line_;

    // The formats in force.
    mifhost::ParaFormat paragraph_{};
    mifhost::Spacing spacing_ = mifhost::Spacing::Single;
    CharacterFormat characters_;

    // The paragraph that is open.
    LineEdges edges_;
    CharacterFormat paragraphCharacters_;
    CharacterFormat runCharacters_; // of the run that is open, or of the paragraph
    bool runIsOpen_ = false;
    bool lineIsEmpty_ = false;

    std::vector<Leader> leaders_;
    bool pageIsBegun_ = false;
    bool paragraphIsOpen_ = false;
    bool paragraphGoesOn_ = false;  // a table stood in the paragraph
    bool lineBreakPending_ = false; // the next token tells what it is
};

} // namespace mifconvert

#endif
