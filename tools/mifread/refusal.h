// What a file is that the reader refuses.
#ifndef MIFREAD_REFUSAL_H
#define MIFREAD_REFUSAL_H

#include <cstdint>
#include <span>
#include <string>

namespace mifread
{

// Tells what a file that begins with these bytes is instead of a MIF document, and what can be done where something
// can. Empty where nothing is known. Throws mifhost::IoError when the system's database of types cannot be read.
std::string explainRefusal(std::span<const std::uint8_t> beginning);

} // namespace mifread

#endif
