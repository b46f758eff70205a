#include "text/scopes.h"

#include <utility>

#include "formats/tab_list.h"
#include "mifreader/extended.h"
#include "reader/extended_tokens.h"
#include "reader/host_memory.h"
#include "reader/token_bytes.h"
#include "tables/table_layout.h"

namespace
{

void tellBegin(MifContext *context, MifScope &scope)
{
    switch (scope.kind) {
    case SCOPE_NOTE:
        mifWriteRecord(context, TOKEN_NOTE_BEGIN, {scope.id});
        break;
    case SCOPE_BOX:
        mifWriteRecord(context, TOKEN_BOX_BEGIN, {scope.id});
        break;
    case SCOPE_TABLE:
        mifTellTable(context);
        break;
    case SCOPE_TITLE:
        mifWriteBareToken(context, TOKEN_TITLE_BEGIN);
        break;
    default:
        break;
    }
    scope.isTold = 1;
}

void tellEnd(MifContext *context, const MifScope &scope)
{
    switch (scope.kind) {
    case SCOPE_NOTE:
        mifWriteBareToken(context, TOKEN_NOTE_END);
        break;
    case SCOPE_BOX:
        mifWriteBareToken(context, TOKEN_BOX_END);
        break;
    case SCOPE_TABLE:
        mifWriteBareToken(context, TOKEN_TABLE_CLOSE);
        break;
    case SCOPE_TITLE:
        mifWriteBareToken(context, TOKEN_TITLE_END);
        break;
    default:
        break;
    }
}

void tellFrom(MifContext *context, MifScope *scope)
{
    if (scope == nullptr || scope->isTold != 0) {
        return;
    }
    tellFrom(context, scope->enclosing);
    tellBegin(context, *scope);
}

void freeParagraph(MifContext *context)
{
    MifOpenParagraph *&innermost = context->flow.paragraphs;
    mifRelease(context, innermost->number);
    mifRelease(context, std::exchange(innermost, innermost->enclosing));
}

} // namespace

bool mifOpenScope(MifContext *context, uint32_t kind, const MifStatement *owner, int32_t id)
{
    MifFlowState &flow = context->flow;
    if (flow.scopeCount == mostScopes) {
        return false;
    }
    auto *scope = static_cast<MifScope *>(mifAllocateBytes(context, sizeof(MifScope)));
    if (scope == nullptr) {
        return false;
    }
    MifExtendedStyle &wanted = context->formats.extended.wanted;
    // That of a flow, which opens in its first paragraph, is around it.
    const uint32_t paragraphs = kind == SCOPE_BOX ? flow.flowParagraphs : context->scanner.openParagraphs;
    *scope = {flow.scopes,      owner, kind, id, paragraphs, 0, context->replay.readingStretch, flow.hidden,
              flow.outerHidden, wanted};
    wanted = {};
    flow.scopes = scope;
    ++flow.scopeCount;
    flow.outerHidden |= flow.hidden;
    flow.hidden = 0;
    if (kind == SCOPE_NOTE || kind == SCOPE_BOX) {
        flow.outerHidden = 0; // they stand elsewhere
        context->pages.inBodyText = 1;
    }
    return true;
}

void mifBeginDefinitions(MifContext *context)
{
    mifOpenScope(context, SCOPE_DEFINITIONS, context->scanner.statementStack);
}

int mifEndDefinitions(MifContext *context)
{
    if (mifOwnScope(context, SCOPE_DEFINITIONS) != nullptr) {
        mifCloseScope(context);
    }
    return 1;
}

MifScope *mifOwnScope(const MifContext *context, uint32_t kind)
{
    MifScope *scope = context->flow.scopes;
    const bool isOwn = scope != nullptr && scope->owner == context->scanner.statementStack && scope->kind == kind;
    return isOwn ? scope : nullptr;
}

void mifCloseScope(MifContext *context)
{
    MifFlowState &flow = context->flow;
    MifScope *scope = flow.scopes;
    mifDropParagraphs(context, scope->paragraphs + 1);
    if (scope->isTold != 0) {
        tellEnd(context, *scope);
    }
    MifExtendedStyle &wanted = context->formats.extended.wanted;
    mifFreeTabs(context, wanted.tabs);
    wanted = scope->style;
    flow.hidden = scope->hidden;
    flow.outerHidden = scope->outerHidden;
    flow.scopes = scope->enclosing;
    --flow.scopeCount;
    mifRelease(context, scope);
    if (!mifInNoteOrBox(context)) {
        context->pages.inBodyText = flow.isInBody;
    }
}

void mifTellScopes(MifContext *context)
{
    tellFrom(context, context->flow.scopes);
}

bool mifInNoteOrBox(const MifContext *context)
{
    const MifScope *scope = context->flow.scopes;
    while (scope != nullptr && scope->kind != SCOPE_NOTE && scope->kind != SCOPE_BOX) {
        scope = scope->enclosing;
    }
    return scope != nullptr;
}

void mifCloseReplayedScopes(MifContext *context)
{
    while (context->flow.scopes != nullptr && context->flow.scopes->isInReplay != 0) {
        mifCloseScope(context);
    }
}

void mifCloseScopes(MifContext *context)
{
    while (context->flow.scopes != nullptr) {
        mifCloseScope(context);
    }
}

void mifEndReference(MifContext *context, MifOpenParagraph *paragraph)
{
    if (paragraph != nullptr && paragraph->inXRef != 0) {
        paragraph->inXRef = 0;
        mifWriteBareToken(context, TOKEN_XREF_END);
    }
}

void mifDropParagraphs(MifContext *context, uint32_t depth)
{
    const MifFlowState &flow = context->flow;
    while (flow.paragraphs != nullptr && flow.paragraphs->depth >= depth) {
        mifEndReference(context, flow.paragraphs);
        freeParagraph(context);
    }
}

void mifFreeScopes(MifContext *context)
{
    MifFlowState &flow = context->flow;
    while (MifScope *scope = flow.scopes) {
        flow.scopes = scope->enclosing;
        mifFreeTabs(context, scope->style.tabs);
        mifRelease(context, scope);
    }
    flow.scopeCount = 0;
    while (flow.paragraphs != nullptr) {
        freeParagraph(context);
    }
}
