#include "mifconvert/html_tabs.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "mifconvert/html_text.h"

namespace mifconvert
{

namespace
{

// The class of the box around what stands before a left tab.
constexpr std::string_view leftBox = "tl";

// More than any text before a tab in earnest.
constexpr std::size_t largestHeldText = std::size_t{8} * 1024;

// The most that the style sheet leaves behind text before a tab, in common sizes, in twips.
constexpr std::int64_t gap = 60;

// How much a window can shrink measures, at the most that counts.
constexpr std::int64_t narrowing = 2;

void appendMeasure(std::string_view property, std::int64_t twips, std::string &out)
{
    out.append(property).append(":");
    appendPoints(std::max<std::int64_t>(twips, 0), out, "");
}

// Returns where a line begins in a window that shrinks measures to the half, by the rules of the style sheet.
std::int64_t narrowStart(const LineEdges &edges, std::int64_t start)
{
    const std::int64_t left = edges.left;
    const std::int64_t indent = start - left;
    const std::int64_t margin = std::max({std::int64_t{0}, std::min(left, leastShrunk), left / narrowing});
    return margin + std::max(-margin, std::min(std::max(indent, -leastShrunk), indent / narrowing));
}

} // namespace

void TabLine::setStops(std::span<const mifhost::TabStop> stops)
{
    stops_.clear();
    for (const mifhost::TabStop &stop : stops) {
        stops_.push_back({stop, stops_.size(), false});
    }
    std::stable_sort(stops_.begin(), stops_.end(),
                     [](const Stop &one, const Stop &other) { return one.position < other.position; });
}

void TabLine::setLeaders(std::span<const std::string_view> leaders)
{
    for (Stop &stop : stops_) {
        stop.hasLeader = stop.number < leaders.size() && !leaders[stop.number].empty();
    }
}

void TabLine::begin(const LineEdges &edges, std::int32_t start)
{
    edges_ = edges;
    start_ = start;
    narrowStart_ = narrowStart(edges, start);
    width_ = 0;
    firstStop_ = 0;
    state_ = anyStopBeyond(start_) ? State::Held : State::Free;
}

void TabLine::advance(std::int64_t width)
{
    width_ += width;
    if (held_.size() > largestHeldText) {
        release();
        state_ = State::Free;
    }
}

void TabLine::passBy(std::int64_t width)
{
    if (state_ == State::Held) {
        release();
        start_ += width_ + width;
        narrowStart_ += width_ + width;
        width_ = 0;
    } else {
        width_ += width;
    }
}

void TabLine::tab()
{
    closeBox();
    if (state_ == State::Free) {
        leaveTab();
        return;
    }
    std::int64_t position = start_ + width_;
    const bool wraps = position > edges_.right;
    if (wraps) {
        position = edges_.left + (position - edges_.left) % (edges_.right - edges_.left);
    }
    const std::size_t index = stopBeyond(position);
    const std::optional<Stop> stop = takeStop(index, position);
    // Text that wraps can stand in the box of a right tab only, where it wraps on its own.
    if (!stop || (wraps && stop->kind != mifhost::TabKind::Right)) {
        leaveTab();
        return;
    }
    firstStop_ = index + 1;
    openBox(*stop, wraps);
}

void TabLine::end()
{
    closeBox();
    release();
    state_ = State::Free;
}

// Leaves the box of a right or centred tab. The text behind a centred tab reaches half its width beyond the stop, and
// further where there is no room before the stop.
void TabLine::closeBox()
{
    if (state_ != State::Right && state_ != State::Center) {
        return;
    }
    out_ += boxEnd_;
    width_ = state_ == State::Center ? width_ - std::min(width_ / 2, room_) : 0;
    state_ = State::Held;
}

void TabLine::release()
{
    out_ += held_;
    held_.clear();
}

// Leaves a tab and all that follow in the line to the browser.
void TabLine::leaveTab()
{
    if (held_.empty() && state_ == State::Held && width_ > 0) { // behind a centred tab
        openTag(leftBox, 0);
        out_ += "\"></span>";
    }
    release();
    out_ += '\t';
    state_ = State::Free;
}

// Appends the start tag of a box of a class, up to the end of its style. --h is what the text at a centred tab takes of
// the box behind it.
void TabLine::openTag(std::string_view name, std::int64_t width)
{
    out_.append("<span class=\"").append(name).append("\" style=\"");
    appendMeasure("--w", width, out_);
    if (held_.empty() && width_ > 0) {
        appendMeasure(";--h", width_, out_);
    }
}

void TabLine::openBox(const Stop &stop, bool wraps)
{
    const std::int64_t width = stop.position - start_;
    const std::int64_t before = width_;
    if (stop.kind == mifhost::TabKind::Right) {
        openRightBox(width, wraps, stop.hasLeader);
    } else {
        openTag(leftBox, width);
        out_ += "\">";
        release();
        out_ += "\t</span>";
        narrowStart_ += std::max({before + gap, std::min(width, leastShrunk), width / narrowing});
    }
    start_ = stop.position;
    width_ = 0;
    if (stop.kind == mifhost::TabKind::Center) {
        openCenterBox(width, before);
    } else if (stop.kind == mifhost::TabKind::Left) {
        state_ = anyStopBeyond(start_) ? State::Held : State::Free;
    }
}

// --h is the width of the text before the tab, --e how far the edge of the line is from the stop.
void TabLine::openCenterBox(std::int64_t width, std::int64_t before)
{
    openTag("tc", width);
    appendMeasure(";--h", before, out_);
    appendMeasure(";--e", edges_.right - start_, out_);
    out_ += "\"><span>";
    boxEnd_ = "</span></span>";
    room_ = std::max<std::int64_t>(width - before, 0);
    state_ = State::Center;
}

// Text does not shrink with the window, so the boxes before this one may be wider than their share of the line. --x is
// by how much, where measures shrink to the half; the box gives way by it.
void TabLine::openRightBox(std::int64_t width, bool wraps, bool hasLeader)
{
    const std::int64_t excess = narrowStart_ - start_ / narrowing;
    narrowStart_ += std::max(width_, width / narrowing - excess);
    state_ = State::Right;
    const std::string_view boxOfText = wraps || hasLeader ? "tw" : "tr";
    openTag(held_.empty() ? "th" : boxOfText, width);
    if (excess > 0) {
        appendMeasure(";--x", excess, out_);
    }
    if (held_.empty()) {
        out_ += "\">\t";
        boxEnd_ = "</span>";
        return;
    }
    out_ += "\"><span>";
    release();
    out_ += hasLeader ? "</span><span class=\"dots\">\t </span><span>" : "</span>\t <span>";
    boxEnd_ = "</span></span>";
}

// Returns the index of the first stop beyond a position. Of several stops in one place, the next tab takes the next.
std::size_t TabLine::stopBeyond(std::int64_t position) const
{
    const auto next = std::upper_bound(stops_.begin(), stops_.end(), position,
                                       [](std::int64_t value, const Stop &stop) { return value < stop.position; });
    const auto index = static_cast<std::size_t>(next - stops_.begin());
    const bool isNextHere = firstStop_ > 0 && firstStop_ < index && stops_[firstStop_].position == position;
    return isNextHere ? firstStop_ : index;
}

// Returns the stop that a tab at a position goes to when the stop of an index is the first one beyond it. A right stop
// beyond the line's end is taken at its end. In a hanging first line the left indent comes after the stops.
std::optional<TabLine::Stop> TabLine::takeStop(std::size_t index, std::int64_t position) const
{
    if (index < stops_.size() && stops_[index].position < edges_.right) {
        return stops_[index];
    }
    if (index < stops_.size() && stops_[index].kind == mifhost::TabKind::Right && position < edges_.right) {
        return Stop{{mifhost::TabKind::Right, edges_.right}, 0, stops_[index].hasLeader};
    }
    if (position < edges_.left) {
        return Stop{{mifhost::TabKind::Left, edges_.left}, 0, false};
    }
    return std::nullopt;
}

bool TabLine::anyStopBeyond(std::int64_t position) const
{
    return takeStop(stopBeyond(position), position).has_value();
}

} // namespace mifconvert
