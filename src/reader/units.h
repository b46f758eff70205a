// Numbers and measurements. Everything is read as in the C locale whatever locale the process has set, and what does
// not fit in 32 bits saturates.
#ifndef MIFREADER_SRC_READER_UNITS_H
#define MIFREADER_SRC_READER_UNITS_H

#include <cstdint>

#include "reader/context.h"

inline constexpr int32_t twipsPerInch = 1440;

// Twips per unit of the measurement, by the unit name after its number; inches when there is none or none that is
// known.
int32_t mifSetTwipsPerUnit(const char *text);

// The whole number at the start of the text, as atoi reads it; 0 when there is none.
int32_t mifParseInteger(const char *text);

// The decimal number at the start of the text, as atof reads it; 0 when there is none. May be infinite or not a number.
double mifParseNumber(const char *text);

// The measurement at the start of the text in twips: the exact product of its number and its unit, truncated toward
// zero.
int32_t mifParseTwips(const char *text);

// The measurement at the start of a list of measurements; a blank before its unit name belongs to it.
int32_t mifParseFirstTwips(const char *text);

// The value, or the nearest that fits in 32 bits.
int32_t mifSaturate(int64_t value);

// Reads a list of measurements such as ` 8.5" 11.0"` or ` 612.0 pt 792.0 pt`, each with its own unit. What stands
// before the first blank is not part of the list: MIF writes two blanks after the statement name, so that nothing does;
// a value that does not begin with a blank loses its first measurement.
class MifMeasurementList
{
public:
    explicit MifMeasurementList(const char *value);

    // The same from the first measurement on, whatever stands before it.
    static MifMeasurementList fromFirst(const char *value);

    // The next measurement in twips; 0 after the last one.
    int32_t next();

private:
    const char *rest_;
};

// Statement handlers.
int mifUnits(MifContext *context);

#endif
