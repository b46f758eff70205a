#include "text/pages.h"

#include <cstring>

#include "frames/frames.h"
#include "reader/host_memory.h"
#include "reader/statement.h"
#include "reader/units.h"

namespace
{

bool isBodyTextRect(const MifPageState &pages, int32_t id)
{
    return pages.bodyTextRectIDs.find(reinterpret_cast<const char *>(&id), sizeof(id)) != nullptr;
}

} // namespace

int mifPage(MifContext *context)
{
    context->pages.inBodyPage = 0;
    return 1;
}

int mifPageType(MifContext *context)
{
    char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    size_t length = strlen(value);
    while (length > 0 && value[length - 1] == ' ') {
        --length; // blanks before a closing quote
    }
    value[length] = '\0';
    context->pages.inBodyPage = strcmp(value, "BodyPage") == 0;
    return 1;
}

// Every page replaces the size, whatever its type.
int mifPageSize(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    MifMeasurementList sizes(value);
    context->pages.pageWidth = sizes.next();
    context->pages.pageHeight = sizes.next();
    return 1;
}

// A line of text names the text rectangle it is placed in; only rectangles of body pages hold document text.
int mifTextRectID(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    context->pages.inBodyText = isBodyTextRect(context->pages, mifParseInteger(value));
    return 1;
}

int mifID(MifContext *context)
{
    MifPageState &pages = context->pages;
    if (context->frames.inAFrames != 0 && context->frames.inFrame != 0) {
        return mifFrameID(context);
    }
    if (pages.inBodyPage == 0 || pages.inTextRect == 0) {
        return 1;
    }
    const char *value = mifValue(context);
    if (value == nullptr) {
        return 0;
    }
    const int32_t id = mifParseInteger(value);
    if (isBodyTextRect(pages, id)) {
        return 1;
    }
    auto *rect = mifAllocateZeroed<MifBodyTextRect>(context);
    if (rect == nullptr) {
        return 0;
    }
    rect->id = id;
    pages.bodyTextRects.append(rect);
    pages.bodyTextRectIDs.insert(rect, reinterpret_cast<const char *>(&rect->id), sizeof(rect->id));
    return 1;
}

void mifFreeBodyPageTextRect(MifContext *context)
{
    while (MifBodyTextRect *rect = context->pages.bodyTextRects.takeFirst()) {
        mifRelease(context, rect);
    }
    context->pages.bodyTextRectIDs.clear();
}
