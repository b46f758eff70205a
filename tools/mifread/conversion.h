// What all converting commands do alike: inputs, failures, losses, exit codes.
#ifndef MIFREAD_CONVERSION_H
#define MIFREAD_CONVERSION_H

#include <functional>
#include <string_view>

#include "command.h"
#include "mifhost/document.h"
#include "output_file.h"

namespace mifread
{

// Writes a line to standard error.
void complain(std::string_view message);

// Writes one document to output, up to its last token. Returns whether all of what was read could be written, and
// complains of what could not.
using Converter = std::function<bool(mifhost::Document &document, OutputFile &output)>;

// Converts every input of the options to their output and reports failures and losses on standard error. Returns the
// exit code of the whole: that of the failures when they are of one kind.
ExitCode convertInputs(const Options &options, const Converter &convert);

} // namespace mifread

#endif
