// Writing the format of the extended stream: only what differs from what the output was told.
#ifndef MIFREADER_SRC_TEXT_APPLY_EXTENDED_H
#define MIFREADER_SRC_TEXT_APPLY_EXTENDED_H

#include "reader/context.h"

void mifApplyParagraph(MifContext *context);
void mifApplyCharacters(MifContext *context);

#endif
