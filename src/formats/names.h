// Colours and font families, each known by its name and kept once.
#ifndef MIFREADER_SRC_FORMATS_NAMES_H
#define MIFREADER_SRC_FORMATS_NAMES_H

#include <string_view>

#include "reader/context.h"

// The one of that name, made on its first mention. Null when memory is exhausted.
MifColor *mifInternColor(MifContext *context, std::string_view name);
MifFontFamily *mifInternFamily(MifContext *context, std::string_view name);

// The host's number of a family, from 0; the first time the family is announced.
int32_t mifHostFontNumber(MifContext *context, MifFontFamily &family);

// Statement handlers, of a colour of the catalog.
int mifColorTag(MifContext *context);
int mifColorCyan(MifContext *context);
int mifColorMagenta(MifContext *context);
int mifColorYellow(MifContext *context);
int mifColorBlack(MifContext *context);
int mifEndColor(MifContext *context);

void mifFreeNames(MifContext *context);

#endif
