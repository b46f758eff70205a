// A document as a page.
#ifndef MIFCONVERT_HTML_WRITER_H
#define MIFCONVERT_HTML_WRITER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mifconvert/html_fonts.h"
#include "mifconvert/html_links.h"
#include "mifconvert/html_page.h"
#include "mifconvert/html_style.h"
#include "mifconvert/html_table.h"
#include "mifconvert/html_tabs.h"
#include "mifhost/fonts.h"
#include "mifhost/token.h"

namespace mifconvert
{

// Writes the tokens of one document as one page that looks like it. Tokens may come in any order. What is kept back
// between two tokens is bounded; all else can be taken from the output at any time.
class HtmlWriter
{
public:
    // Appends what shows a frame to out, the page's own output or what a note is kept in: elements that may stand in a
    // line of text.
    using ShowFrame = std::function<void(const mifhost::Frame &, std::string &out)>;

    // What a picture that the document names is loaded from, as the value of an attribute that needs no escapes; empty
    // for the path itself, when it is relative.
    using PictureSource = std::function<std::string(std::string_view path)>;

    // title      of the page, in UTF-8: the name of the document's file, as a rule
    // fonts      the document's fonts
    // showFrame  called for each frame, perhaps some tokens later
    // out        what the page is appended to
    // Fonts and out must live as long as the writer.
    HtmlWriter(std::string title, const mifhost::FontRegistry &fonts, ShowFrame showFrame, std::string &out);

    // Has pictures in files loaded from elsewhere. To be called before the first token.
    void setPictureSource(PictureSource source)
    {
        pictureSource_ = std::move(source);
    }

    // Appends what the token adds to the page. What a link covers waits for its end, and notes for the page's.
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
    void put(const mifhost::Paragraph &paragraph);
    void put(const mifhost::Number &number);
    void put(const mifhost::ModeChange &change);
    void put(const mifhost::FontSize &size);
    void put(const mifhost::TabLeaders &leaders);
    void put(const mifhost::NoteBegin &note);
    void put(const mifhost::NoteEnd &end);
    void put(const mifhost::NoteReference &reference);
    void put(const mifhost::Marker &marker);
    void put(const mifhost::XRefBegin &reference);
    void put(const mifhost::XRefEnd &end);
    void put(const mifhost::TableOpen &table);
    void put(const mifhost::TitleBegin &begin);
    void put(const mifhost::TitleEnd &end);
    void put(const mifhost::Row &row);
    void put(const mifhost::Cell &cell);
    void put(const mifhost::TableClose &end);
    void put(const mifhost::Anchor &anchor);
    void put(const mifhost::BoxBegin &box);
    void put(const mifhost::BoxEnd &end);
    void put(const mifhost::DocumentField &field);
    void put(const mifhost::PageSize &size);
    void put(const mifhost::Loss & /*loss*/) {}
    void put(const mifhost::LossTotal & /*total*/) {}

    enum class LeaderKind : std::uint8_t { Tab, Frame, Place, Picture };

    // What came before its paragraph's formats did.
    struct Leader {
        LeaderKind kind = LeaderKind::Tab;
        std::string id; // of a frame or a place; of a picture its path
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        std::uint32_t frameKind = 0;
    };

    // What is around a note or a box, whose tables are its own.
    struct Outer {
        std::string body;
        std::unique_ptr<HtmlTable> table;
        bool paragraphGoesOn;
        bool isHeld;
        std::int32_t note;
        std::optional<std::size_t> coveredFrom;
    };

    struct Note {
        std::size_t number = 0; // in the order of the references; 0 before the first
        std::string content;
    };

    void process(const mifhost::Token &token);
    void beginPage();
    bool isHeld() const;
    void hand(std::string &out);
    void enter(bool isHeld, std::int32_t note);
    Outer leave();
    void finishNotes();
    void nameNewPlace(std::string_view name);
    void writePicture(const Leader &picture);
    void writeText(std::string_view text);
    CharacterFormat shownCharacters() const;
    void writeLineBreak();
    void writeFrame(const mifhost::Frame &frame);
    void addLeader(Leader leader);
    void writeLeaders();
    void openParagraph();
    void closeParagraph();
    void leaveCell();
    void openRun();
    void closeRun();

    std::string title_;
    ShowFrame showFrame_;
    PictureSource pictureSource_;
    std::string &out_;
    std::string body_; // what is not handed to out_ yet
    FontStyles fonts_;
    PageLayout page_;
    std::unique_ptr<HtmlTable> table_ = std::make_unique<HtmlTable>(body_);
    TabLine line_;
    LinkEnds links_;

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

    std::string runLink_;
    std::vector<Leader> leaders_;

    // Of the extended stream.
    bool isExtended_ = false;
    mifhost::Paragraph format_{};
    std::string formatLanguage_;
    std::string link_; // of the text that follows; empty for none
    bool linkIsReference_ = false;
    std::string author_;
    std::string language_;
    std::set<std::string, std::less<>> places_;
    std::vector<Outer> outers_;
    std::map<std::int32_t, Note> notes_;
    std::size_t references_ = 0;             // to notes, each note counted once
    std::optional<std::size_t> coveredFrom_; // of body_: what a cell holds that another covers
    bool pageIsBegun_ = false;
    bool paragraphIsOpen_ = false;
    bool paragraphGoesOn_ = false;  // a table stood in the paragraph
    bool lineBreakPending_ = false; // the next token tells what it is
};

} // namespace mifconvert

#endif
