// The properties of a format: one record each, with a function that reads a value and one that sets it in currentStyle.
//
// The statement's own handler and the selecting of a stored format both go through these records; where the two differ,
// there are two of them, side by side.
#ifndef MIFREADER_SRC_FORMATS_PROPERTIES_H
#define MIFREADER_SRC_FORMATS_PROPERTIES_H

#include "reader/context.h"
#include "reader/units.h"

// The handler of all statements that set a property: sets the one of the row from the closing statement's value, and
// notes a difference. Returns 1, or 0 when there is no value or memory is exhausted.
int mifSetDirectly(MifContext *context);

// Compared with appliedStyle at once.
extern const MifProperty mifAlignment;
extern const MifProperty mifLeading;
extern const MifProperty mifSize;
extern const MifProperty mifColor;
extern const MifProperty mifFamily;       // announced to the host, in a Font too
extern const MifProperty mifStoredFamily; // announced in catalogs and body text

template <int32_t MifParagraphStyle::*field>
MifChange mifSetMeasurement(MifContext *context, MifPropertyValue value)
{
    MifFormatState &formats = context->formats;
    formats.currentStyle.*field = value.number;
    return value.number != formats.appliedStyle.*field ? MifChange::differs : MifChange::none;
}

template <int32_t MifParagraphStyle::*field>
inline constexpr MifProperty mifMeasurement = {mifParseTwips, mifSetMeasurement<field>};

// Modes, which are compared together.
extern const MifProperty mifWeight;
extern const MifProperty mifStoredWeight; // has read the weight when it was stored
extern const MifProperty mifAngle;
extern const MifProperty mifUnderlining;
extern const MifProperty mifStrike;
extern const MifProperty mifCase;
extern const MifProperty mifPlain;
extern const MifProperty mifBold;
extern const MifProperty mifItalic;         // its keyword is Yes
extern const MifProperty mifStoredItalic;   // its keyword is True
extern const MifProperty mifPosition;       // scales the font size
extern const MifProperty mifStoredPosition; // does not
extern const MifProperty mifSuperscript;    // both scale the font size
extern const MifProperty mifSubscript;

// Tab stops, which are compared only when a format is written.
extern const MifProperty mifTabCount;
extern const MifProperty mifTabPosition;
extern const MifProperty mifTabKind;

// The class of that leading in twips, a MIF_SPACING value.
uint8_t mifSpacingOf(int32_t leading);

// Switches bold on or off, as the weight of that name is.
void mifSetWeight(MifContext *context, const char *weight);

// Announces fontFamily, which is of that class, to the host and takes over the number that the host gives it.
void mifRegisterFont(MifContext *context, int32_t familyClass);

// Announces a family to the host. Returns the host's number less 1, 0 when it gives none.
int32_t mifAnnounceFamily(MifContext *context, const char *family);

// A font size scaled by numerator / denominator, saturated.
int32_t mifScaleFontSize(int32_t size, int32_t numerator, int32_t denominator);

#endif
