#include "mifconvert/html_links.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <variant>

#include <fmt/format.h>

namespace mifconvert
{

namespace
{

constexpr std::int32_t hypertextType = 8;
constexpr std::int32_t referenceType = 9;
constexpr std::size_t mostKept = std::size_t{64} * 1024; // bytes, with 64 for each token
constexpr std::size_t tokenSize = 64;

constexpr std::array<std::string_view, 5> schemes = {"http:", "https:", "mailto:", "ftp:", "ftps:"};

bool isPlainInId(char byte)
{
    const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
    return isLetter || (byte >= '0' && byte <= '9') || byte == '.' || byte == '-';
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t start = text.find_first_not_of(" \t\n");
    if (start == std::string_view::npos) {
        return {};
    }
    return text.substr(start, text.find_last_not_of(" \t\n") - start + 1);
}

// The word that the text begins with, which is taken away.
std::string_view takeWord(std::string_view &text)
{
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text = trimmed(text.substr(end));
    return word;
}

// A name behind a file and a colon. MIF's form of paths has no colon of its own.
std::string_view nameIn(std::string_view target)
{
    const std::size_t colon = target.rfind(':');
    return colon == std::string_view::npos ? target : target.substr(colon + 1);
}

std::string lowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return lower;
}

// An address as the value of an attribute; nothing when a page must not lead there.
std::string safeAddress(std::string_view address)
{
    const std::string lower = lowerCase(address);
    if (std::none_of(schemes.begin(), schemes.end(),
                     [&lower](std::string_view scheme) { return lower.starts_with(scheme); })) {
        return {};
    }
    std::string safe;
    for (const char byte : address) {
        const auto code = static_cast<unsigned char>(byte);
        if (code <= ' ' || code >= 0x7F || byte == '"' || byte == '<' || byte == '>' || byte == '\'' || byte == '`') {
            fmt::format_to(std::back_inserter(safe), "%{:02X}", code);
        } else if (byte == '&') {
            safe += "&amp;";
        } else {
            safe += byte;
        }
    }
    return safe;
}

bool isCharacterChange(const mifhost::Token &token)
{
    return std::holds_alternative<mifhost::Attribute>(token) || std::holds_alternative<mifhost::ModeChange>(token) ||
           std::holds_alternative<mifhost::Font>(token) || std::holds_alternative<mifhost::FontSize>(token) ||
           std::holds_alternative<mifhost::TextColor>(token);
}

// Keeps tokens of the inside of a paragraph, with copies of their texts; others hold too much.
class Keeper
{
public:
    explicit Keeper(std::array<std::string, 3> &texts) : texts_(texts) {}

    std::optional<mifhost::Token> operator()(const mifhost::Text &text)
    {
        return mifhost::Text{copy(text.bytes)};
    }
    std::optional<mifhost::Token> operator()(const mifhost::Marker &marker)
    {
        return mifhost::Marker{marker.type, copy(marker.typeName), copy(marker.text)};
    }
    std::optional<mifhost::Token> operator()(const mifhost::XRefBegin &reference)
    {
        return mifhost::XRefBegin{copy(reference.format), copy(reference.sourceText), copy(reference.sourceFile)};
    }
    std::optional<mifhost::Token> operator()(const mifhost::Frame &frame)
    {
        return mifhost::Frame{copy(frame.id), frame.width, frame.height, frame.kind};
    }
    std::optional<mifhost::Token> operator()(const mifhost::Anchor &anchor)
    {
        mifhost::Anchor kept = anchor;
        kept.path = copy(anchor.path);
        return kept;
    }
    template <typename Kind>
    std::optional<mifhost::Token> operator()(const Kind &kind)
    {
        constexpr bool isPlain = std::is_same_v<Kind, mifhost::Tab> || std::is_same_v<Kind, mifhost::LineBreak> ||
                                 std::is_same_v<Kind, mifhost::Attribute> ||
                                 std::is_same_v<Kind, mifhost::ModeChange> || std::is_same_v<Kind, mifhost::Font> ||
                                 std::is_same_v<Kind, mifhost::FontSize> || std::is_same_v<Kind, mifhost::TextColor> ||
                                 std::is_same_v<Kind, mifhost::NoteReference> ||
                                 std::is_same_v<Kind, mifhost::XRefEnd> || std::is_same_v<Kind, mifhost::Loss>;
        return isPlain ? std::optional<mifhost::Token>(kind) : std::nullopt;
    }

private:
    std::string_view copy(std::string_view text)
    {
        texts_[used_] = text;
        return texts_[used_++];
    }

    std::array<std::string, 3> &texts_;
    std::size_t used_ = 0;
};

} // namespace

bool isHypertext(const mifhost::Marker &marker)
{
    return marker.typeName.empty() ? marker.type == hypertextType : marker.typeName == "Hypertext";
}

bool namesPlace(const mifhost::Marker &marker)
{
    return marker.typeName.empty() ? marker.type == referenceType : marker.typeName == "Cross-Ref";
}

std::string placeId(std::string_view name)
{
    std::string id = "m-";
    for (const char byte : name) {
        if (isPlainInId(byte)) {
            id += byte;
        } else {
            fmt::format_to(std::back_inserter(id), "_{:02x}", static_cast<unsigned char>(byte));
        }
    }
    return id;
}

Hypertext hypertextOf(std::string_view text)
{
    text = trimmed(text);
    if (text.empty()) {
        return {Hypertext::Kind::End, {}};
    }
    const std::string_view command = takeWord(text);
    if (command == "newlink") {
        return {text.empty() ? Hypertext::Kind::None : Hypertext::Kind::Anchor, std::string(text)};
    }
    if (command == "gotolink" || command == "openlink") {
        const std::string_view name = nameIn(text);
        return name.empty() ? Hypertext{} : Hypertext{Hypertext::Kind::Link, "#" + placeId(name)};
    }
    if (command == "message" && lowerCase(takeWord(text)) == "url") {
        std::string address = safeAddress(text);
        return address.empty() ? Hypertext{} : Hypertext{Hypertext::Kind::Link, std::move(address)};
    }
    return {};
}

void LinkEnds::write(const mifhost::Token &token)
{
    const auto *marker = std::get_if<mifhost::Marker>(&token);
    const bool isMark = marker != nullptr && isHypertext(*marker);
    if (isOpen_ && (isMark || !keep(token))) {
        handOn(isMark);
    }
    if (isOpen_) {
        return;
    }
    sink_.write(token);
    if (isMark) {
        Hypertext hypertext = hypertextOf(marker->text);
        isOpen_ = hypertext.kind == Hypertext::Kind::Link;
        target_ = std::move(hypertext.target);
    }
}

void LinkEnds::finish()
{
    if (isOpen_) {
        handOn(false);
    }
}

bool LinkEnds::keep(const mifhost::Token &token)
{
    if (keptSize_ > mostKept) {
        return false;
    }
    Kept &kept = kept_.emplace_back();
    const std::optional<mifhost::Token> copy = std::visit(Keeper(kept.texts), token);
    if (!copy) {
        kept_.pop_back();
        return false;
    }
    kept.token = *copy;
    keptSize_ += tokenSize;
    for (const std::string &text : kept.texts) {
        keptSize_ += text.size();
    }
    return true;
}

void LinkEnds::handOn(bool reachesAll)
{
    isOpen_ = false;
    bool hasText = false;
    bool isInLink = true;
    sink_.beginLink(target_);
    for (const Kept &kept : kept_) {
        if (isInLink && !reachesAll && hasText && isCharacterChange(kept.token)) {
            sink_.endLink();
            isInLink = false;
        }
        hasText = hasText || std::holds_alternative<mifhost::Text>(kept.token);
        sink_.write(kept.token);
    }
    if (isInLink) {
        sink_.endLink();
    }
    kept_.clear();
    keptSize_ = 0;
}

} // namespace mifconvert
