#include "formats/properties.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "formats/tab_stops.h"
#include "mifreader/tokens.h"
#include "reader/statement.h"

namespace
{

struct Keyword {
    std::string_view text;
    int32_t value;
};

constexpr Keyword alignments[] = {
    {"LeftRight", MIF_ALIGN_LEFT_RIGHT},
    {"Left", MIF_ALIGN_LEFT},
    {"Center", MIF_ALIGN_CENTER},
    {"Right", MIF_ALIGN_RIGHT},
};

// 0x00BBGGRR. Cyan is told to hosts as this, whatever its name says.
constexpr Keyword colors[] = {
    {"White", 0xFFFFFF}, {"Red", 0x0000FF},     {"Green", 0x008000},  {"Blue", 0xFF0000},
    {"Cyan", 0x800080},  {"Magenta", 0xFF00FF}, {"Yellow", 0x00FFFF},
};

constexpr int32_t black = 0;

// Parts of family names that tell the family's class, the first one found deciding.
constexpr Keyword familyClasses[] = {
    {"Roman", MIF_FONT_CLASS_ROMAN},    {"Arial", MIF_FONT_CLASS_SWISS},       {"Courier", MIF_FONT_CLASS_MODERN},
    {"Cursive", MIF_FONT_CLASS_SCRIPT}, {"Symbol", MIF_FONT_CLASS_DECORATIVE},
};

constexpr uint32_t scriptModes = MODE_SUPERSCRIPT | MODE_SUBSCRIPT;

constexpr Keyword positions[] = {
    {"FNormal", 0},
    {"FSuperscript", MODE_SUPERSCRIPT},
    {"FSubscript", MODE_SUBSCRIPT},
};

constexpr Keyword letterCases[] = {
    {"FAsTyped", 0},
    {"FLowerCase", 0},
    {"FSmallCaps", MODE_SMALL_CAPS},
    {"FUpperCase", MODE_UPPER_CASE},
};

// Leading in twips from which a line counts as spaced one and a half, and double.
constexpr int32_t oneAndHalfLeading = 120;
constexpr int32_t doubleLeading = 240;

// What a value reads as that is none of the known ones; nothing is set then.
constexpr int32_t noKeyword = -1;

// The value of the keyword that the text is, or the other value.
template <size_t count>
int32_t readKeyword(const Keyword (&keywords)[count], std::string_view text, int32_t other)
{
    for (const Keyword &keyword : keywords) {
        if (keyword.text == text) {
            return keyword.value;
        }
    }
    return other;
}

bool equal(const char *left, const char *right)
{
    return strcmp(left, right) == 0;
}

int32_t isYes(const char *text)
{
    return equal(text, "Yes");
}

int32_t isTrue(const char *text)
{
    return equal(text, "True");
}

MifChange changeIf(bool differs)
{
    return differs ? MifChange::differs : MifChange::none;
}

MifChange switchMode(MifContext *context, uint32_t mode, bool on)
{
    uint32_t &modes = context->formats.currentStyle.modes;
    modes = on ? modes | mode : modes & ~mode;
    return MifChange::modes;
}

template <uint32_t mode>
MifChange setMode(MifContext *context, MifPropertyValue value)
{
    return switchMode(context, mode, value.number != 0);
}

// Two modes of which at most one is on; the value is the one, 0 for none, or noKeyword.
template <uint32_t modes>
MifChange setOneOf(MifContext *context, MifPropertyValue value)
{
    if (value.number != noKeyword) {
        uint32_t &current = context->formats.currentStyle.modes;
        current = (current & ~modes) | static_cast<uint32_t>(value.number);
    }
    return MifChange::modes;
}

void raiseFontSize(MifParagraphStyle &style)
{
    style.fontSize = mifScaleFontSize(style.fontSize, 4, 3);
}

void lowerFontSize(MifParagraphStyle &style)
{
    style.fontSize = mifScaleFontSize(style.fontSize, 3, 4);
}

// Takes a script position away, and gives the size back that it took.
void leavePosition(MifParagraphStyle &style, uint32_t mode)
{
    if ((style.modes & mode) != 0) {
        style.modes &= ~mode;
        raiseFontSize(style);
    }
}

// Going over from one script position to the other keeps the size, which is reduced already.
template <uint32_t mode, uint32_t otherMode>
MifChange setScript(MifContext *context, MifPropertyValue value)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    if (value.number == 0) {
        leavePosition(style, mode);
        return MifChange::modes;
    }
    if ((style.modes & otherMode) == 0) {
        lowerFontSize(style);
    }
    style.modes = (style.modes & ~otherMode) | mode;
    return MifChange::modes;
}

int32_t readAlignment(const char *text)
{
    return readKeyword(alignments, text, noKeyword);
}

MifChange setAlignment(MifContext *context, MifPropertyValue value)
{
    MifFormatState &formats = context->formats;
    if (value.number != noKeyword) {
        formats.currentStyle.alignment = value.number;
    }
    return changeIf(formats.currentStyle.alignment != formats.appliedStyle.alignment);
}

int32_t readLeading(const char *text)
{
    return mifSpacingOf(mifParseTwips(text));
}

MifChange setLeading(MifContext *context, MifPropertyValue value)
{
    MifFormatState &formats = context->formats;
    formats.currentStyle.lineSpacing = static_cast<uint8_t>(value.number);
    return changeIf(formats.currentStyle.lineSpacing != formats.appliedStyle.lineSpacing);
}

MifChange setSize(MifContext *context, MifPropertyValue value)
{
    MifFormatState &formats = context->formats;
    formats.currentStyle.fontSize = value.number;
    return changeIf(formats.currentStyle.fontSize != formats.appliedStyle.fontSize);
}

int32_t readColor(const char *text)
{
    return readKeyword(colors, text, black);
}

MifChange setColor(MifContext *context, MifPropertyValue value)
{
    MifFormatState &formats = context->formats;
    formats.currentStyle.textColor = static_cast<uint32_t>(value.number);
    return changeIf(formats.currentStyle.textColor != formats.appliedStyle.textColor);
}

// The weights that count as bold.
int32_t isBold(const char *weight)
{
    return equal(weight, "Bold") || equal(weight, "Book") || equal(weight, "DemiBold");
}

int32_t readNothing(const char * /*text*/)
{
    return 0;
}

MifChange setWeight(MifContext *context, MifPropertyValue value)
{
    mifSetWeight(context, value.text);
    return MifChange::modes;
}

int32_t isItalic(const char *angle)
{
    return equal(angle, "Italic");
}

int32_t isUnderlining(const char *text)
{
    return !equal(text, "FNoUnderlining") && !equal(text, "No");
}

int32_t readCase(const char *text)
{
    return readKeyword(letterCases, text, noKeyword);
}

int32_t readPosition(const char *text)
{
    return readKeyword(positions, text, noKeyword);
}

// A position set twice reduces the size twice.
MifChange setPosition(MifContext *context, MifPropertyValue value)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    if (value.number == noKeyword) {
        return MifChange::modes;
    }
    const auto mode = static_cast<uint32_t>(value.number);
    leavePosition(style, scriptModes & ~mode);
    if (mode != 0) {
        style.modes |= mode;
        lowerFontSize(style);
    }
    return MifChange::modes;
}

MifChange setPlain(MifContext *context, MifPropertyValue value)
{
    return value.number != 0 ? switchMode(context, MODE_BOLD | MODE_ITALIC, false) : MifChange::modes;
}

MifChange setTabCount(MifContext *context, MifPropertyValue value)
{
    return mifProcessTabArrays(context, value.number) != 0 ? MifChange::none : MifChange::failed;
}

MifChange setTabPosition(MifContext *context, MifPropertyValue value)
{
    return mifStoreTabPosition(context, value.number) != 0 ? MifChange::none : MifChange::failed;
}

int32_t readTabKind(const char *text)
{
    return equal(text, "Center") ? MIF_TAB_CENTER : equal(text, "Right") ? MIF_TAB_RIGHT : MIF_TAB_LEFT;
}

MifChange setTabKind(MifContext *context, MifPropertyValue value)
{
    return mifStoreTabKind(context, value.number) != 0 ? MifChange::none : MifChange::failed;
}

// The class of a font family, a MIF_FONT_CLASS value.
int32_t readFamilyClass(const char *family)
{
    const std::string_view name(family, strnlen(family, sizeof(MifParagraphStyle::fontFamily) - 1));
    for (const Keyword &familyClass : familyClasses) {
        if (name.find(familyClass.text) != std::string_view::npos) {
            return familyClass.value;
        }
    }
    return MIF_FONT_CLASS_UNKNOWN;
}

// Sets the family, and announces it where that is wanted.
MifChange setFamily(MifContext *context, MifPropertyValue value, bool announced)
{
    MifFormatState &formats = context->formats;
    char(&family)[sizeof(formats.currentStyle.fontFamily)] = formats.currentStyle.fontFamily;
    const size_t length = std::min(strlen(value.text), sizeof(family) - 1);
    memcpy(family, value.text, length);
    family[length] = '\0';
    if (announced) {
        mifRegisterFont(context, value.number);
    }
    return changeIf(!equal(family, formats.appliedStyle.fontFamily));
}

// The host's number of the family, less 1; 0 when it gives none.
int32_t announce(MifContext *context, const char *family, int32_t familyClass)
{
    MifFontRecord record = {};
    record.familyClass = static_cast<uint8_t>(familyClass);
    memcpy(record.faceName, family, strnlen(family, sizeof(record.faceName) - 1));
    const MifHostState &host = context->host;
    const uint32_t number =
        host.notifyCallback != nullptr ? host.notifyCallback(host.notifyCookie, HOST_NOTIFY_FONT, &record) : 0;
    return number != 0 ? static_cast<int32_t>(number - 1) : 0;
}

bool isAnnounced(const MifContext *context)
{
    const MifFormatState &formats = context->formats;
    return formats.inPgfCatalog != 0 || formats.fontCatalog.pending != 0 || context->pages.inBodyText != 0;
}

MifChange setStoredFamily(MifContext *context, MifPropertyValue value)
{
    return setFamily(context, value, isAnnounced(context));
}

MifChange setDirectFamily(MifContext *context, MifPropertyValue value)
{
    return setFamily(context, value, isAnnounced(context) || context->formats.inFont != 0);
}

} // namespace

const MifProperty mifAlignment = {readAlignment, setAlignment};
const MifProperty mifLeading = {readLeading, setLeading};
const MifProperty mifSize = {mifParseInteger, setSize}; // whole points: a fraction and the unit are ignored
const MifProperty mifColor = {readColor, setColor};
const MifProperty mifWeight = {readNothing, setWeight};
const MifProperty mifStoredWeight = {isBold, setMode<MODE_BOLD>};
const MifProperty mifAngle = {isItalic, setMode<MODE_ITALIC>};
const MifProperty mifUnderlining = {isUnderlining, setMode<MODE_UNDERLINE>};
const MifProperty mifStrike = {isYes, setMode<MODE_STRIKE>};
const MifProperty mifCase = {readCase, setOneOf<MODE_SMALL_CAPS | MODE_UPPER_CASE>};
const MifProperty mifPlain = {isYes, setPlain};
const MifProperty mifBold = {isYes, setMode<MODE_BOLD>};
const MifProperty mifItalic = {isYes, setMode<MODE_ITALIC>};
const MifProperty mifPosition = {readPosition, setPosition};
const MifProperty mifSuperscript = {isYes, setScript<MODE_SUPERSCRIPT, MODE_SUBSCRIPT>};
const MifProperty mifSubscript = {isYes, setScript<MODE_SUBSCRIPT, MODE_SUPERSCRIPT>};
const MifProperty mifStoredItalic = {isTrue, setMode<MODE_ITALIC>};
const MifProperty mifStoredPosition = {readPosition, setOneOf<scriptModes>};
const MifProperty mifFamily = {readFamilyClass, setDirectFamily};
const MifProperty mifStoredFamily = {readFamilyClass, setStoredFamily};
const MifProperty mifTabCount = {mifParseInteger, setTabCount};
const MifProperty mifTabPosition = {mifParseTwips, setTabPosition};
const MifProperty mifTabKind = {readTabKind, setTabKind};

uint8_t mifSpacingOf(int32_t leading)
{
    return leading >= doubleLeading       ? MIF_SPACING_DOUBLE
           : leading >= oneAndHalfLeading ? MIF_SPACING_ONE_AND_HALF
                                          : MIF_SPACING_SINGLE;
}

void mifSetWeight(MifContext *context, const char *weight)
{
    switchMode(context, MODE_BOLD, isBold(weight) != 0);
}

int mifSetDirectly(MifContext *context)
{
    const char *text = mifUnquotedValue(context);
    if (text == nullptr) {
        return 0;
    }
    MifFormatState &formats = context->formats;
    const MifProperty &property = *context->scanner.statementStack->row->direct;
    const MifChange change = property.set(context, {text, property.read(text)});
    if (change == MifChange::differs ||
        (change == MifChange::modes && formats.currentStyle.modes != formats.appliedStyle.modes)) {
        formats.styleChanged = 1;
    }
    return change != MifChange::failed;
}

void mifRegisterFont(MifContext *context, int32_t familyClass)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    style.hostFontNumber = announce(context, style.fontFamily, familyClass);
}

int32_t mifAnnounceFamily(MifContext *context, const char *family)
{
    char name[sizeof(MifFontRecord::faceName)];
    size_t length = strnlen(family, sizeof(name) - 1);
    while ((static_cast<unsigned char>(family[length]) & 0xC0) == 0x80) { // whole characters
        --length;
    }
    memcpy(name, family, length);
    name[length] = '\0';
    return announce(context, name, readFamilyClass(family));
}

int32_t mifScaleFontSize(int32_t size, int32_t numerator, int32_t denominator)
{
    return mifSaturate(int64_t{size} * numerator / denominator);
}
