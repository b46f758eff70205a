// The imported object of a frame. After its statements its data may stand inline, in lines that do not follow the
// statement syntax: `=` names a facet, `&` begins a data line, `=EndInset` ends the data. The data are located in the
// stream and counted, not copied.
#ifndef MIFREADER_SRC_FRAMES_IMPORTED_OBJECTS_H
#define MIFREADER_SRC_FRAMES_IMPORTED_OBJECTS_H

#include "reader/context.h"

// Statement handlers.
int mifImportObFileDI(MifContext *context);

// Scans an object raw, from the scan position, insetDepth brackets deep: its nested statements are passed over, only
// their brackets count. Returns the position where ordinary scanning goes on: after `=EndInset`, or after the
// object's closing bracket (its statement is then closed, without its handler), or where the stretch ended inside the
// scan: scanCut is then set, and the carry length hands the unfinished line back.
char *mifProcessImportObject(MifContext *context);

// The same for an object whose name begins there, after the `<` of its start tag. Null when the stretch ends in the
// object's first line: the object has then not begun.
char *mifBeginImportObject(MifContext *context, char *name);

void mifFreeImportObjects(MifContext *context);

#endif
