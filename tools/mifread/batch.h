// Carrying out a command on all documents: inputs, threads, results, failures, exit code.
#ifndef MIFREAD_BATCH_H
#define MIFREAD_BATCH_H

#include "command.h"
#include "options.h"

namespace mifread
{

// Converts the documents, several at once, goes on after a failure, and tells on standard error what failed and what
// was lost. Results and messages come in the order of the inputs. Returns the exit code: Losses when documents fared
// differently, otherwise how all of them fared.
ExitCode convertDocuments(const Options &options, const Command &command);

} // namespace mifread

#endif
