// Scopes of the extended stream: notes, boxes, tables, titles, rows and cells, which have formats and conditions of
// their own.
#ifndef MIFREADER_SRC_TEXT_SCOPES_H
#define MIFREADER_SRC_TEXT_SCOPES_H

#include "reader/context.h"

// Opens a scope that an open statement owns, with no format and no condition. Its begin is told with its first content.
// Returns false, and opens none, when there are mostScopes or memory is exhausted: the formats around go on.
bool mifOpenScope(MifContext *context, uint32_t kind, const MifStatement *owner, int32_t id = 0);

// The beginning and the end of definitions, frames and pages, whose formats are not those of the text.
void mifBeginDefinitions(MifContext *context);
int mifEndDefinitions(MifContext *context);

// The innermost scope when the statement that is being closed owns it and it is of that kind; else null.
MifScope *mifOwnScope(const MifContext *context, uint32_t kind);

// Closes the innermost scope, of which there must be one, and tells its end if its begin is told. Paragraphs that are
// open in it end before it.
void mifCloseScope(MifContext *context);

// Writes the begins of the scopes that are not told yet, the outermost first.
void mifTellScopes(MifContext *context);

// Whether a note or a box is open.
bool mifInNoteOrBox(const MifContext *context);

// Closes the scopes of the table that was read, or all of them.
void mifCloseReplayedScopes(MifContext *context);
void mifCloseScopes(MifContext *context);

// Ends the cross-reference that is open in the paragraph, if there is one.
void mifEndReference(MifContext *context, MifOpenParagraph *paragraph);

// Drops the paragraphs that are nested so deep or deeper, with an end for what is open in them.
void mifDropParagraphs(MifContext *context, uint32_t depth);

// Frees scopes and paragraphs.
void mifFreeScopes(MifContext *context);

#endif
