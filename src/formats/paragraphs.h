// The paragraph format catalog and the properties of paragraphs.
//
// A document names its paragraph formats once and gives each paragraph a tag. Properties that follow the tag in the
// text flow override the format for the paragraph, and stay until something else sets them.
#ifndef MIFREADER_SRC_FORMATS_PARAGRAPHS_H
#define MIFREADER_SRC_FORMATS_PARAGRAPHS_H

#include "reader/context.h"

// Statement handlers.
int mifPgf(MifContext *context);
int mifPgfTag(MifContext *context);
int mifPgfNumString(MifContext *context);

// The handler of statements inside a format's definition.
int mifPgfStoreInformation(MifContext *context);

// Makes a catalog entry of that tag, whose definition is to follow.
int mifPgfCreateNewPgf(MifContext *context, const char *tag);

// Whether a number text waits for the next text: that of the innermost open paragraph, or one outside of paragraphs.
// Those of the paragraphs around wait for their own.
inline bool mifNumberWaits(const MifContext *context)
{
    const MifFormatState &formats = context->formats;
    return formats.strayNumber != nullptr ||
           (formats.numbers != nullptr && formats.numbers->paragraph == context->scanner.openParagraphs);
}

// The number text that the next text is to begin with, which is now the caller's to release; null when none waits.
// There may be a second one.
MifWaitingNumber *mifTakeNumber(MifContext *context);

// Drops the numbers of paragraphs that are nested so deep or deeper.
void mifDropNumbers(MifContext *context, uint32_t paragraph);

// Drops the number that waits outside of paragraphs.
void mifDropStrayNumber(MifContext *context);

void mifFreeParagraphCatalogs(MifContext *context);

#endif
