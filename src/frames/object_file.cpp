#include "frames/object_file.h"

// No frame is recorded yet, so every name is unknown and no object is ever open.

int32_t mifFileOpen(MifFileHandle * /*handle*/)
{
    return 0;
}

int32_t mifFileRead(MifFileHandle * /*handle*/, void * /*destination*/, int32_t /*count*/)
{
    return 0;
}

int32_t mifFileSeek(MifFileHandle * /*handle*/, int32_t /*offset*/, int32_t /*origin*/)
{
    return 0;
}

int32_t mifFileTell(MifFileHandle * /*handle*/)
{
    return -1;
}

int32_t mifFileClose(MifFileHandle * /*handle*/)
{
    return 0;
}
