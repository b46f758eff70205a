// The paragraph format catalog and the properties of paragraphs.
//
// A document names its paragraph formats once and gives each paragraph a tag. Properties that follow the tag in the
// text flow override the format for the paragraph, and stay until something else sets them.
#ifndef MIFREADER_SRC_FORMATS_PARAGRAPHS_H
#define MIFREADER_SRC_FORMATS_PARAGRAPHS_H

#include "reader/context.h"

// Statement handlers.
int mifPgfCatalog(MifContext *context);
int mifPgf(MifContext *context);
int mifPgfTag(MifContext *context);
int mifPgfNumString(MifContext *context);
int mifPgfFont(MifContext *context);
int mifPgfAlignment(MifContext *context);
int mifPgfLeading(MifContext *context);
int mifPgfFIndent(MifContext *context);
int mifPgfLIndent(MifContext *context);
int mifPgfRIndent(MifContext *context);
int mifPgfSpBefore(MifContext *context);
int mifPgfSpAfter(MifContext *context);
int mifPgfNumTabs(MifContext *context);
int mifTabStop(MifContext *context);
int mifTSX(MifContext *context);
int mifTSType(MifContext *context);

// The handler of statements inside a format's definition.
int mifPgfStoreInformation(MifContext *context);

// Makes a catalog entry of that tag, whose definition is to follow.
int mifPgfCreateNewPgf(MifContext *context, const char *tag);

// The number text of the paragraph that is being read. The one of a paragraph that a table or a footnote interrupts is
// another, and stays.
MifPendingNumber &mifOwnNumber(MifContext *context);

// Whether the number text of an interrupted paragraph waits: the format is not done with before that is written.
bool mifInterruptedNumber(const MifContext *context);

void mifFreeParagraphCatalogs(MifContext *context);

#endif
