// Base64 encoding.
#ifndef MIFCONVERT_BASE64_H
#define MIFCONVERT_BASE64_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace mifconvert
{

// Encodes a stream of bytes that comes in blocks of any size.
class Base64Encoder
{
public:
    // Appends the code of the bytes to out. Up to two bytes wait for the next block, or for finish().
    void append(std::span<const std::uint8_t> bytes, std::string &out);

    // Appends the rest and the padding. The encoder is then as new.
    void finish(std::string &out);

private:
    std::array<std::uint8_t, 3> group_{}; // the bytes that wait
    std::size_t waiting_ = 0;             // their number
};

} // namespace mifconvert

#endif
