// What all converting commands do alike: inputs, failures, losses, exit codes.
#ifndef MIFREAD_CONVERSION_H
#define MIFREAD_CONVERSION_H

#include <cstdint>
#include <functional>

#include "command.h"
#include "mifhost/document.h"
#include "output_file.h"

namespace mifread
{

// Writes one document to output, up to its last token. Returns the number of characters that could not be written.
using Converter = std::function<std::uint64_t(mifhost::Document &document, OutputFile &output)>;

// Converts every input of the options to their output and reports failures and losses on standard error. Returns the
// exit code of the whole: that of the failures when they are of one kind.
ExitCode convertInputs(const Options &options, const Converter &convert);

} // namespace mifread

#endif
