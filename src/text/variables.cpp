#include "text/variables.h"

#include <cstring>

#include "reader/host_memory.h"
#include "reader/statement.h"
#include "reader/tokens.h"
#include "text/apply_format.h"
#include "text/conversion.h"

namespace
{

// Only the first variable of a name is ever found, so no other one is kept.
int declareVariable(MifContext *context, const char *name)
{
    context->variables.declared = nullptr;
    if (context->variables.names.find(name, strlen(name)) != nullptr) {
        return 1;
    }
    auto *variable = mifAllocateZeroed<MifVariable>(context);
    char *copy = variable != nullptr ? mifCopyText(context, name) : nullptr;
    if (copy == nullptr) {
        mifRelease(context, variable);
        return 0;
    }
    variable->name = copy;
    context->variables.variableCatalog.append(variable);
    context->variables.names.insert(variable, copy, strlen(copy));
    context->variables.declared = variable;
    return 1;
}

// The catalog keeps its escapes, so that every reference gives the same.
int writeDefinition(MifContext *context, const char *definition)
{
    char *text = mifCopyText(context, definition);
    if (text == nullptr) {
        return 0;
    }
    mifConvertString(context, text);
    const int applied = mifApplyPendingFormat(context);
    if (applied != 0 && context->pages.inBodyText != 0) {
        mifWriteText(context, text, strlen(text));
    }
    mifRelease(context, text);
    return applied;
}

} // namespace

int mifVariableName(MifContext *context)
{
    const char *name = mifInnerValue(context);
    if (name == nullptr) {
        return 0;
    }
    if (context->variables.inVariableFormats != 0) {
        return declareVariable(context, name);
    }
    const char *definition = mifFindDefinition(context, name);
    return definition != nullptr ? writeDefinition(context, definition) : 0;
}

const char *mifFindDefinition(const MifContext *context, const char *name)
{
    const auto *variable = static_cast<MifVariable *>(context->variables.names.find(name, strlen(name)));
    return variable != nullptr ? variable->definition : nullptr;
}

// A definition belongs to the variable declared last, wherever it stands.
int mifVariableDef(MifContext *context)
{
    char *value = mifInnerValue(context);
    if (value == nullptr) {
        return 0;
    }
    mifProcessEmbeddedVariables(value);
    MifVariable *variable = context->variables.declared;
    char *definition = variable != nullptr ? mifCopyText(context, value) : nullptr;
    if (definition == nullptr) {
        return 0;
    }
    mifRelease(context, variable->definition);
    variable->definition = definition;
    return 1;
}

size_t mifProcessEmbeddedVariables(char *text)
{
    const char *read = text;
    char *write = text;
    const char *lastEnd = strrchr(text, '>');
    while (*read != '\0') {
        if (*read == '<' && lastEnd != nullptr && read < lastEnd) {
            read = strchr(read, '>') + 1;
        } else {
            *write++ = *read++;
        }
    }
    *write = '\0';
    return static_cast<size_t>(write - text);
}

void mifFreeVariables(MifContext *context)
{
    while (MifVariable *variable = context->variables.variableCatalog.takeFirst()) {
        mifRelease(context, variable->name);
        mifRelease(context, variable->definition);
        mifRelease(context, variable);
    }
    context->variables.names.clear();
    context->variables.declared = nullptr;
}
