// The header that every MIF document begins with.
#ifndef MIFREADER_SRC_READER_HEADER_H
#define MIFREADER_SRC_READER_HEADER_H

#include "reader/context.h"

// Takes up the header at the scan position, keeping its version and comment. Returns 1, or 0 when the text there is no
// header; then nothing changes. Also the handler of a MIFFile statement later in the text, where it finds none.
int mifMIFFile(MifContext *context);

void mifFreeHeader(MifContext *context);

#endif
