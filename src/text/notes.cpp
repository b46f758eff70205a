#include "text/notes.h"

#include "mifreader/extended.h"
#include "reader/extended_tokens.h"
#include "reader/statement.h"
#include "reader/units.h"
#include "text/flow.h"
#include "text/scopes.h"

// One with a value is a reference.
void mifBeginNote(MifContext *context)
{
    const MifStatement *statement = context->scanner.statementStack;
    if (context->pages.inNotes != 0 && statement->valueStart == nullptr) {
        mifOpenScope(context, SCOPE_NOTE, statement);
    }
}

void mifNameNote(MifContext *context, int32_t id)
{
    MifScope *scope = context->flow.scopes;
    if (scope != nullptr && scope->kind == SCOPE_NOTE && scope->isTold == 0) {
        scope->id = id;
    }
}

int mifTakeNote(MifContext *context)
{
    if (mifOwnScope(context, SCOPE_NOTE) != nullptr) {
        if (mifIsWritten(context)) {
            mifTellScopes(context); // an empty note is one, too
        }
        mifCloseScope(context);
        context->pages.inNotes = 1; // whatever notes a table in it has brought
        return 1;
    }
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    return mifBeginText(context) ? mifWriteRecord(context, TOKEN_NOTE_REFERENCE, {mifParseInteger(value)}) : 1;
}
