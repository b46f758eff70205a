// Setting properties from the text flow, statement by statement.
#ifndef MIFREADER_SRC_FORMATS_DIRECT_H
#define MIFREADER_SRC_FORMATS_DIRECT_H

#include "reader/context.h"
#include "reader/statement.h"

// Sets a property from the closing statement's value and notes a difference. Returns what the handler is to return.
inline int mifSetDirectly(MifContext *context, const MifProperty &property)
{
    const char *text = mifUnquotedValue(context);
    if (text == nullptr) {
        return 0;
    }
    const MifChange change = property.set(context, {text, property.read(text)});
    if (change == MifChange::differs) {
        context->formats.styleChanged = 1;
    }
    return change != MifChange::failed;
}

// Likewise for a mode.
inline int mifSetModeDirectly(MifContext *context, const MifProperty &property)
{
    MifFormatState &formats = context->formats;
    if (mifSetDirectly(context, property) == 0) {
        return 0;
    }
    if (formats.currentStyle.modes != formats.appliedStyle.modes) {
        formats.styleChanged = 1;
    }
    return 1;
}

#endif
