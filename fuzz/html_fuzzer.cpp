// The HTML writer. The input is a token stream; what is wrong in it is passed over, so that tokens come in every order.
// The page must be well-formed and not much larger than the stream, whenever its text is taken.
#include <algorithm>
#include <string>
#include <vector>

#include "check.h"
#include "mifconvert/html_writer.h"
#include "mifhost/error.h"
#include "mifhost/fonts.h"
#include "mifhost/token.h"

namespace miffuzz
{

namespace
{

using Bytes = std::span<const uint8_t>;

// A page is at most so many bytes in any case, and so many for each byte of the stream.
constexpr size_t fixedPage = size_t{16} * 1024;
constexpr size_t pagePerByte = 120;

constexpr std::string_view shownFrame = "<span class=\"object\">frame</span>";

mifhost::FontRegistry someFonts()
{
    mifhost::FontRegistry fonts;
    for (const std::string_view name : {"Times", "Helvetica \"x\"", "</style>", "Courier", "\x80\x81"}) {
        MifFontRecord record{};
        std::copy(name.begin(), name.end(), record.faceName);
        fonts.add(record);
    }
    return fonts;
}

// Writes the tokens of the stream, and passes over bytes that begin none.
template <typename Write>
void writeTokens(Bytes bytes, Write write)
{
    mifhost::TokenDecoder decoder;
    while (bytes.size() >= 5) {
        const size_t length = bytes[1] | size_t{bytes[2]} << 8;
        const bool isPossible = bytes[0] <= TOKEN_LOSS_TOTAL && length >= 5 && length <= bytes.size() && bytes[3] == 0;
        try {
            decoder.decode(bytes.first(isPossible ? length : 0));
            if (const mifhost::Token *token = decoder.next()) {
                write(*token);
                bytes = bytes.subspan(length);
                continue;
            }
        } catch (const mifhost::StreamError &) {
        }
        bytes = bytes.subspan(1);
    }
}

// The page, taken from the output after every token or at the end.
std::string page(Bytes bytes, bool takesOften)
{
    static const mifhost::FontRegistry fonts = someFonts();
    std::string out;
    std::string taken;
    const auto take = [&] {
        taken += out;
        out.clear();
    };
    mifconvert::HtmlWriter writer(
        "a & b.mif", fonts, [](const mifhost::Frame &, std::string &shown) { shown += shownFrame; }, out);
    writeTokens(bytes, [&](const mifhost::Token &token) {
        writer.write(token);
        if (takesOften) {
            take();
        }
    });
    writer.finish();
    take();
    return taken;
}

bool isVoid(std::string_view name)
{
    return name == "meta" || name == "br" || name == "col" || name == "img";
}

// Every element is closed, in the order of opening, and no quote is left open in a tag.
void checkElements(std::string_view page)
{
    std::vector<std::string_view> open;
    page.remove_prefix(std::string_view("<!DOCTYPE html>").size());
    while (true) {
        const size_t start = page.find('<');
        if (start == std::string_view::npos) {
            break;
        }
        const size_t end = page.find('>', start);
        require(end != std::string_view::npos, "every tag ends");
        const std::string_view tag = page.substr(start + 1, end - start - 1);
        page.remove_prefix(end + 1);
        require(std::count(tag.begin(), tag.end(), '"') % 2 == 0, "every quote in a tag ends");
        const std::string_view name = tag.substr(0, tag.find(' '));
        if (name.starts_with('/')) {
            require(!open.empty() && open.back() == name.substr(1), "elements close in the order of their opening");
            open.pop_back();
        } else if (name == "style") {
            page.remove_prefix(page.find("</style>")); // rules have `>` in them
            open.push_back(name);
        } else if (!isVoid(name)) {
            open.push_back(name);
        }
    }
    require(open.empty(), "every element is closed");
}

} // namespace

} // namespace miffuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace miffuzz;
    const Bytes bytes(data, size);
    const std::string atEnd = page(bytes, false);
    require(atEnd == page(bytes, true), "the page does not depend on when its text is taken");
    require(atEnd.size() <= fixedPage + pagePerByte * size, "a page is not much larger than its stream");
    checkElements(atEnd);
    return 0;
}
