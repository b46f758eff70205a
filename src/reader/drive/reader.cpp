// The entry points: the library's table, and the life of a document's context.
#include <cstring>

#include "formats/fonts.h"
#include "formats/paragraphs.h"
#include "formats/tab_stops.h"
#include "frames/imported_objects.h"
#include "frames/object_file.h"
#include "reader/context.h"
#include "reader/drive/extension.h"
#include "reader/drive/layout.h"
#include "reader/drive/statement_table.h"
#include "reader/header.h"
#include "reader/host_memory.h"
#include "reader/statement.h"
#include "reader/tokens.h"
#include "reader/units.h"
#include "tables/tables.h"
#include "text/pages.h"
#include "text/variables.h"

namespace
{

constexpr uint32_t rowConstants[] = {30, 60, 30, 60};

// The document's size when the host does not know it; negative when it is out of range.
int32_t measureStream(HostStream *stream)
{
    stream->seek(stream, 0, 2);
    const intptr_t size = stream->tell(stream);
    stream->seek(stream, 0, 0);
    return size >= 0 && size <= INT32_MAX ? static_cast<int32_t>(size) : -1;
}

void setDefaults(MifContext *context)
{
    context->units.documentUnit = twipsPerInch;
    context->pages.pageWidth = 12240;
    context->pages.pageHeight = 15840;
    context->pages.topMargin = twipsPerInch;
    context->formats.currentStyle.leftIndent = twipsPerInch;
    context->formats.currentStyle.rightIndent = twipsPerInch;
    context->pages.bottomMargin = twipsPerInch;
    memcpy(context->tables.rowConstants, rowConstants, sizeof(rowConstants));
}

void announceFileAccess(MifContext *context)
{
    if (context->host.notifyCallback == nullptr) {
        return;
    }
    MifFileAccess access = {};
    access.words0To2[0] = 3;
    access.words0To2[1] = 5;
    access.words0To2[2] = -1;
    access.mifFileOpen = mifFileOpen;
    access.mifFileRead = mifFileRead;
    access.mifFileSeek = mifFileSeek;
    access.mifFileTell = mifFileTell;
    access.mifFileClose = mifFileClose;
    context->host.notifyCallback(context->host.notifyCookie, HOST_NOTIFY_FILE_ACCESS, &access);
}

} // namespace

void mifGetReaderInterface(MifReaderInterface *table)
{
    *table = {};
    table->mifAllocateContext = mifAllocateContext;
    table->mifFreeContext = mifFreeContext;
    table->mifInitDoc = mifInitDoc;
    table->mifFillBuffer = mifFillBuffer;
    table->mifCharSet = mifCharSet;
}

MifContext *mifAllocateContext(void *cookie, HostNotify notify, uint32_t *result, HostServices *services,
                               uint32_t /*unused*/)
{
    *result = 1;
    auto *context = static_cast<MifContext *>(services->allocate(&services->memoryHandleArea, sizeof(MifContext)));
    if (context != nullptr) {
        memset(context, 0, sizeof(MifContext));
        context->host.services = services;
        context->host.notifyCookie = cookie;
        context->host.notifyCallback = notify;
    }
    return context;
}

int32_t mifInitDoc(MifContext *context, void * /*unused*/, int32_t size, HostStream *stream)
{
    if (context == nullptr) {
        return MIF_FAILURE;
    }
    MifSourceState &source = context->source;
    context->host.stream = stream;
    source.firstCall = 1;
    source.scanPosition = source.buffer;
    source.bufferEnd = source.buffer;
    source.totalSize = size != 0 ? size : measureStream(stream);
    context->extension.initialized = 1;
    if (source.totalSize < 0) {
        context->output.failure.reason = MIF_REASON_SIZE;
        return MIF_FAILURE;
    }
    setDefaults(context);
    announceFileAccess(context);
    if (mifPrepareExtension(context) == 0 || mifCreateHashTable(context) == 0) {
        context->output.failure.reason = MIF_REASON_MEMORY;
        return MIF_FAILURE;
    }
    return MIF_SUCCESS;
}

int32_t mifFreeContext(MifContext *context)
{
    if (context == nullptr) {
        return MIF_FAILURE;
    }
    mifFreeParagraphCatalogs(context);
    mifFreeVariables(context);
    mifTblFreeTables(context);
    mifFreeMIFStatements(context);
    mifFreeFontCatalog(context);
    mifFreeBodyPageTextRect(context);
    mifFreeHeader(context);
    mifFreeTabArrays(context);
    mifFreeImportObjects(context);
    mifFreeHashTable(context);
    mifFreeExtension(context);
    mifFreeQueuedTokens(context);
    mifRelease(context, context);
    return MIF_SUCCESS;
}

int32_t mifCharSet(void)
{
    return MIF_CHARSET_WINDOWS_1252;
}
