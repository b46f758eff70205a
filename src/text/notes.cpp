#include "text/notes.h"

#include "mifreader/extended.h"
#include "reader/extended_tokens.h"
#include "reader/host_memory.h"
#include "reader/losses.h"
#include "reader/statement.h"
#include "reader/units.h"
#include "text/flow.h"
#include "text/scopes.h"

namespace
{

// The record of that note, made when there is none. Null when memory is exhausted.
MifKnownNote *internNote(MifContext *context, int32_t id)
{
    MifNoteState &notes = context->notes;
    const char *key = reinterpret_cast<const char *>(&id);
    if (MifIndexNode *known = notes.ids.find(key, sizeof(id))) {
        return static_cast<MifKnownNote *>(known);
    }
    auto *note = mifAllocateZeroed<MifKnownNote>(context);
    if (note != nullptr) {
        note->id = id;
        notes.notes.append(note);
        notes.ids.insert(note, reinterpret_cast<const char *>(&note->id), sizeof(note->id));
    }
    return note;
}

void noteReference(MifContext *context, int32_t id)
{
    MifKnownNote *note = internNote(context, id);
    if (note != nullptr && note->isReferredTo == 0) {
        note->isReferredTo = 1;
        note->reference = static_cast<const MifLocatedStatement *>(context->scanner.statementStack)->position;
    }
}

} // namespace

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
            if (MifKnownNote *note = internNote(context, context->flow.scopes->id)) {
                note->isTold = 1;
            }
        }
        mifCloseScope(context);
        context->pages.inNotes = 1; // whatever notes a table in it has brought
        return 1;
    }
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    const int32_t id = mifParseInteger(value);
    if (!mifBeginText(context)) {
        return 1;
    }
    noteReference(context, id);
    return mifWriteRecord(context, TOKEN_NOTE_REFERENCE, {id});
}

void mifTellMissingNotes(MifContext *context)
{
    for (const MifKnownNote *note = context->notes.notes.head; note != nullptr; note = note->next) {
        if (note->isReferredTo != 0 && note->isTold == 0) {
            mifNoteLoss(context, MIF_LOSS_REFERENCE, note->reference);
        }
    }
}

void mifFreeNotes(MifContext *context)
{
    while (MifKnownNote *note = context->notes.notes.takeFirst()) {
        mifRelease(context, note);
    }
    context->notes.ids.clear();
}
