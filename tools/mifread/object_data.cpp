#include "object_data.h"

#include <cstddef>
#include <vector>

#include "mifhost/error.h"
#include "mifhost/object.h"

namespace mifread
{

bool readObject(Conversion &conversion, const std::string &id,
                const std::function<void(std::span<const std::uint8_t> block)> &take)
{
    constexpr std::size_t blockSize = std::size_t{64} * 1024;
    std::vector<std::uint8_t> block(blockSize);
    mifhost::Object object(conversion.document(), id);
    std::size_t count = blockSize;
    bool isWhole = true;
    while (count == blockSize && isWhole) {
        try {
            count = object.read(block);
        } catch (const mifhost::ObjectLimitReached &error) { // its earlier blocks are kept
            conversion.addLoss(unreadableObjects, error.what());
            count = 0;
            isWhole = false;
        }
        take(std::span(block).first(count));
        conversion.keepGoing();
    }
    return isWhole;
}

} // namespace mifread
