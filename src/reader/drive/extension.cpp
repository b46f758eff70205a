#include "reader/drive/extension.h"

#include <utility>

#include "formats/extended_formats.h"
#include "frames/extended_frames.h"
#include "mifreader/extended.h"
#include "reader/host_memory.h"
#include "reader/losses.h"
#include "reader/source.h"
#include "tables/extended_tables.h"
#include "text/conditions.h"
#include "text/document.h"
#include "text/flow.h"
#include "text/markers.h"
#include "text/mif_text.h"
#include "text/notes.h"
#include "text/placement.h"
#include "text/scopes.h"

int32_t mifExtendStream(MifContext *context, uint32_t version, uint32_t encoding)
{
    if (context == nullptr || version != MIF_EXTENDED_VERSION || encoding > MIF_ENCODING_UTF_8 ||
        context->extension.initialized != 0) {
        return MIF_FAILURE;
    }
    context->extension.version = version;
    context->extension.encoding = encoding;
    return MIF_SUCCESS;
}

int32_t mifGetFailure(const MifContext *context, MifFailure *failure)
{
    if (context == nullptr) {
        return MIF_FAILURE;
    }
    *failure = context->output.failure;
    return MIF_SUCCESS;
}

int mifPrepareExtension(MifContext *context)
{
    if (context->extension.version == 0) {
        return 1;
    }
    context->text.room = static_cast<char *>(mifAllocateBytes(context, textRoom));
    return context->text.room != nullptr;
}

void mifLeaveTable(MifContext *context)
{
    if (context->extension.version == 0) {
        return;
    }
    mifCloseReplayedScopes(context);
    mifDropParagraphs(context, context->scanner.openParagraphs + 1);
    context->tables.extended.inTable = 0;
}

void mifTellDocumentEnd(MifContext *context)
{
    MifExtensionState &extension = context->extension;
    if (extension.version == 0 || extension.ended != 0) {
        return;
    }
    extension.ended = 1;
    mifCloseScopes(context);
    mifDropParagraphs(context, 0);
    mifTellMissingNotes(context);
    mifTellFindings(context);
    mifTellLossTotals(context);
}

void mifFreeExtension(MifContext *context)
{
    mifFreeExtendedFormats(context);
    mifFreeExtendedTables(context);
    mifFreeFrames(context);
    mifFreeConditions(context);
    mifFreeDocument(context);
    mifFreeMarkers(context);
    mifFreeNotes(context);
    mifFreeTextRects(context);
    mifFreeScopes(context);
    mifRelease(context, std::exchange(context->text.room, nullptr));
}
