// sample write KIND BYTES: a document of that kind and size as MIF, to standard output.
// sample convert KIND BYTES: converts one, once, for a profile; tells its size.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "documents.h"
#include "runs.h"

namespace
{

int fail(const char *reason)
{
    std::fprintf(stderr, "sample: %s\n", reason);
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        return fail("usage: sample write|convert KIND BYTES");
    }
    const std::string_view action = argv[1];
    for (const mifbench::Kind &kind : mifbench::kinds()) {
        if (kind.name != std::string_view(argv[2])) {
            continue;
        }
        const std::string mif = kind.make(std::strtoul(argv[3], nullptr, 10)).mif;
        if (action == "convert") {
            std::printf("%zu\n", mif.size());
            return mifbench::convert(mif) ? 0 : fail("the document was not converted");
        }
        return std::fwrite(mif.data(), 1, mif.size(), stdout) == mif.size() ? 0 : fail("cannot write");
    }
    return fail("there is no such kind");
}
