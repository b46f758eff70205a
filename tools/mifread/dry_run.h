// What a run would do.
#ifndef MIFREAD_DRY_RUN_H
#define MIFREAD_DRY_RUN_H

#include <vector>

#include "command.h"
#include "inputs.h"
#include "options.h"
#include "progress.h"

namespace mifread
{

// Says on standard output what would be written where, and by messages what would fail, as far as both are known
// without reading the documents. Writes no file. Returns the exit code, by what is known. Throws OutputError. inputs
// planned
ExitCode showPlan(const std::vector<Input> &inputs, const Options &options, const Command &command, Progress &messages);

} // namespace mifread

#endif
