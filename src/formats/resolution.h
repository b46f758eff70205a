// Turning the selected paragraph format into property values.
#ifndef MIFREADER_SRC_FORMATS_RESOLUTION_H
#define MIFREADER_SRC_FORMATS_RESOLUTION_H

#include "reader/context.h"

// Applies the stored statements of currentPgf on top of currentStyle: what the format does not mention stays as the
// paragraph before left it. Then decides styleChanged anew, also from 1 to 0. Returns 1, or 0 when memory for tab stops
// is exhausted: the statements after it are not applied and styleChanged stays.
int mifPgfSetParagraphStyle(MifContext *context);

#endif
