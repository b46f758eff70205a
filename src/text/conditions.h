// Conditions of the extended stream, by which text is hidden.
#ifndef MIFREADER_SRC_TEXT_CONDITIONS_H
#define MIFREADER_SRC_TEXT_CONDITIONS_H

#include "reader/context.h"

// Statement handlers. Of the catalog:
int mifConditionTag(MifContext *context);
int mifConditionState(MifContext *context);

// Of the text:
void mifBeginConditional(MifContext *context);
int mifInCondition(MifContext *context);
int mifEndConditional(MifContext *context);
int mifUnconditional(MifContext *context);

void mifFreeConditions(MifContext *context);

#endif
