// The font catalog and the properties of characters.
//
// A named font is recorded with its statements but never turned into property values: its tag only decides whether the
// paragraph's own format is taken up again or the modes are switched off. What the output is told comes from the
// paragraph format and from the property statements in the text flow.
#ifndef MIFREADER_SRC_FORMATS_FONTS_H
#define MIFREADER_SRC_FORMATS_FONTS_H

#include "reader/context.h"

// Statement handlers.
int mifFont(MifContext *context);
int mifFTag(MifContext *context);
int mifSetScript(MifContext *context); // of the three statements that raise and lower text

// The handler of statements inside a font's definition.
int mifFontStoreInformation(MifContext *context);

// Makes a catalog entry of that tag, whose definition is to follow.
int mifFontCreateNewFont(MifContext *context, const char *tag);

void mifFreeFontCatalog(MifContext *context);

#endif
