// How the fuzzers report what must not be.
#ifndef MIFREADER_FUZZ_CHECK_H
#define MIFREADER_FUZZ_CHECK_H

#include <cstdio>
#include <cstdlib>

namespace miffuzz
{

// Ends the program, which a fuzzer takes for a finding, unless the property holds.
inline void require(bool holds, const char *property)
{
    if (!holds) {
        std::fprintf(stderr, "Does not hold: %s\n", property);
        std::abort();
    }
}

} // namespace miffuzz

#endif
