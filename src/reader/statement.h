// The stack of open statements, and the reading of a closing statement's value.
#ifndef MIFREADER_SRC_READER_STATEMENT_H
#define MIFREADER_SRC_READER_STATEMENT_H

#include <type_traits>

#include "reader/context.h"
#include "reader/host_memory.h"

// Opens a statement: a new node, a MifLocatedStatement in the extended stream, becomes the innermost one. Returns null
// when memory is exhausted.
template <bool isExtended = false>
MifStatement *mifPushStatement(MifContext *context, const MifStatementEntry &row, char *valueStart)
{
    auto *statement = static_cast<MifStatement *>(
        mifAllocateBytes(context, sizeof(std::conditional_t<isExtended, MifLocatedStatement, MifStatement>)));
    if (statement != nullptr) {
        *statement = {&row, valueStart, nullptr, context->scanner.statementStack};
        context->scanner.statementStack = statement;
        if (row.traits != 0) {
            context->scanner.openParagraphs += row.traits & TRAIT_PARAGRAPH;
        }
    }
    return statement;
}

// Closes the innermost statement. If runHandler is not 0, its flag is lowered and its handler run. Returns the
// handler's result, and 1 when no handler runs or no statement is open.
inline int mifProcessEndTag(MifContext *context, int runHandler)
{
    MifStatement *statement = context->scanner.statementStack;
    if (statement == nullptr) {
        return 1;
    }
    const MifStatementEntry &row = *statement->row;
    int result = 1;
    if (runHandler != 0) {
        if ((row.traits & TRAIT_FLAG) != 0) {
            row.insideFlag(*context) = 0;
        }
        result = row.handler(context);
    }
    if (statement == context->replay.savedStatement) {
        context->replay.savedStatement = nullptr; // its address may come back as another statement's
    }
    context->scanner.statementStack = statement->enclosing;
    if (row.traits != 0) {
        context->scanner.openParagraphs -= row.traits & TRAIT_PARAGRAPH;
    }
    mifRelease(context, statement);
    return result;
}

// Closes every open statement, innermost first, without running handlers.
void mifFreeMIFStatements(MifContext *context);

// The value of the closing statement, for its handler: zero-terminated in the source buffer, where the handler may
// change it, and valid until the handler returns. Null when the statement has no value. A handler calls one of them,
// once.

// The value as it stands.
char *mifValue(MifContext *context);

// Without a leading backquote, and without a straight quote at its end.
char *mifUnquotedValue(MifContext *context);

// Without a leading backquote, and without its last character whatever that is.
char *mifStringValue(MifContext *context);

// Without its first and its last character, whatever they are.
char *mifInnerValue(MifContext *context);

#endif
