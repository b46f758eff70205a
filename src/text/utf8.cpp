#include "text/utf8.h"

#include <algorithm>

#include "reader/words.h"

namespace
{

struct Form {
    uint32_t mask;  // of the first byte
    uint32_t mark;  // what it has there
    uint32_t least; // the first character that needs as many bytes
};

constexpr Form forms[] = {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};
constexpr uint32_t lastCharacter = 0x10FFFF;

bool isSurrogate(uint32_t character)
{
    return character >= 0xD800 && character <= 0xDFFF;
}

} // namespace

char *mifStoreCharacter(char *place, uint32_t character)
{
    size_t length = 1;
    while (length < std::size(forms) && character >= forms[length].least) {
        ++length;
    }
    for (size_t index = length - 1; index > 0; --index) {
        place[index] = static_cast<char>(0x80 | (character & 0x3F));
        character >>= 6;
    }
    place[0] = static_cast<char>(forms[length - 1].mark | character);
    return place + length;
}

size_t mifReadCharacter(const char *position, const char *end, uint32_t &character)
{
    const auto first = static_cast<unsigned char>(*position);
    const Form *form = std::find_if(std::begin(forms), std::end(forms),
                                    [first](const Form &row) { return (first & row.mask) == row.mark; });
    const auto length = static_cast<size_t>(form - forms) + 1;
    if (form == std::end(forms) || static_cast<size_t>(end - position) < length) {
        return 0;
    }
    character = first & ~form->mask;
    for (size_t index = 1; index < length; ++index) {
        const auto byte = static_cast<unsigned char>(position[index]);
        if ((byte & 0xC0) != 0x80) {
            return 0;
        }
        character = character << 6 | (byte & 0x3F);
    }
    return character < form->least || character > lastCharacter || isSurrogate(character) ? 0 : length;
}

bool mifIsAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

size_t mifPlainRun(std::string_view text)
{
    size_t run = 0;
    while (text.size() - run >= sizeof(MifWord)) {
        const MifWord word = mifLoadWord(text.data() + run);
        const MifWord marks = (word & mifEveryByte(0x80)) | mifMarkBelow(word, ' ') | mifMarkByte(word, '\\');
        if (marks != 0) {
            return run + mifBytesBefore(marks);
        }
        run += sizeof(MifWord);
    }
    while (run < text.size() && static_cast<unsigned char>(text[run] - ' ') < 0x60 && text[run] != '\\') {
        ++run;
    }
    return run;
}

bool mifIsUtf8(std::string_view text)
{
    const char *position = text.data();
    const char *end = position + text.size();
    uint32_t character = 0;
    while (position != end) {
        const size_t length = mifReadCharacter(position, end, character);
        if (length == 0) {
            return false;
        }
        position += length;
    }
    return true;
}
