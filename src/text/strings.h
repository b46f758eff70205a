// The text of paragraphs: strings, special characters, paragraph ends, and the markers, which write nothing.
#ifndef MIFREADER_SRC_TEXT_STRINGS_H
#define MIFREADER_SRC_TEXT_STRINGS_H

#include "reader/context.h"

// Statement handlers.
int mifString(MifContext *context);
int mifChar(MifContext *context);
int mifPara(MifContext *context);
int mifMType(MifContext *context);
int mifMText(MifContext *context);

// Writes the special character of that name. Returns 1 if something was written.
int mifCharEx(MifContext *context, const char *name);

#endif
