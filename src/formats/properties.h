// The properties of a format: one function each, which parses a value and sets its field of currentStyle.
//
// The statement's own handler and the selecting of a stored format both go through these functions; where the two
// differ, there are two functions, side by side.
#ifndef MIFREADER_SRC_FORMATS_PROPERTIES_H
#define MIFREADER_SRC_FORMATS_PROPERTIES_H

#include "reader/context.h"
#include "reader/units.h"

// What selecting a format does with a stored statement of that name; null for nothing.
MifPropertyFunction mifFindProperty(const char *name);

// Compared with appliedStyle at once.
MifChange mifSetAlignment(MifContext *context, const char *value);
MifChange mifSetLeading(MifContext *context, const char *value);
MifChange mifSetSize(MifContext *context, const char *value);
MifChange mifSetFamily(MifContext *context, const char *value); // does not announce it
MifChange mifSetColor(MifContext *context, const char *value);

template <int32_t MifParagraphStyle::*field>
MifChange mifSetMeasurement(MifContext *context, const char *value)
{
    MifFormatState &formats = context->formats;
    formats.currentStyle.*field = mifParseTwips(value);
    return formats.currentStyle.*field != formats.appliedStyle.*field ? MifChange::differs : MifChange::none;
}

// Modes. They are compared together, by whoever sets them; the functions return none.
MifChange mifSetWeightMode(MifContext *context, const char *value);
MifChange mifSetAngle(MifContext *context, const char *value);
MifChange mifSetUnderlining(MifContext *context, const char *value);
MifChange mifSetStrike(MifContext *context, const char *value);
MifChange mifSetCase(MifContext *context, const char *value);
MifChange mifSetPlain(MifContext *context, const char *value);
MifChange mifSetBold(MifContext *context, const char *value);
MifChange mifSetItalic(MifContext *context, const char *value);
MifChange mifSetStoredItalic(MifContext *context, const char *value);   // its keyword is True, not Yes
MifChange mifSetPosition(MifContext *context, const char *value);       // scales the font size
MifChange mifSetStoredPosition(MifContext *context, const char *value); // leaves the font size
MifChange mifSetSuperscript(MifContext *context, const char *value);    // both scale the font size
MifChange mifSetSubscript(MifContext *context, const char *value);

// Tab stops, which are compared only when a format is written.
MifChange mifSetTabCount(MifContext *context, const char *value);
MifChange mifSetTabPosition(MifContext *context, const char *value);
MifChange mifSetTabKind(MifContext *context, const char *value);

// Bold for the weights that count as bold.
void mifSetWeight(MifContext *context, const char *weight);

// Announces fontFamily to the host and takes over the number that the host gives it.
void mifRegisterFont(MifContext *context);

// A font size scaled by numerator / denominator, saturated.
int32_t mifScaleFontSize(int32_t size, int32_t numerator, int32_t denominator);

#endif
