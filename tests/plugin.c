/* A reader plug-in that stands out: whatever the document, it gives the text "plug-in" and no more. Its functions have
 * the names of any reader's, and it is built so that others of these names may take their place: it finds its own in
 * its table, and in its calls, only where the host sees to it.
 */
#include <string.h>

#include "mifreader/reader.h"
#include "mifreader/tokens.h"

struct MifContext {
    HostServices *services;
    int charset; /* mifCharSet() as the plug-in's own calls find it */
};

int32_t mifCharSet(void)
{
    return 42;
}

MifContext *mifAllocateContext(void *cookie, HostNotify notify, uint32_t *result, HostServices *services,
                               uint32_t unused)
{
    MifContext *context = services->allocate(&services->memoryHandleArea, sizeof *context);
    (void)cookie;
    (void)notify;
    (void)unused;
    *result = 1;
    if (context != NULL) {
        context->services = services;
        context->charset = mifCharSet();
    }
    return context;
}

int32_t mifFreeContext(MifContext *context)
{
    HostServices *services = context->services;
    services->free(&services->memoryHandleArea, context);
    return MIF_SUCCESS;
}

int32_t mifInitDoc(MifContext *context, void *unused, int32_t size, HostStream *stream)
{
    (void)context;
    (void)unused;
    (void)size;
    (void)stream;
    return MIF_SUCCESS;
}

int32_t mifFillBuffer(MifContext *context, uint8_t *buffer, uint32_t *bytesWritten, int32_t *percent,
                      uint32_t bufferSize)
{
    static const char text[] = "plug-in";
    static const uint8_t head[] = {TOKEN_TEXT, 9 + 7, 0, 0, 0, 7, 0, 0, 0};
    const uint8_t charset[] = {TOKEN_CHARSET, 9, 0, 0, 0, (uint8_t)context->charset, 0, 0, 0};
    if (bufferSize < sizeof head + 7 + sizeof charset) {
        return MIF_FAILURE;
    }
    memcpy(buffer, head, sizeof head);
    memcpy(buffer + sizeof head, text, 7);
    memcpy(buffer + sizeof head + 7, charset, sizeof charset);
    *bytesWritten = sizeof head + 7 + sizeof charset;
    *percent = 100;
    return MIF_SUCCESS;
}

void mifGetReaderInterface(MifReaderInterface *table)
{
    memset(table, 0, sizeof *table);
    table->mifAllocateContext = mifAllocateContext;
    table->mifFreeContext = mifFreeContext;
    table->mifInitDoc = mifInitDoc;
    table->mifFillBuffer = mifFillBuffer;
    table->mifCharSet = mifCharSet;
}
