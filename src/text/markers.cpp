#include "text/markers.h"

#include <string_view>
#include <utility>

#include "mifreader/extended.h"
#include "reader/extended_tokens.h"
#include "reader/host_memory.h"
#include "reader/statement.h"
#include "reader/units.h"
#include "text/flow.h"
#include "text/mif_text.h"
#include "text/scopes.h"

namespace
{

std::string_view viewOf(const char *text)
{
    return text != nullptr ? text : std::string_view{};
}

void release(MifContext *context, char *&text)
{
    mifRelease(context, std::exchange(text, nullptr));
}

void clear(MifContext *context)
{
    MifMarkerState &markers = context->markers;
    markers.type = 0;
    for (char **text : {&markers.typeName, &markers.text, &markers.format, &markers.sourceText, &markers.sourceFile}) {
        release(context, *text);
    }
}

// Formats of references have names, too, and are none.
int keepOfReference(MifContext *context, char *&place)
{
    return context->markers.inXRef != 0 ? mifKeepValue(context, place) : 1;
}

} // namespace

int mifMarkerType(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    context->markers.type = mifParseInteger(value);
    return 1;
}

int mifMarkerTypeName(MifContext *context)
{
    return context->markers.inMarker != 0 ? mifKeepValue(context, context->markers.typeName) : 1;
}

int mifMarkerText(MifContext *context)
{
    return context->markers.inMarker != 0 ? mifKeepValue(context, context->markers.text) : 1;
}

int mifEndMarker(MifContext *context)
{
    const MifMarkerState &markers = context->markers;
    int result = 1;
    if (mifBeginContent(context)) {
        result =
            mifWriteRecord(context, TOKEN_MARKER, {markers.type}, {viewOf(markers.typeName), viewOf(markers.text)});
    }
    clear(context);
    return result;
}

int mifReferenceFormat(MifContext *context)
{
    return keepOfReference(context, context->markers.format);
}

int mifReferenceText(MifContext *context)
{
    return keepOfReference(context, context->markers.sourceText);
}

int mifReferenceFile(MifContext *context)
{
    return keepOfReference(context, context->markers.sourceFile);
}

// One that another follows ends there. Outside of paragraphs nothing would end it.
int mifBeginReference(MifContext *context)
{
    const MifMarkerState &markers = context->markers;
    int result = 1;
    MifOpenParagraph *paragraph = mifCurrentParagraph(context);
    if (mifBeginContent(context) && paragraph != nullptr) {
        mifEndReference(context, paragraph);
        paragraph->inXRef = 1;
        result = mifWriteRecord(context, TOKEN_XREF_BEGIN, {},
                                {viewOf(markers.format), viewOf(markers.sourceText), viewOf(markers.sourceFile)});
    }
    clear(context);
    return result;
}

int mifXRefEnd(MifContext *context)
{
    mifEndReference(context, mifCurrentParagraph(context));
    return 1;
}

void mifFreeMarkers(MifContext *context)
{
    clear(context);
}
