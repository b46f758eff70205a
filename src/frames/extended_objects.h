// Imported objects of the extended stream: their statements are statements like all others, and their data lines hold
// the data as they stand.
#ifndef MIFREADER_SRC_FRAMES_EXTENDED_OBJECTS_H
#define MIFREADER_SRC_FRAMES_EXTENDED_OBJECTS_H

#include "reader/context.h"

// ImportObject: its beginning, and its handler.
void mifBeginObject(MifContext *context);
int mifEndObject(MifContext *context);

// Whether an object is open whose statements the plain stream does not see.
bool mifIsInObject(const MifContext *context);

// Takes the line of an object's data that begins at the scan position. Returns where the scan goes on.
char *mifTakeObjectLine(MifContext *context, char *lineEnd);

#endif
