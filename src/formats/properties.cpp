#include "formats/properties.h"

#include <algorithm>
#include <cstring>

#include "formats/tab_stops.h"
#include "mifreader/tokens.h"

namespace
{

struct Keyword {
    const char *text;
    uint32_t value;
};

constexpr Keyword alignments[] = {
    {"LeftRight", MIF_ALIGN_LEFT_RIGHT},
    {"Left", MIF_ALIGN_LEFT},
    {"Center", MIF_ALIGN_CENTER},
    {"Right", MIF_ALIGN_RIGHT},
};

// 0x00BBGGRR. Cyan is what the output's readers have always been given for it.
constexpr Keyword colors[] = {
    {"White", 0xFFFFFF}, {"Red", 0x0000FF},     {"Green", 0x008000},  {"Blue", 0xFF0000},
    {"Cyan", 0x800080},  {"Magenta", 0xFF00FF}, {"Yellow", 0x00FFFF},
};

constexpr uint32_t black = 0;

// Parts of family names that tell the family's class, the first one found deciding.
constexpr Keyword familyClasses[] = {
    {"Roman", MIF_FONT_CLASS_ROMAN},    {"Arial", MIF_FONT_CLASS_SWISS},       {"Courier", MIF_FONT_CLASS_MODERN},
    {"Cursive", MIF_FONT_CLASS_SCRIPT}, {"Symbol", MIF_FONT_CLASS_DECORATIVE},
};

// Leading in twips from which a line counts as spaced one and a half, and double.
constexpr int32_t oneAndHalfLeading = 120;
constexpr int32_t doubleLeading = 240;

bool equal(const char *left, const char *right)
{
    return strcmp(left, right) == 0;
}

template <size_t count>
const Keyword *findKeyword(const Keyword (&keywords)[count], const char *text)
{
    for (const Keyword &keyword : keywords) {
        if (equal(keyword.text, text)) {
            return &keyword;
        }
    }
    return nullptr;
}

MifChange changeIf(bool differs)
{
    return differs ? MifChange::differs : MifChange::none;
}

MifChange switchMode(MifContext *context, uint32_t mode, bool on)
{
    uint32_t &modes = context->formats.currentStyle.modes;
    modes = on ? modes | mode : modes & ~mode;
    return MifChange::none;
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
MifChange switchScript(MifContext *context, uint32_t mode, uint32_t otherMode, bool on)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    if (!on) {
        leavePosition(style, mode);
        return MifChange::none;
    }
    if ((style.modes & otherMode) == 0) {
        lowerFontSize(style);
    }
    style.modes = (style.modes & ~otherMode) | mode;
    return MifChange::none;
}

MifChange setStoredFamily(MifContext *context, const char *value)
{
    const MifFormatState &formats = context->formats;
    const MifChange change = mifSetFamily(context, value);
    if (formats.inPgfCatalog != 0 || formats.fontCatalog.pending != 0 || context->pages.inBodyText != 0) {
        mifRegisterFont(context);
    }
    return change;
}

struct StoredProperty {
    const char *name;
    MifPropertyFunction function;
};

constexpr StoredProperty storedProperties[] = {
    {"PgfAlignment", mifSetAlignment},
    {"PgfFIndent", mifSetMeasurement<&MifParagraphStyle::firstIndent>},
    {"PgfLIndent", mifSetMeasurement<&MifParagraphStyle::leftIndent>},
    {"PgfRIndent", mifSetMeasurement<&MifParagraphStyle::rightIndent>},
    {"PgfLeading", mifSetLeading},
    {"PgfSpBefore", mifSetMeasurement<&MifParagraphStyle::spaceBefore>},
    {"PgfSpAfter", mifSetMeasurement<&MifParagraphStyle::spaceAfter>},
    {"PgfNumTabs", mifSetTabCount},
    {"TSX", mifSetTabPosition},
    {"TSType", mifSetTabKind},
    {"FFamily", setStoredFamily},
    {"FWeight", mifSetWeightMode},
    {"FSize", mifSetSize},
    {"FAngle", mifSetAngle},
    {"FUnderlining", mifSetUnderlining},
    {"FUnderline", mifSetUnderlining},
    {"FStrike", mifSetStrike},
    {"FColor", mifSetColor},
    {"FPosition", mifSetStoredPosition},
    {"FSubScript", mifSetSubscript},
    {"FSupScript", mifSetSuperscript},
    {"FCase", mifSetCase},
    {"FPlain", mifSetPlain},
    {"FBold", mifSetBold},
    {"FItalic", mifSetStoredItalic},
};

} // namespace

MifPropertyFunction mifFindProperty(const char *name)
{
    for (const StoredProperty &property : storedProperties) {
        if (equal(property.name, name)) {
            return property.function;
        }
    }
    return nullptr;
}

MifChange mifSetAlignment(MifContext *context, const char *value)
{
    MifFormatState &formats = context->formats;
    if (const Keyword *alignment = findKeyword(alignments, value)) {
        formats.currentStyle.alignment = static_cast<int32_t>(alignment->value);
    }
    return changeIf(formats.currentStyle.alignment != formats.appliedStyle.alignment);
}

MifChange mifSetLeading(MifContext *context, const char *value)
{
    MifFormatState &formats = context->formats;
    const int32_t leading = mifParseTwips(value);
    formats.currentStyle.lineSpacing = leading >= doubleLeading       ? MIF_SPACING_DOUBLE
                                       : leading >= oneAndHalfLeading ? MIF_SPACING_ONE_AND_HALF
                                                                      : MIF_SPACING_SINGLE;
    return changeIf(formats.currentStyle.lineSpacing != formats.appliedStyle.lineSpacing);
}

// Whole points: a fraction and the unit are ignored.
MifChange mifSetSize(MifContext *context, const char *value)
{
    MifFormatState &formats = context->formats;
    formats.currentStyle.fontSize = mifParseInteger(value);
    return changeIf(formats.currentStyle.fontSize != formats.appliedStyle.fontSize);
}

MifChange mifSetFamily(MifContext *context, const char *value)
{
    MifFormatState &formats = context->formats;
    char(&family)[sizeof(formats.currentStyle.fontFamily)] = formats.currentStyle.fontFamily;
    const size_t length = std::min(strlen(value), sizeof(family) - 1);
    memcpy(family, value, length);
    family[length] = '\0';
    return changeIf(!equal(family, formats.appliedStyle.fontFamily));
}

MifChange mifSetColor(MifContext *context, const char *value)
{
    MifFormatState &formats = context->formats;
    const Keyword *color = findKeyword(colors, value);
    formats.currentStyle.textColor = color != nullptr ? color->value : black;
    return changeIf(formats.currentStyle.textColor != formats.appliedStyle.textColor);
}

MifChange mifSetWeightMode(MifContext *context, const char *value)
{
    mifSetWeight(context, value);
    return MifChange::none;
}

MifChange mifSetAngle(MifContext *context, const char *value)
{
    return switchMode(context, MODE_ITALIC, equal(value, "Italic"));
}

MifChange mifSetUnderlining(MifContext *context, const char *value)
{
    return switchMode(context, MODE_UNDERLINE, !equal(value, "FNoUnderlining") && !equal(value, "No"));
}

MifChange mifSetStrike(MifContext *context, const char *value)
{
    return switchMode(context, MODE_STRIKE, equal(value, "Yes"));
}

MifChange mifSetCase(MifContext *context, const char *value)
{
    if (equal(value, "FAsTyped") || equal(value, "FLowerCase")) {
        return switchMode(context, MODE_SMALL_CAPS | MODE_UPPER_CASE, false);
    }
    if (equal(value, "FSmallCaps")) {
        switchMode(context, MODE_UPPER_CASE, false);
        return switchMode(context, MODE_SMALL_CAPS, true);
    }
    if (equal(value, "FUpperCase")) {
        switchMode(context, MODE_SMALL_CAPS, false);
        return switchMode(context, MODE_UPPER_CASE, true);
    }
    return MifChange::none;
}

MifChange mifSetPlain(MifContext *context, const char *value)
{
    return equal(value, "Yes") ? switchMode(context, MODE_BOLD | MODE_ITALIC, false) : MifChange::none;
}

MifChange mifSetBold(MifContext *context, const char *value)
{
    return switchMode(context, MODE_BOLD, equal(value, "Yes"));
}

MifChange mifSetItalic(MifContext *context, const char *value)
{
    return switchMode(context, MODE_ITALIC, equal(value, "Yes"));
}

MifChange mifSetStoredItalic(MifContext *context, const char *value)
{
    return switchMode(context, MODE_ITALIC, equal(value, "True"));
}

// A position set twice reduces the size twice.
MifChange mifSetPosition(MifContext *context, const char *value)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    if (equal(value, "FNormal")) {
        leavePosition(style, MODE_SUPERSCRIPT);
        leavePosition(style, MODE_SUBSCRIPT);
    } else if (equal(value, "FSuperscript")) {
        leavePosition(style, MODE_SUBSCRIPT);
        style.modes |= MODE_SUPERSCRIPT;
        lowerFontSize(style);
    } else if (equal(value, "FSubscript")) {
        leavePosition(style, MODE_SUPERSCRIPT);
        style.modes |= MODE_SUBSCRIPT;
        lowerFontSize(style);
    }
    return MifChange::none;
}

MifChange mifSetStoredPosition(MifContext *context, const char *value)
{
    if (equal(value, "FNormal")) {
        return switchMode(context, MODE_SUPERSCRIPT | MODE_SUBSCRIPT, false);
    }
    if (equal(value, "FSuperscript")) {
        switchMode(context, MODE_SUBSCRIPT, false);
        return switchMode(context, MODE_SUPERSCRIPT, true);
    }
    if (equal(value, "FSubscript")) {
        switchMode(context, MODE_SUPERSCRIPT, false);
        return switchMode(context, MODE_SUBSCRIPT, true);
    }
    return MifChange::none;
}

MifChange mifSetSuperscript(MifContext *context, const char *value)
{
    return switchScript(context, MODE_SUPERSCRIPT, MODE_SUBSCRIPT, equal(value, "Yes"));
}

MifChange mifSetSubscript(MifContext *context, const char *value)
{
    return switchScript(context, MODE_SUBSCRIPT, MODE_SUPERSCRIPT, equal(value, "Yes"));
}

MifChange mifSetTabCount(MifContext *context, const char *value)
{
    return mifProcessTabArrays(context, mifParseInteger(value)) != 0 ? MifChange::none : MifChange::failed;
}

MifChange mifSetTabPosition(MifContext *context, const char *value)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    if (style.tabPositionsFilled < style.tabCount) {
        style.tabPositions[style.tabPositionsFilled++] = mifParseTwips(value);
    }
    return MifChange::none;
}

MifChange mifSetTabKind(MifContext *context, const char *value)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    if (style.tabKindsFilled < style.tabCount) {
        style.tabKinds[style.tabKindsFilled++] = equal(value, "Center")  ? MIF_TAB_CENTER
                                                 : equal(value, "Right") ? MIF_TAB_RIGHT
                                                                         : MIF_TAB_LEFT;
    }
    return MifChange::none;
}

void mifSetWeight(MifContext *context, const char *weight)
{
    switchMode(context, MODE_BOLD, equal(weight, "Bold") || equal(weight, "Book") || equal(weight, "DemiBold"));
}

void mifRegisterFont(MifContext *context)
{
    MifParagraphStyle &style = context->formats.currentStyle;
    MifFontRecord record = {};
    for (const Keyword &familyClass : familyClasses) {
        if (strstr(style.fontFamily, familyClass.text) != nullptr) {
            record.familyClass = static_cast<uint8_t>(familyClass.value);
            break;
        }
    }
    memcpy(record.faceName, style.fontFamily, strnlen(style.fontFamily, sizeof(record.faceName) - 1));
    const MifHostState &host = context->host;
    const uint32_t number =
        host.notifyCallback != nullptr ? host.notifyCallback(host.notifyCookie, HOST_NOTIFY_FONT, &record) : 0;
    style.hostFontNumber = number != 0 ? static_cast<int32_t>(number - 1) : 0;
}

int32_t mifScaleFontSize(int32_t size, int32_t numerator, int32_t denominator)
{
    return mifSaturate(int64_t{size} * numerator / denominator);
}
