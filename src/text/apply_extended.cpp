#include "text/apply_extended.h"

#include <algorithm>

#include "formats/names.h"
#include "formats/properties.h"
#include "formats/tab_list.h"
#include "mifreader/extended.h"
#include "mifreader/tokens.h"
#include "reader/extended_tokens.h"
#include "reader/token_bytes.h"
#include "reader/tokens.h"

namespace
{

// The modes that the plain stream has too, with the values of their token, and those that it has not.
struct PlainMode {
    uint32_t mode;
    uint32_t on;
    uint32_t off;
};

constexpr PlainMode plainModes[] = {
    {MODE_BOLD, MIF_MODE_BOLD_ON, MIF_MODE_BOLD_OFF},
    {MODE_ITALIC, MIF_MODE_ITALIC_ON, MIF_MODE_ITALIC_OFF},
    {MODE_UNDERLINE, MIF_MODE_UNDERLINE_ON, MIF_MODE_UNDERLINE_OFF},
    {MODE_STRIKE, MIF_MODE_STRIKE_ON, MIF_MODE_STRIKE_OFF},
    {MODE_SUPERSCRIPT, MIF_MODE_SUPERSCRIPT_ON, MIF_MODE_SUPERSCRIPT_OFF},
    {MODE_SUBSCRIPT, MIF_MODE_SUBSCRIPT_ON, MIF_MODE_SUBSCRIPT_OFF},
    {MODE_SMALL_CAPS, MIF_MODE_SMALL_CAPS_ON, MIF_MODE_SMALL_CAPS_OFF},
    {MODE_UPPER_CASE, MIF_MODE_UPPER_CASE_ON, MIF_MODE_UPPER_CASE_OFF},
};

struct ExtendedMode {
    uint32_t mode;
    uint32_t value;
};

constexpr ExtendedMode extendedModes[] = {
    {MODE_OVERLINE, MIF_EXTENDED_OVERLINE},
    {MODE_DOUBLE_UNDERLINE, MIF_EXTENDED_DOUBLE_UNDERLINE},
    {MODE_NUMERIC_UNDERLINE, MIF_EXTENDED_NUMERIC_UNDERLINE},
    {MODE_LOWER_CASE, MIF_EXTENDED_LOWER_CASE},
};

constexpr int32_t twipsPerPoint = 20;

// What goes off is told first, so that modes which exclude each other are never on together.
void tellModes(MifContext *context, uint32_t changed, uint32_t modes)
{
    for (const bool on : {false, true}) {
        const uint32_t told = on ? changed & modes : changed & ~modes;
        for (const PlainMode &row : plainModes) {
            if ((told & row.mode) != 0) {
                mifWriteAttribute(context, on ? row.on : row.off);
            }
        }
        for (const ExtendedMode &row : extendedModes) {
            if ((told & row.mode) != 0) {
                mifWriteMode(context, row.value, on);
            }
        }
    }
}

void tellFont(MifContext *context, const MifCharacters &wanted)
{
    const int32_t number =
        wanted.family != nullptr ? mifHostFontNumber(context, *wanted.family) : int32_t{MIF_FONT_NONE};
    mifWriteRecord(context, TOKEN_FONT, {number, wanted.size / twipsPerPoint});
    if (wanted.size % twipsPerPoint != 0) {
        mifWriteRecord(context, TOKEN_FONT_SIZE, {wanted.size});
    }
}

bool hasLeader(const MifTabList &tabs)
{
    return std::any_of(tabs.stops, tabs.stops + tabs.count,
                       [](const MifTabStop &stop) { return *stop.leader != '\0'; });
}

} // namespace

void mifApplyParagraph(MifContext *context)
{
    MifExtendedFormatState &formats = context->formats.extended;
    const MifExtendedParagraph &wanted = formats.wanted.paragraph;
    MifExtendedParagraph &told = formats.told.paragraph;
    if (wanted.leftIndent != told.leftIndent || wanted.rightIndent != told.rightIndent ||
        wanted.firstIndent != told.firstIndent || wanted.alignment != told.alignment) {
        MifParagraphStyle style = {};
        style.leftIndent = wanted.leftIndent;
        style.rightIndent = wanted.rightIndent;
        style.firstIndent = wanted.firstIndent;
        style.alignment = wanted.alignment;
        mifWriteParaFormat(context, style);
    }
    if (mifSpacingOf(wanted.leading) != mifSpacingOf(told.leading)) {
        mifWriteLineSpacing(context, mifSpacingOf(wanted.leading));
    }
    told = wanted;
    if (!mifSameTabs(formats.wanted.tabs, formats.told.tabs) &&
        mifCopyTabs(context, formats.wanted.tabs, formats.told.tabs)) {
        mifWriteStops(context, formats.told.tabs);
        if (hasLeader(formats.told.tabs)) {
            mifWriteLeaders(context, formats.told.tabs);
        }
    }
}

void mifApplyCharacters(MifContext *context)
{
    MifExtendedFormatState &formats = context->formats.extended;
    const MifCharacters &wanted = formats.wanted.characters;
    MifCharacters &told = formats.told.characters;
    if (wanted.family != told.family || wanted.size != told.size) {
        tellFont(context, wanted);
        told.family = wanted.family;
        told.size = wanted.size;
    }
    if (wanted.modes != told.modes) {
        tellModes(context, wanted.modes ^ told.modes, wanted.modes);
        told.modes = wanted.modes;
    }
    // The told colour is a value: a catalog may yet change what a name stands for.
    const uint32_t color = mifColorValue(wanted.color);
    if (color != formats.toldColor) {
        mifWriteTextColor(context, color);
        formats.toldColor = color;
    }
}
