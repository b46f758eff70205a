// Paragraphs and their content in the extended stream: what is written, and what must be told before it.
#ifndef MIFREADER_SRC_TEXT_FLOW_H
#define MIFREADER_SRC_TEXT_FLOW_H

#include "reader/context.h"

// Whether the text here belongs to a flow, and not to a page layout, a frame or a table definition.
bool mifIsInFlow(const MifContext *context);

// Whether the text here is any that a person reads: not that of page layouts, frames and table definitions. Hidden text
// is.
bool mifIsWritten(const MifContext *context);

inline bool mifIsHidden(const MifContext *context)
{
    return (context->flow.hidden | context->flow.outerHidden) != 0;
}

// To be called before content that is not text is written. Returns whether it is to be written; then its scopes and its
// paragraph are told.
bool mifBeginContent(MifContext *context);

// The same before text, which needs its characters' format as well.
bool mifBeginText(MifContext *context);

// Paragraphs: their beginning and their end.
void mifBeginParagraph(MifContext *context);
int mifEndParagraph(MifContext *context);

// The innermost paragraph, when it is that of the statements now open and in the innermost scope; else null.
MifOpenParagraph *mifCurrentParagraph(const MifContext *context);

// Statement handler, of PgfNumString.
int mifKeepNumber(MifContext *context);

#endif
