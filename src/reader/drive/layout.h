// The layouts of the host interface, which hosts compiled apart from the library rely on.
#ifndef MIFREADER_SRC_READER_DRIVE_LAYOUT_H
#define MIFREADER_SRC_READER_DRIVE_LAYOUT_H

#include <cstddef>

#include "mifreader/reader.h"

// 4 bytes a slot on a 32-bit build, 8 on a 64-bit one.
constexpr size_t mifSlot(size_t number)
{
    return number * sizeof(void *);
}

static_assert(sizeof(HostServices) == mifSlot(42));
static_assert(offsetof(HostServices, memoryHandleArea) == mifSlot(37));
static_assert(offsetof(HostServices, allocate) == mifSlot(38));
static_assert(offsetof(HostServices, free) == mifSlot(39));
static_assert(offsetof(HostServices, allocateZeroed) == mifSlot(41));

static_assert(sizeof(HostStream) == mifSlot(13));
static_assert(offsetof(HostStream, read) == mifSlot(9));
static_assert(offsetof(HostStream, seek) == mifSlot(11));
static_assert(offsetof(HostStream, tell) == mifSlot(12));

static_assert(sizeof(MifReaderInterface) == mifSlot(11));
static_assert(offsetof(MifReaderInterface, mifAllocateContext) == mifSlot(0));
static_assert(offsetof(MifReaderInterface, mifFreeContext) == mifSlot(1));
static_assert(offsetof(MifReaderInterface, mifInitDoc) == mifSlot(2));
static_assert(offsetof(MifReaderInterface, mifFillBuffer) == mifSlot(3));
static_assert(offsetof(MifReaderInterface, mifCharSet) == mifSlot(9));

static_assert(sizeof(MifFileAccess) == mifSlot(17));
static_assert(offsetof(MifFileAccess, words0To2) == mifSlot(0));
static_assert(offsetof(MifFileAccess, mifFileOpen) == mifSlot(8));
static_assert(offsetof(MifFileAccess, mifFileRead) == mifSlot(9));
static_assert(offsetof(MifFileAccess, mifFileSeek) == mifSlot(11));
static_assert(offsetof(MifFileAccess, mifFileTell) == mifSlot(12));
static_assert(offsetof(MifFileAccess, mifFileClose) == mifSlot(13));

static_assert(sizeof(MifFileHandle) == mifSlot(5));
static_assert(offsetof(MifFileHandle, name) == mifSlot(3));
static_assert(offsetof(MifFileHandle, context) == mifSlot(4));

static_assert(sizeof(MifFontRecord) == 60);
static_assert(offsetof(MifFontRecord, familyClass) == 27);
static_assert(offsetof(MifFontRecord, faceName) == 28);

#if UINTPTR_MAX == 0xFFFFFFFF
static_assert(offsetof(HostServices, memoryHandleArea) == 148 && offsetof(HostServices, allocateZeroed) == 164);
static_assert(offsetof(HostStream, read) == 36 && offsetof(HostStream, seek) == 44 && offsetof(HostStream, tell) == 48);
static_assert(sizeof(MifReaderInterface) == 44 && offsetof(MifReaderInterface, mifCharSet) == 36);
static_assert(sizeof(MifFileAccess) == 68 && offsetof(MifFileAccess, mifFileClose) == 52);
static_assert(offsetof(MifFileHandle, name) == 12 && offsetof(MifFileHandle, context) == 16);
#endif

#endif
