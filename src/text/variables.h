// Variables: declared once with a definition, referred to by name in the text. Building blocks in a definition stand
// for values that the reader cannot know; they are removed.
#ifndef MIFREADER_SRC_TEXT_VARIABLES_H
#define MIFREADER_SRC_TEXT_VARIABLES_H

#include <cstddef>

#include "reader/context.h"

// The definition of the variable of that name, with its escapes; null when it has none.
const char *mifFindDefinition(const MifContext *context, const char *name);

// Statement handlers. A VariableName declares a variable inside VariableFormats and refers to one everywhere else.
int mifVariableName(MifContext *context);
int mifVariableDef(MifContext *context);

// Removes the building blocks from the zero-terminated text, in place. Returns its new length. A `<` without a `>`
// after it begins no block.
size_t mifProcessEmbeddedVariables(char *text);

void mifFreeVariables(MifContext *context);

#endif
