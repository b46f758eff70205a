#include "reader/losses.h"

#include "reader/extended_tokens.h"
#include "reader/host_memory.h"
#include "reader/source.h"

void mifCountRefusal(MifContext *context)
{
    ++context->extension.refusals;
}

int32_t mifLossPosition(const MifContext *context, const char *byte)
{
    return mifPositionOf(context, byte) - context->source.missing;
}

void mifNoteLoss(MifContext *context, uint32_t kind, int32_t position)
{
    MifExtensionState &extension = context->extension;
    if (extension.version == 0) {
        return;
    }
    MifLossCount &losses = extension.losses[kind];
    if (losses.count == 0) {
        losses.first = position;
    }
    losses.count += losses.count != UINT32_MAX ? 1 : 0;
    if (extension.lossesTold < mostLossesTold) {
        ++extension.lossesTold;
        mifWriteLoss(context, kind, position);
    }
}

void mifNoteLossHere(MifContext *context, uint32_t kind)
{
    if (context->extension.version == 0) {
        return;
    }
    const MifStatement *statement = context->scanner.statementStack;
    mifNoteLoss(context, kind,
                statement != nullptr ? static_cast<const MifLocatedStatement *>(statement)->position
                                     : mifLossPosition(context, context->source.scanPosition));
}

void mifTellRefusedRecords(MifContext *context)
{
    const uint32_t refusals = context->extension.refusals;
    context->extension.refusals = 0;
    for (uint32_t index = 0; index < refusals; ++index) {
        mifNoteLoss(context, MIF_LOSS_RECORD, mifLossPosition(context, context->source.scanPosition));
    }
}

void mifTellLossTotals(MifContext *context)
{
    MifExtensionState &extension = context->extension;
    mifTellRefusals(context);
    if (context->scanner.statementStack != nullptr && extension.losses[MIF_LOSS_END].count == 0) {
        mifNoteLossHere(context, MIF_LOSS_END);
    }
    for (uint32_t kind = 0; kind < lossKinds; ++kind) {
        if (extension.losses[kind].count != 0) {
            mifWriteLossTotal(context, kind, extension.losses[kind]);
        }
    }
}
