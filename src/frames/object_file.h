// The five operations through which the host reads an embedded object as if it were a file. The host gets them in its
// MifFileAccess record; mifreader/reader.h says what each one does.
#ifndef MIFREADER_SRC_FRAMES_OBJECT_FILE_H
#define MIFREADER_SRC_FRAMES_OBJECT_FILE_H

#include <cstdint>

#include "mifreader/reader.h"

int32_t mifFileOpen(MifFileHandle *handle);
int32_t mifFileRead(MifFileHandle *handle, void *destination, int32_t count);
int32_t mifFileSeek(MifFileHandle *handle, int32_t offset, int32_t origin);
int32_t mifFileTell(MifFileHandle *handle);
int32_t mifFileClose(MifFileHandle *handle);

// Skips count bytes of the open object; 0 or less skips nothing. Returns count, or 0 when there are not so many.
int32_t mifFileSeekSet(MifFileHandle *handle, int32_t count);

#endif
