// Tab stops in a page, which knows none: what stands before a tab gets a box that is as wide as the tab reaches.
#ifndef MIFCONVERT_HTML_TABS_H
#define MIFCONVERT_HTML_TABS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "mifconvert/html_style.h"
#include "mifhost/token.h"

namespace mifconvert
{

// One line of a paragraph after the other, a line ending at a line break of the document. The text between two tabs is
// kept back until it shows whether a box must go around it. Which stop a tab goes to depends on how wide the text is,
// so this is right as far as the text's estimated width is. A tab behind the last stop, or behind text that fills the
// line, is left to the browser, which goes on to the next half inch.
class TabLine
{
public:
    // out  what the lines are appended to
    explicit TabLine(std::string &out) : out_(out) {}

    // Sets the stops of the lines to come.
    void setStops(std::span<const mifhost::TabStop> stops);

    // Sets their leaders, one for each stop as setStops() had them.
    void setLeaders(std::span<const std::string_view> leaders);

    // Begins a line.
    //
    // start  where its text begins, in twips from the left edge of the column
    void begin(const LineEdges &edges, std::int32_t start);

    // What the line's content is to be appended to now. Elements that are open at tab() or end() must be closed before.
    std::string &text() noexcept
    {
        return state_ == State::Held ? held_ : out_;
    }

    // Whether advance() must be told of content.
    bool isMeasured() const noexcept
    {
        return state_ == State::Held || state_ == State::Center;
    }

    // Content of this width in twips was appended to text().
    void advance(std::int64_t width);

    // Writes what is kept back, for content of any size and this width that is appended to the output itself. No
    // element may be open.
    void passBy(std::int64_t width);

    void tab();
    void end();

private:
    enum class State : std::uint8_t {
        Free,  // nothing is kept back, and tabs are left to the browser
        Held,  // the text since the last tab is kept back
        Right, // in the box of a right or centred tab, behind the tab
        Center
    };

    struct Stop : mifhost::TabStop {
        std::size_t number = 0; // as the document has it
        bool hasLeader = false;
    };

    void closeBox();
    void release();
    void leaveTab();
    void openTag(std::string_view name, std::int64_t width);
    void openBox(const Stop &stop, bool wraps);
    void openCenterBox(std::int64_t width, std::int64_t before);
    void openRightBox(std::int64_t width, bool wraps, bool hasLeader);
    std::size_t stopBeyond(std::int64_t position) const;
    std::optional<Stop> takeStop(std::size_t index, std::int64_t position) const;
    bool anyStopBeyond(std::int64_t position) const;

    std::string &out_;
    std::vector<Stop> stops_;   // by position
    std::size_t firstStop_ = 0; // the one behind the stop that the last tab went to
    LineEdges edges_;
    State state_ = State::Free;
    std::string held_;
    std::string_view boxEnd_;      // the end tags of the box of a right or centred tab
    std::int64_t start_ = 0;       // where the text since the last tab begins; in a box: the tab's stop
    std::int64_t width_ = 0;       // of that text
    std::int64_t room_ = 0;        // of a centred tab's text: before the stop
    std::int64_t narrowStart_ = 0; // start_, in a window that shrinks measures to the half
};

} // namespace mifconvert

#endif
