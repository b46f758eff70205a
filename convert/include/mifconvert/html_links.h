// Links of a page: what hypertext markers say, and how far a link reaches.
#ifndef MIFCONVERT_HTML_LINKS_H
#define MIFCONVERT_HTML_LINKS_H

#include <array>
#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "mifhost/token.h"

namespace mifconvert
{

// What a hypertext marker says.
struct Hypertext {
    enum class Kind {
        None,   // nothing that a page has a place for
        Anchor, // the place has a name
        Link,   // the text that follows leads somewhere
        End     // of a link
    };
    Kind kind = Kind::None;
    std::string target; // of an anchor its name; of a link what stands in a page for its target
};

// Whether a marker is one of hypertext, and whether it names the place for cross-references.
bool isHypertext(const mifhost::Marker &marker);
bool namesPlace(const mifhost::Marker &marker);

// Names of places lead to places of this document, whatever file they name: documents name themselves as they were
// called when they were written. Addresses are those of the web and of mail alone, so that no link runs a script.
Hypertext hypertextOf(std::string_view text);

// The identifier of a named place in the page: letters, digits, `.`, `-` and `_` alone.
std::string placeId(std::string_view name);

// Hands tokens on, and with them where links end: at the next hypertext marker of the paragraph or, where there is
// none, at the next change of the characters' format after some text, or at the paragraph's end. For that it keeps
// tokens back, up to 64 KB of text.
class LinkEnds
{
public:
    struct Sink {
        std::function<void(const mifhost::Token &)> write;
        std::function<void(const std::string &target)> beginLink;
        std::function<void()> endLink;
    };

    explicit LinkEnds(Sink sink) : sink_(std::move(sink)) {}

    void write(const mifhost::Token &token);

    // Hands on what is kept back.
    void finish();

private:
    // A token with texts of its own.
    struct Kept {
        mifhost::Token token;
        std::array<std::string, 3> texts;
    };

    bool keep(const mifhost::Token &token);
    void handOn(bool reachesAll);

    Sink sink_;
    std::deque<Kept> kept_;
    std::size_t keptSize_ = 0;
    std::string target_;
    bool isOpen_ = false; // a link's marker has come
};

} // namespace mifconvert

#endif
