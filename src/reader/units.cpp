#include "reader/units.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

#include "reader/source.h"
#include "reader/statement.h"

namespace
{

struct Unit {
    std::string_view name;
    int32_t twips;
};

constexpr Unit suffixes[] = {
    {"in", 1440},  {"\"", 1440}, {"cm", 567},   {"centimeter", 567}, {"mm", 57},    {"millimeter", 57}, {"pc", 240},
    {"pica", 240}, {"pt", 20},   {"point", 20}, {"dd", 21},          {"didot", 21}, {"cc", 256},        {"cicero", 256},
};

constexpr Unit documentUnits[] = {
    {"Uin", 1440}, {"Ucm", 567}, {"Umm", 57}, {"Upica", 240}, {"Upt", 20}, {"Udd", 21}, {"Ucc", 256},
};

// A text of this length or more names no unit.
constexpr size_t longestMeasurement = 79;

template <size_t count>
int32_t findUnit(const Unit (&units)[count], std::string_view name)
{
    for (const Unit &unit : units) {
        if (unit.name == name) {
            return unit.twips;
        }
    }
    return twipsPerInch;
}

// A minus sign is no part of the number here: a negative measurement is always in inches.
int32_t twipsPerUnit(std::string_view text)
{
    const size_t suffix = text.find_first_not_of("0123456789. ");
    if (suffix == std::string_view::npos || text.size() >= longestMeasurement) {
        return twipsPerInch;
    }
    return findUnit(suffixes, text.substr(suffix));
}

bool endsNumber(char byte)
{
    return (byte >= '0' && byte <= '9') || byte == '.';
}

bool isHexadecimalStart(char byte)
{
    const char lower = static_cast<char>(byte | 0x20);
    return endsNumber(byte) || (lower >= 'a' && lower <= 'f');
}

bool isLetter(char byte)
{
    const char lower = static_cast<char>(byte | 0x20);
    return lower >= 'a' && lower <= 'z';
}

// Past white space and a plus sign, which the standard conversions do not take.
const char *skipToNumber(const char *text)
{
    while (mifIsWhiteSpace(*text)) {
        ++text;
    }
    return text[0] == '+' && text[1] != '-' ? text + 1 : text;
}

// Whether a number that no double holds is too large, not too small: by the power of its first digit that is not 0,
// counted in digits and added to the exponent's. A hexadecimal digit counts as four of the exponent's bits.
bool isHuge(const char *text, const char *end, bool hexadecimal)
{
    const char *exponents = hexadecimal ? "pP" : "eE";
    int64_t power = 0;
    bool significant = false;
    bool fraction = false;
    for (; text != end && *text != exponents[0] && *text != exponents[1]; ++text) {
        if (*text == '.') {
            fraction = true;
            continue;
        }
        significant = significant || *text != '0';
        power += fraction ? (significant ? 0 : -1) : (significant ? 1 : 0);
    }
    power *= hexadecimal ? 4 : 1;
    return power + (text != end ? mifParseInteger(text + 1) : 0) > 0;
}

// The product of a number and a unit, exact before it is truncated.
int32_t scaleToTwips(double number, int32_t unit)
{
    if (std::isnan(number)) {
        return 0;
    }
    constexpr double limit = 2147483648.0;
    if (number >= limit) {
        return std::numeric_limits<int32_t>::max();
    }
    if (number <= -limit) {
        return std::numeric_limits<int32_t>::min();
    }
    // 53 bits of the number and 11 of the unit: the product fits in 64 bits.
    int exponent = 0;
    const double mantissa = std::frexp(std::fabs(number), &exponent);
    const auto digits = static_cast<uint64_t>(std::ldexp(mantissa, 53));
    const int shift = 53 - exponent;
    const uint64_t twips = shift < 64 ? (digits * static_cast<uint64_t>(unit)) >> shift : 0;
    return mifSaturate(number < 0 ? -static_cast<int64_t>(twips) : static_cast<int64_t>(twips));
}

// Loops of their own: the texts are shorter than what strcspn and strspn take to begin.
const char *skipBlanks(const char *text)
{
    while (*text == ' ') {
        ++text;
    }
    return text;
}

const char *findBlank(const char *text)
{
    while (*text != ' ' && *text != '\0') {
        ++text;
    }
    return text;
}

// The end of a measurement: the blank after it, or the text's end. A blank between a number and its unit name belongs
// to the measurement.
const char *measurementEnd(const char *text)
{
    const char *blank = findBlank(text);
    const char *unit = skipBlanks(blank);
    return blank != text && endsNumber(blank[-1]) && isLetter(*unit) ? findBlank(unit) : blank;
}

const char *skipMeasurement(const char *text)
{
    const char *end = measurementEnd(text);
    return *end == ' ' ? end + 1 : end;
}

} // namespace

int32_t mifSetTwipsPerUnit(const char *text)
{
    return twipsPerUnit(text);
}

int32_t mifParseInteger(const char *text)
{
    text = skipToNumber(text);
    const char *end = text + strlen(text);
    int32_t value = 0;
    if (std::from_chars(text, end, value).ec == std::errc::result_out_of_range) {
        return *text == '-' ? std::numeric_limits<int32_t>::min() : std::numeric_limits<int32_t>::max();
    }
    return value;
}

double mifParseNumber(const char *text)
{
    text = skipToNumber(text);
    const bool negative = *text == '-';
    if (negative) {
        ++text;
        if (*text == '-') {
            return 0;
        }
    }
    auto format = std::chars_format::general;
    if (text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        text += 2;
        format = std::chars_format::hex;
        if (!isHexadecimalStart(*text)) { // a sign, or the name of no number
            return 0;
        }
    }
    double value = 0;
    const auto [end, error] = std::from_chars(text, text + strlen(text), value, format);
    if (error == std::errc::result_out_of_range) {
        value = isHuge(text, end, format == std::chars_format::hex) ? std::numeric_limits<double>::infinity() : 0;
    }
    return negative ? -value : value;
}

int32_t mifParseTwips(const char *text)
{
    return scaleToTwips(mifParseNumber(text), mifSetTwipsPerUnit(text));
}

int32_t mifParseFirstTwips(const char *text)
{
    text = skipBlanks(text);
    const std::string_view measurement(text, static_cast<size_t>(measurementEnd(text) - text));
    return scaleToTwips(mifParseNumber(text), twipsPerUnit(measurement));
}

int32_t mifSaturate(int64_t value)
{
    return static_cast<int32_t>(
        std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

MifMeasurementList::MifMeasurementList(const char *value) : rest_(skipMeasurement(value)) {}

MifMeasurementList MifMeasurementList::fromFirst(const char *value)
{
    MifMeasurementList list("");
    list.rest_ = skipBlanks(value);
    return list;
}

int32_t MifMeasurementList::next()
{
    const int32_t twips = mifParseFirstTwips(rest_);
    rest_ = skipMeasurement(rest_);
    return twips;
}

int mifUnits(MifContext *context)
{
    const char *value = mifValue(context);
    if (value == nullptr) {
        return 0;
    }
    context->units.documentUnit = findUnit(documentUnits, value);
    return 1;
}
