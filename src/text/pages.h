// Pages, text rectangles and notes: which text is document text.
//
// The page layouts at the top of a document give the IDs of the body pages' text rectangles; each line of text then
// names the rectangle it is placed in. Headers and footers of master pages, reference pages and footnotes are no
// document text.
#ifndef MIFREADER_SRC_TEXT_PAGES_H
#define MIFREADER_SRC_TEXT_PAGES_H

#include "reader/context.h"

// Statement handlers.
int mifPage(MifContext *context);
int mifPageType(MifContext *context);
int mifPageSize(MifContext *context);
int mifTextRectID(MifContext *context);
int mifID(MifContext *context);

void mifFreeBodyPageTextRect(MifContext *context);

#endif
