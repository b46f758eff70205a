#include "formats/resolution.h"

#include "reader/context.h"

int mifPgfSetParagraphStyle(MifContext *context)
{
    MifFormatState &formats = context->formats;
    if (formats.currentPgf == nullptr) {
        return 1;
    }
    bool differs = false;
    const MifStoredStatement *statement = formats.currentPgf->statements.head;
    for (; statement != nullptr; statement = statement->next) {
        if (statement->property == nullptr) {
            continue;
        }
        const MifChange change = statement->property->set(context, {statement->value, statement->number});
        if (change == MifChange::failed) {
            return 0;
        }
        differs = differs || change == MifChange::differs;
    }
    differs = differs || formats.currentStyle.modes != formats.appliedStyle.modes;
    formats.styleChanged = differs ? 1 : 0;
    return 1;
}
