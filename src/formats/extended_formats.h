// Paragraph and character formats in the extended stream, where a format is what a person sees: a known tag begins from
// plain defaults, and a font ends where its paragraph's own format begins again. Entries and stored statements are
// those of catalog.h.
#ifndef MIFREADER_SRC_FORMATS_EXTENDED_FORMATS_H
#define MIFREADER_SRC_FORMATS_EXTENDED_FORMATS_H

#include "reader/context.h"

// Statement handlers.
int mifTagParagraph(MifContext *context); // PgfTag
int mifTagFont(MifContext *context);      // FTag
int mifEndPgf(MifContext *context);
int mifEndFont(MifContext *context);
int mifEndTabStop(MifContext *context);
int mifSetExtended(MifContext *context); // of all statements that set a property

// The handlers of statements inside definitions.
int mifStoreParagraphProperty(MifContext *context);
int mifStoreFontProperty(MifContext *context);

// The paragraph's own characters, which a new paragraph and the end of a font go back to.
void mifResetCharacters(MifContext *context);

// Gives back what the formats hold; the catalogs are released as the plain stream's are.
void mifFreeExtendedFormats(MifContext *context);

#endif
