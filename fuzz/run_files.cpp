// Runs a fuzzer's function over the files of folders, with any compiler: over the seed corpus and over the inputs that
// once failed.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace
{

void run(const std::filesystem::path &path)
{
    std::puts(path.string().c_str());
    std::fflush(stdout);
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
    // A block of exactly that size, so that AddressSanitizer sees every byte beyond.
    const auto input = std::make_unique<uint8_t[]>(content.size());
    std::copy(content.begin(), content.end(), input.get());
    LLVMFuzzerTestOneInput(input.get(), content.size());
}

} // namespace

// A folder that is not there has no file: there need not be an input that failed.
int main(int count, char **arguments)
{
    size_t inputs = 0;
    std::error_code missing;
    for (int index = 1; index < count; ++index) {
        for (const auto &entry : std::filesystem::directory_iterator(arguments[index], missing)) {
            run(entry.path());
            ++inputs;
        }
    }
    std::printf("%zu inputs\n", inputs);
    return inputs != 0 ? 0 : 2;
}
