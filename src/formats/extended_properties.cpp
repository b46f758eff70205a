#include "formats/extended_properties.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

#include "formats/names.h"
#include "formats/tab_list.h"
#include "mifreader/extended.h"
#include "mifreader/tokens.h"
#include "reader/units.h"

namespace
{

struct Keyword {
    std::string_view text;
    int32_t value;
};

// What a value reads as that is none of the known ones.
constexpr int32_t noKeyword = mifSetsNothing;

constexpr Keyword alignments[] = {
    {"LeftRight", MIF_ALIGN_LEFT_RIGHT},
    {"Left", MIF_ALIGN_LEFT},
    {"Center", MIF_ALIGN_CENTER},
    {"Right", MIF_ALIGN_RIGHT},
};

constexpr Keyword placements[] = {
    {"Anywhere", MIF_PLACEMENT_ANYWHERE},  {"ColumnTop", MIF_PLACEMENT_COLUMN},    {"PageTop", MIF_PLACEMENT_PAGE},
    {"LPageTop", MIF_PLACEMENT_LEFT_PAGE}, {"RPageTop", MIF_PLACEMENT_RIGHT_PAGE},
};

constexpr Keyword cellAlignments[] = {
    {"Top", MIF_CELL_TOP},
    {"Middle", MIF_CELL_MIDDLE},
    {"Bottom", MIF_CELL_BOTTOM},
};

constexpr Keyword tabKinds[] = {
    {"Left", MIF_TAB_LEFT},
    {"Center", MIF_TAB_CENTER},
    {"Right", MIF_TAB_RIGHT},
    {"Decimal", MIF_TAB_DECIMAL},
};

constexpr uint32_t underlines = MODE_UNDERLINE | MODE_DOUBLE_UNDERLINE | MODE_NUMERIC_UNDERLINE;
constexpr uint32_t scripts = MODE_SUPERSCRIPT | MODE_SUBSCRIPT;
constexpr uint32_t cases = MODE_SMALL_CAPS | MODE_UPPER_CASE | MODE_LOWER_CASE;

constexpr Keyword underlinings[] = {
    {"FNoUnderlining", 0},
    {"No", 0},
    {"FSingle", MODE_UNDERLINE},
    {"Yes", MODE_UNDERLINE},
    {"True", MODE_UNDERLINE},
    {"FDouble", MODE_DOUBLE_UNDERLINE},
    {"FNumeric", MODE_NUMERIC_UNDERLINE},
};

constexpr Keyword positions[] = {
    {"FNormal", 0},
    {"FSuperscript", MODE_SUPERSCRIPT},
    {"FSubscript", MODE_SUBSCRIPT},
};

constexpr Keyword letterCases[] = {
    {"FAsTyped", 0},
    {"FSmallCaps", MODE_SMALL_CAPS},
    {"FLowercase", MODE_LOWER_CASE},
    {"FLowerCase", MODE_LOWER_CASE},
    {"FUppercase", MODE_UPPER_CASE},
    {"FUpperCase", MODE_UPPER_CASE},
};

constexpr std::string_view boldWeights[] = {"Bold", "DemiBold", "Heavy", "Black"};
constexpr std::string_view italicAngles[] = {"Italic", "Oblique"};

struct Language {
    std::string_view name;
    const char *code;
};

constexpr Language languages[] = {
    {"NoLanguage", nullptr},  {"USEnglish", "en-US"}, {"UKEnglish", "en-GB"},      {"German", "de"},
    {"SwissGerman", "de-CH"}, {"French", "fr"},       {"CanadianFrench", "fr-CA"}, {"Spanish", "es"},
    {"Catalan", "ca"},        {"Italian", "it"},      {"Portuguese", "pt"},        {"Brazilian", "pt-BR"},
    {"Danish", "da"},         {"Dutch", "nl"},        {"Norwegian", "nb"},         {"Nynorsk", "nn"},
    {"Finnish", "fi"},        {"Swedish", "sv"},      {"Deutsch", "de"},
};

static_assert(std::size(languages) <= languageCount);

// The colours that a number names.
constexpr std::string_view separations[] = {"Black", "White", "Red", "Green", "Blue", "Cyan", "Magenta", "Yellow"};

template <size_t count>
int32_t findKeyword(const Keyword (&keywords)[count], std::string_view text)
{
    const Keyword *found =
        std::find_if(std::begin(keywords), std::end(keywords), [text](const Keyword &row) { return row.text == text; });
    return found != std::end(keywords) ? found->value : noKeyword;
}

template <const auto &keywords>
int32_t readKeyword(const char *text)
{
    return findKeyword(keywords, text);
}

template <const auto &words>
int32_t readIsAny(const char *text)
{
    return std::find(std::begin(words), std::end(words), std::string_view(text)) != std::end(words);
}

int32_t readSwitch(const char *text)
{
    return strcmp(text, "Yes") == 0 || strcmp(text, "True") == 0;
}

int32_t readNothing(const char * /*text*/)
{
    return 0;
}

// Font sizes are points when they have no unit.
int32_t readSize(const char *text)
{
    const double points = mifParseNumber(text);
    const char *unit = text + strcspn(text, "\"abcdefghijklmnopqrstuvwxyz");
    constexpr int32_t twipsPerPoint = 20;
    const int32_t twips = *unit != '\0' ? mifSetTwipsPerUnit(text) : twipsPerPoint;
    const double size = points * twips + 0.5;
    return size >= 0 && size < INT32_MAX ? static_cast<int32_t>(size) : 0;
}

template <int32_t MifExtendedParagraph::*field>
MifChange setParagraph(MifContext *context, MifPropertyValue value)
{
    if (value.number != noKeyword) {
        context->formats.extended.wanted.paragraph.*field = value.number;
    }
    return MifChange::none;
}

template <int32_t MifExtendedParagraph::*field>
MifChange setMeasure(MifContext *context, MifPropertyValue value)
{
    context->formats.extended.wanted.paragraph.*field = value.number;
    return MifChange::none;
}

// Some of the modes go off, and those of the value on.
template <uint32_t modes>
MifChange setOneOf(MifContext *context, MifPropertyValue value)
{
    if (value.number != noKeyword) {
        MifCharacters &characters = *context->formats.extended.target;
        characters.modes = (characters.modes & ~modes) | static_cast<uint32_t>(value.number);
    }
    return MifChange::none;
}

template <uint32_t mode, uint32_t others = 0>
MifChange setMode(MifContext *context, MifPropertyValue value)
{
    MifCharacters &characters = *context->formats.extended.target;
    characters.modes = value.number != 0 ? (characters.modes & ~others) | mode : characters.modes & ~mode;
    return MifChange::none;
}

MifChange setPlain(MifContext *context, MifPropertyValue value)
{
    if (value.number != 0) {
        context->formats.extended.target->modes &= ~(MODE_BOLD | MODE_ITALIC);
    }
    return MifChange::none;
}

MifChange setOutlineLevel(MifContext *context, MifPropertyValue value)
{
    context->formats.extended.wanted.paragraph.outlineLevel = std::clamp(value.number, 0, 255);
    return MifChange::none;
}

MifChange beginTabs(MifContext *context, MifPropertyValue /*value*/)
{
    context->formats.extended.wanted.tabs.count = 0;
    return MifChange::none;
}

MifChange setTabPosition(MifContext *context, MifPropertyValue value)
{
    MifExtendedFormatState &extended = context->formats.extended;
    extended.openStop.position = value.number;
    extended.inTabStop = 1;
    return MifChange::none;
}

MifChange setTabKind(MifContext *context, MifPropertyValue value)
{
    context->formats.extended.openStop.kind = static_cast<uint8_t>(value.number != noKeyword ? value.number : 0);
    return MifChange::none;
}

// Blanks are no leader.
MifChange setTabLeader(MifContext *context, MifPropertyValue value)
{
    MifTabStop &stop = context->formats.extended.openStop;
    size_t length = strspn(value.text, " ") == strlen(value.text) ? 0 : strlen(value.text);
    while (length >= sizeof(stop.leader) || (static_cast<unsigned char>(value.text[length]) & 0xC0) == 0x80) {
        --length; // whole characters
    }
    memcpy(stop.leader, value.text, length);
    stop.leader[length] = '\0';
    return MifChange::none;
}

MifChange takeTabStop(MifContext *context, MifPropertyValue /*value*/)
{
    return mifTakeTabStop(context) != 0 ? MifChange::none : MifChange::failed;
}

MifChange setFamily(MifContext *context, MifPropertyValue value)
{
    if (MifFontFamily *family = mifInternFamily(context, value.text)) {
        context->formats.extended.target->family = family;
    }
    return MifChange::none;
}

MifChange setSize(MifContext *context, MifPropertyValue value)
{
    context->formats.extended.target->size = value.number;
    return MifChange::none;
}

MifChange setColor(MifContext *context, MifPropertyValue value)
{
    MifCharacters &characters = *context->formats.extended.target;
    characters.color = mifInternColor(context, value.text);
    characters.hasColor = 1;
    return MifChange::none;
}

MifChange setSeparation(MifContext *context, MifPropertyValue value)
{
    MifCharacters &characters = *context->formats.extended.target;
    if (characters.hasColor == 0 && value.number >= 0 && value.number < int32_t{std::size(separations)}) {
        characters.color = mifInternColor(context, separations[value.number]);
    }
    return MifChange::none;
}

} // namespace

const MifProperty mifExtendedAlignment = {readKeyword<alignments>, setParagraph<&MifExtendedParagraph::alignment>};
const MifProperty mifExtendedLeading = {mifParseTwips, setMeasure<&MifExtendedParagraph::leading>};
const MifProperty mifExtendedFirstIndent = {mifParseTwips, setMeasure<&MifExtendedParagraph::firstIndent>};
const MifProperty mifExtendedLeftIndent = {mifParseTwips, setMeasure<&MifExtendedParagraph::leftIndent>};
const MifProperty mifExtendedRightIndent = {mifParseTwips, setMeasure<&MifExtendedParagraph::rightIndent>};
const MifProperty mifExtendedSpaceAbove = {mifParseTwips, setMeasure<&MifExtendedParagraph::spaceAbove>};
const MifProperty mifExtendedSpaceBelow = {mifParseTwips, setMeasure<&MifExtendedParagraph::spaceBelow>};
const MifProperty mifExtendedPlacement = {readKeyword<placements>, setParagraph<&MifExtendedParagraph::placement>};
const MifProperty mifExtendedWithNext = {readSwitch, setParagraph<&MifExtendedParagraph::keepsWithNext>};
const MifProperty mifExtendedLanguage = {mifReadLanguage, setMeasure<&MifExtendedParagraph::language>};
const MifProperty mifExtendedCellAlignment = {readKeyword<cellAlignments>,
                                              setParagraph<&MifExtendedParagraph::cellAlignment>};
const MifProperty mifExtendedOutlineLevel = {mifParseInteger, setOutlineLevel};
const MifProperty mifExtendedTabCount = {readNothing, beginTabs};
const MifProperty mifExtendedTabPosition = {mifParseTwips, setTabPosition};
const MifProperty mifExtendedTabKind = {readKeyword<tabKinds>, setTabKind};
const MifProperty mifExtendedTabLeader = {readNothing, setTabLeader};
const MifProperty mifExtendedTabStop = {readNothing, takeTabStop};
const MifProperty mifExtendedFontTag = {readNothing, mifSetFontTag};
const MifProperty mifExtendedFamily = {readNothing, setFamily};
const MifProperty mifExtendedSize = {readSize, setSize};
const MifProperty mifExtendedWeight = {readIsAny<boldWeights>, setMode<MODE_BOLD>};
const MifProperty mifExtendedAngle = {readIsAny<italicAngles>, setMode<MODE_ITALIC>};
const MifProperty mifExtendedUnderlining = {readKeyword<underlinings>, setOneOf<underlines>};
const MifProperty mifExtendedOverline = {readSwitch, setMode<MODE_OVERLINE>};
const MifProperty mifExtendedStrike = {readSwitch, setMode<MODE_STRIKE>};
const MifProperty mifExtendedColor = {readNothing, setColor};
const MifProperty mifExtendedSeparation = {mifParseInteger, setSeparation};
const MifProperty mifExtendedPosition = {readKeyword<positions>, setOneOf<scripts>};
const MifProperty mifExtendedSuperscript = {readSwitch, setMode<MODE_SUPERSCRIPT, MODE_SUBSCRIPT>};
const MifProperty mifExtendedSubscript = {readSwitch, setMode<MODE_SUBSCRIPT, MODE_SUPERSCRIPT>};
const MifProperty mifExtendedCase = {readKeyword<letterCases>, setOneOf<cases>};
const MifProperty mifExtendedPlain = {readSwitch, setPlain};
const MifProperty mifExtendedBold = {readSwitch, setMode<MODE_BOLD>};
const MifProperty mifExtendedItalic = {readSwitch, setMode<MODE_ITALIC>};

bool mifAddsUp(const MifProperty *property)
{
    return property == &mifExtendedTabCount || property == &mifExtendedTabPosition || property == &mifExtendedTabKind ||
           property == &mifExtendedTabLeader || property == &mifExtendedTabStop;
}

int32_t mifReadLanguage(const char *name)
{
    const Language *found = std::find_if(std::begin(languages), std::end(languages),
                                         [name](const Language &row) { return row.name == name; });
    return found != std::end(languages) ? static_cast<int32_t>(found - languages) : 0;
}

const char *mifLanguageCode(int32_t language)
{
    return languages[language].code;
}
