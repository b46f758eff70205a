#include "formats/names.h"

#include <algorithm>
#include <cstring>

#include "formats/properties.h"
#include "reader/host_memory.h"
#include "reader/statement.h"
#include "reader/units.h"
#include "text/mif_text.h"

namespace
{

struct NamedColor {
    std::string_view name;
    uint32_t value; // 0x00BBGGRR
};

constexpr NamedColor namedColors[] = {
    {"Black", 0x000000}, {"White", 0xFFFFFF}, {"Red", 0x0000FF},     {"Green", 0x00FF00},
    {"Blue", 0xFF0000},  {"Cyan", 0xFFFF00},  {"Magenta", 0xFF00FF}, {"Yellow", 0x00FFFF},
};

// A record of that name, made and appended when there is none.
template <typename Record>
Record *intern(MifContext *context, MifList<Record> &list, MifIndex &index, std::string_view name, bool &isNew)
{
    isNew = false;
    if (MifIndexNode *known = index.find(name.data(), name.size())) {
        return static_cast<Record *>(known);
    }
    auto *record = mifAllocateZeroed<Record>(context);
    char *copy = record != nullptr ? mifCopyBytes(context, name.data(), name.size()) : nullptr;
    if (copy == nullptr) {
        mifRelease(context, record);
        return nullptr;
    }
    record->name = copy;
    list.append(record);
    index.insert(record, copy, name.size());
    isNew = true;
    return record;
}

template <typename Record>
void freeList(MifContext *context, MifList<Record> &list, MifIndex &index)
{
    while (Record *record = list.takeFirst()) {
        mifRelease(context, record->name);
        mifRelease(context, record);
    }
    index.clear();
}

uint32_t glyphsOf(std::string_view family)
{
    return family == "Symbol" ? GLYPHS_SYMBOL : family == "ZapfDingbats" ? GLYPHS_DINGBATS : GLYPHS_TEXT;
}

// What a channel has of white when there is so much ink of its colour, and so much black.
uint32_t channel(int32_t ink, int32_t black)
{
    const int32_t covered = std::min(ink + black, fullInk);
    return static_cast<uint32_t>((255 * (fullInk - covered) + fullInk / 2) / fullInk);
}

template <int32_t MifInks::*ink>
int setInk(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    constexpr double percent = 1000; // parts of full ink
    const double parts = mifParseNumber(value) * percent + 0.5;
    context->formats.extended.inks.*ink = parts >= 0 && parts <= fullInk ? static_cast<int32_t>(parts)
                                          : parts > fullInk              ? fullInk
                                                                         : 0;
    return 1;
}

} // namespace

MifColor *mifInternColor(MifContext *context, std::string_view name)
{
    MifExtendedFormatState &extended = context->formats.extended;
    bool isNew = false;
    MifColor *color = intern(context, extended.colors, extended.colorNames, name, isNew);
    if (isNew) {
        const NamedColor *known = std::find_if(std::begin(namedColors), std::end(namedColors),
                                               [name](const NamedColor &row) { return row.name == name; });
        color->value = known != std::end(namedColors) ? known->value : 0;
    }
    return color;
}

MifFontFamily *mifInternFamily(MifContext *context, std::string_view name)
{
    MifExtendedFormatState &extended = context->formats.extended;
    bool isNew = false;
    MifFontFamily *family = intern(context, extended.families, extended.familyNames, name, isNew);
    if (isNew) {
        family->glyphs = glyphsOf(name);
        family->hostFontNumber = -1;
    }
    return family;
}

int32_t mifHostFontNumber(MifContext *context, MifFontFamily &family)
{
    if (family.hostFontNumber < 0) {
        family.hostFontNumber = mifAnnounceFamily(context, family.name);
    }
    return family.hostFontNumber;
}

int mifColorTag(MifContext *context)
{
    MifExtendedFormatState &extended = context->formats.extended;
    const char *value = mifUnquotedValue(context);
    char *tag = value != nullptr ? mifCopyText(context, mifTextOfValue(context, value)) : nullptr;
    if (tag == nullptr) {
        return 0;
    }
    mifRelease(context, extended.colorTag);
    extended.colorTag = tag;
    return 1;
}

int mifColorCyan(MifContext *context)
{
    return setInk<&MifInks::cyan>(context);
}

int mifColorMagenta(MifContext *context)
{
    return setInk<&MifInks::magenta>(context);
}

int mifColorYellow(MifContext *context)
{
    return setInk<&MifInks::yellow>(context);
}

int mifColorBlack(MifContext *context)
{
    return setInk<&MifInks::black>(context);
}

int mifEndColor(MifContext *context)
{
    MifExtendedFormatState &extended = context->formats.extended;
    MifColor *color = extended.colorTag != nullptr ? mifInternColor(context, extended.colorTag) : nullptr;
    if (color != nullptr) {
        const MifInks &inks = extended.inks;
        color->value = channel(inks.cyan, inks.black) | channel(inks.magenta, inks.black) << 8 |
                       channel(inks.yellow, inks.black) << 16;
    }
    mifRelease(context, extended.colorTag);
    extended.colorTag = nullptr;
    extended.inks = {};
    return color != nullptr;
}

void mifFreeNames(MifContext *context)
{
    MifExtendedFormatState &extended = context->formats.extended;
    freeList(context, extended.colors, extended.colorNames);
    freeList(context, extended.families, extended.familyNames);
    mifRelease(context, extended.colorTag);
    extended.colorTag = nullptr;
}
