// The properties of formats in the extended stream. Each sets what the document asks for; characters' properties set
// those that the target is. Texts are UTF-8, without quotes and escapes.
#ifndef MIFREADER_SRC_FORMATS_EXTENDED_PROPERTIES_H
#define MIFREADER_SRC_FORMATS_EXTENDED_PROPERTIES_H

#include "reader/context.h"

// Of paragraphs.
extern const MifProperty mifExtendedAlignment;
extern const MifProperty mifExtendedLeading;
extern const MifProperty mifExtendedFirstIndent;
extern const MifProperty mifExtendedLeftIndent;
extern const MifProperty mifExtendedRightIndent;
extern const MifProperty mifExtendedSpaceAbove;
extern const MifProperty mifExtendedSpaceBelow;
extern const MifProperty mifExtendedPlacement;
extern const MifProperty mifExtendedWithNext;
extern const MifProperty mifExtendedLanguage;
extern const MifProperty mifExtendedCellAlignment;
extern const MifProperty mifExtendedOutlineLevel;

// Of tab stops: a new list begins; what the open stop is; the stop ends.
extern const MifProperty mifExtendedTabCount;
extern const MifProperty mifExtendedTabPosition;
extern const MifProperty mifExtendedTabKind;
extern const MifProperty mifExtendedTabLeader;
extern const MifProperty mifExtendedTabStop;

// Of characters.
extern const MifProperty mifExtendedFontTag; // in a paragraph's format alone
extern const MifProperty mifExtendedFamily;
extern const MifProperty mifExtendedSize;
extern const MifProperty mifExtendedWeight;
extern const MifProperty mifExtendedAngle;
extern const MifProperty mifExtendedUnderlining;
extern const MifProperty mifExtendedOverline;
extern const MifProperty mifExtendedStrike;
extern const MifProperty mifExtendedColor;
extern const MifProperty mifExtendedSeparation;
extern const MifProperty mifExtendedPosition;
extern const MifProperty mifExtendedSuperscript;
extern const MifProperty mifExtendedSubscript;
extern const MifProperty mifExtendedCase;
extern const MifProperty mifExtendedPlain;
extern const MifProperty mifExtendedBold;
extern const MifProperty mifExtendedItalic;

// What a value reads as that sets nothing.
inline constexpr int32_t mifSetsNothing = -1;

// Whether a property's statements add up in a format, as those of tab stops do; of all others the last one counts.
bool mifAddsUp(const MifProperty *property);

// Adds the catalog's font of that tag to the paragraph's own characters.
MifChange mifSetFontTag(MifContext *context, MifPropertyValue value);

// The number of a language that documents name, below languageCount, 0 for none and unknown ones; and its code, null
// for none.
int32_t mifReadLanguage(const char *name);
const char *mifLanguageCode(int32_t language);

#endif
