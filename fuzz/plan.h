// What an input tells the host to do: its last bytes. So a document is an input, and an input without its last bytes a
// document.
#ifndef MIFREADER_FUZZ_PLAN_H
#define MIFREADER_FUZZ_PLAN_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace miffuzz
{

class Plan
{
public:
    // Takes the plan off the input's end, `size` bytes of it or all that there is.
    Plan(std::string_view &input, size_t size)
    {
        size = size < input.size() ? size : input.size();
        bytes_ = input.substr(input.size() - size);
        input.remove_suffix(size);
    }

    bool empty() const
    {
        return bytes_.empty();
    }

    // The next number of the plan; 0 behind its end.
    uint32_t u8()
    {
        if (bytes_.empty()) {
            return 0;
        }
        const auto value = static_cast<uint8_t>(bytes_.front());
        bytes_.remove_prefix(1);
        return value;
    }

    uint32_t u16()
    {
        const uint32_t low = u8();
        return low | u8() << 8;
    }

private:
    std::string_view bytes_;
};

} // namespace miffuzz

#endif
