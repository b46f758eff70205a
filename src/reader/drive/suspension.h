// Leaving the text flow for a table's text, and coming back after the table's anchor.
#ifndef MIFREADER_SRC_READER_DRIVE_SUSPENSION_H
#define MIFREADER_SRC_READER_DRIVE_SUSPENSION_H

#include "reader/context.h"

// Gives back what is left of the stretch and goes over to the table at replay.startPosition. The file position stands
// still until the return. Returns 1.
int mifSuspendCurrentBuffer(MifContext *context);

// Goes back to where the flow was left, dropping what is left of the stretch. Returns 1.
int mifRestoreCurrentBuffer(MifContext *context);

#endif
