// The walk over the statements of a stretch of MIF text.
#ifndef MIFREADER_SRC_READER_DRIVE_SCANNER_H
#define MIFREADER_SRC_READER_DRIVE_SCANNER_H

#include "reader/context.h"

// Scans from the scan position until the stretch ends, the output has reached its limit (then outputFull is set) or the
// flow is left for a table or taken up again. Each start tag opens a statement; each closing `>` runs the handler of
// the innermost one. Returns 1, or 0 when memory is exhausted: the scan then stands in the
// middle of a statement and cannot go on.
int mifProcessBuffer(MifContext *context);

#endif
