// Text of the extended stream: strings, special characters and variables, in UTF-8.
#ifndef MIFREADER_SRC_TEXT_EXTENDED_STRINGS_H
#define MIFREADER_SRC_TEXT_EXTENDED_STRINGS_H

#include "reader/context.h"

// Statement handlers.
int mifTakeString(MifContext *context);
int mifTakeChar(MifContext *context);
int mifTakeVariable(MifContext *context); // VariableName, of a declaration too

#endif
