#include "mifconvert/base64.h"

#include <algorithm>
#include <string_view>

namespace mifconvert
{

namespace
{

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t groupSize = 3; // bytes that four digits stand for

void encodeGroup(const std::uint8_t *group, char *destination)
{
    const std::uint32_t bits = std::uint32_t{group[0]} << 16U | std::uint32_t{group[1]} << 8U | group[2];
    destination[0] = digits[bits >> 18U];
    destination[1] = digits[bits >> 12U & 63U];
    destination[2] = digits[bits >> 6U & 63U];
    destination[3] = digits[bits & 63U];
}

} // namespace

void Base64Encoder::append(std::span<const std::uint8_t> bytes, std::string &out)
{
    while (waiting_ > 0 && !bytes.empty()) {
        group_[waiting_++] = bytes.front();
        bytes = bytes.subspan(1);
        if (waiting_ == groupSize) {
            std::array<char, 4> code{};
            encodeGroup(group_.data(), code.data());
            out.append(code.data(), code.size());
            waiting_ = 0;
        }
    }

    const std::size_t groups = bytes.size() / groupSize;
    const std::size_t start = out.size();
    out.resize(start + groups * 4);
    for (std::size_t i = 0; i < groups; ++i) {
        encodeGroup(bytes.data() + i * groupSize, out.data() + start + i * 4);
    }
    for (const std::uint8_t byte : bytes.subspan(groups * groupSize)) {
        group_[waiting_++] = byte;
    }
}

void Base64Encoder::finish(std::string &out)
{
    if (waiting_ == 0) {
        return;
    }
    std::array<char, 4> code{};
    std::fill(group_.begin() + static_cast<std::ptrdiff_t>(waiting_), group_.end(), std::uint8_t{0});
    encodeGroup(group_.data(), code.data());
    out.append(code.data(), waiting_ + 1);
    out.append(groupSize - waiting_, '=');
    waiting_ = 0;
}

} // namespace mifconvert
