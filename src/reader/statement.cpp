#include "reader/statement.h"

namespace
{

// A value's bytes, which lie in the source buffer; the one at `end` is free to be overwritten.
struct ValueBytes {
    char *begin;
    char *end;
};

// Both null when the innermost statement has no value.
ValueBytes valueBytes(const MifContext *context)
{
    const MifStatement *statement = context->scanner.statementStack;
    if (statement == nullptr || statement->valueStart == nullptr || statement->valueEnd == nullptr) {
        return {nullptr, nullptr};
    }
    return {statement->valueStart, statement->valueEnd + 1};
}

// The value without its last character, zero-terminated.
char *withoutLast(const MifContext *context)
{
    const ValueBytes value = valueBytes(context);
    if (value.begin != nullptr) {
        *(value.begin < value.end ? value.end - 1 : value.end) = '\0';
    }
    return value.begin;
}

} // namespace

void mifFreeMIFStatements(MifContext *context)
{
    while (context->scanner.statementStack != nullptr) {
        mifProcessEndTag(context, 0);
    }
}

char *mifValue(MifContext *context)
{
    const ValueBytes value = valueBytes(context);
    if (value.begin != nullptr) {
        *value.end = '\0';
    }
    return value.begin;
}

char *mifUnquotedValue(MifContext *context)
{
    ValueBytes value = valueBytes(context);
    if (value.begin == nullptr) {
        return nullptr;
    }
    if (value.begin < value.end && *value.begin == '`') {
        ++value.begin;
    }
    if (value.begin < value.end && value.end[-1] == '\'') {
        --value.end;
    }
    *value.end = '\0';
    return value.begin;
}

char *mifStringValue(MifContext *context)
{
    char *value = withoutLast(context);
    return value != nullptr && *value == '`' ? value + 1 : value;
}

char *mifInnerValue(MifContext *context)
{
    char *value = withoutLast(context);
    return value != nullptr && *value != '\0' ? value + 1 : value;
}
