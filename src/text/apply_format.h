// Telling the output the format that the document asks for, just before text is written, and only where it differs from
// what the output was last told.
#ifndef MIFREADER_SRC_TEXT_APPLY_FORMAT_H
#define MIFREADER_SRC_TEXT_APPLY_FORMAT_H

#include "reader/context.h"

// Writes the differences and the number texts that wait for this text, and makes appliedStyle equal to what it wrote.
// Outside of body text nothing is written and styleChanged stays. Returns 1, or 0 when memory is exhausted: the text
// must not be written then.
int mifApplyParagraphStyle(MifContext *context);

// Writes the format and the numbers that wait, if any. Returns what mifApplyParagraphStyle returns.
int mifApplyPendingFormat(MifContext *context);

// Switches every mode of currentStyle on, those that are on already too.
void mifSetModes(MifContext *context);

// Switches every mode of appliedStyle off. Returns 1 if there was any.
int mifClearModes(MifContext *context);

#endif
