// Where a run writes what.
#ifndef MIFREAD_PLAN_H
#define MIFREAD_PLAN_H

#include <string>
#include <vector>

#include "claims.h"
#include "command.h"
#include "inputs.h"
#include "options.h"

namespace mifread
{

// Settles and claims all places that are known before the documents are read: Input::result becomes the path of the
// result or, for commands that name their own files, of the folder for these. Documents whose results would come in
// the way of other files get a failure. Returns what is wrong with the command line, or an empty text.
std::string planResults(std::vector<Input> &inputs, const Options &options, const Command &command, Claims &claims);

// Whether a document's result is there and newer than it. What changed in one tick of the clock counts as older.
bool isUpToDate(const Input &input);

} // namespace mifread

#endif
