#include "mifhost/object.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <stdexcept>

#include "mifhost/document.h"
#include "mifhost/error.h"

namespace mifhost
{

namespace
{

// The reader needs several times as much memory and text for a block, so that a small object is better read in a small
// one.
constexpr std::size_t smallestBlock = std::size_t{4} * 1024;
constexpr std::size_t largestBlock = std::size_t{64} * 1024;

bool isComplete(const MifFileAccess &access)
{
    return access.mifFileOpen != nullptr && access.mifFileRead != nullptr && access.mifFileSeek != nullptr &&
           access.mifFileTell != nullptr && access.mifFileClose != nullptr;
}

} // namespace

Object::Object(Document &document, std::string_view id)
    : document_(document), id_(id), block_(std::make_unique_for_overwrite<std::uint8_t[]>(largestBlock))
{
    if (document_.objectIsOpen_) {
        throw std::logic_error("mifhost::Object: another object of the document is open");
    }
    const MifFileAccess &access = document_.fileAccess_;
    if (!isComplete(access)) {
        throw PluginError(document_.name(), std::nullopt, "the plug-in offers no embedded objects");
    }
    handle_.name = id_.c_str();
    handle_.context = document_.context_.get();
    if (access.mifFileOpen(&handle_) == 0) {
        throw IoError(document_.name(), std::nullopt, "there is no object " + id_);
    }

    access.mifFileSeek(&handle_, 0, MIF_SEEK_END);
    size_ = static_cast<std::uint64_t>(std::max(access.mifFileTell(&handle_), 0));
    access.mifFileSeek(&handle_, 0, MIF_SEEK_START);
    // One byte more than the object has, so that its end shows with its first block.
    blockLimit_ = static_cast<std::size_t>(std::clamp<std::uint64_t>(size_ + 1, smallestBlock, largestBlock));
    document_.objectIsOpen_ = true;
}

Object::~Object()
{
    document_.fileAccess_.mifFileClose(&handle_);
    document_.objectIsOpen_ = false;
}

void Object::seek(std::uint64_t position)
{
    if (position < blockStart_) {
        document_.fileAccess_.mifFileSeek(&handle_, 0, MIF_SEEK_START);
        blockStart_ = 0;
        blockSize_ = 0;
        ended_ = false;
    }
    while (position > blockStart_ + blockSize_ && nextBlock()) {
    }
    offset_ = static_cast<std::size_t>(std::min<std::uint64_t>(position - blockStart_, blockSize_));
}

std::size_t Object::read(std::span<std::uint8_t> destination)
{
    std::size_t done = 0;
    while (done < destination.size() && (offset_ < blockSize_ || nextBlock())) {
        const std::size_t count = std::min(destination.size() - done, blockSize_ - offset_);
        std::memcpy(destination.data() + done, block_.get() + offset_, count);
        offset_ += count;
        done += count;
    }
    return done;
}

// Goes on to the block behind the present one. Returns false when there is none.
bool Object::nextBlock()
{
    if (ended_) {
        return false;
    }
    blockStart_ += blockSize_;
    blockSize_ = 0;
    offset_ = 0;
    blockSize_ = readBlock(blockLimit_);
    if (blockSize_ == 0 && blockStart_ < size_) {
        blockSize_ = readRest();
    }
    ended_ = blockSize_ < blockLimit_;
    return blockSize_ > 0;
}

std::size_t Object::readBlock(std::size_t count)
{
    const auto wanted = static_cast<std::int32_t>(count);
    const std::int32_t delivered = document_.fileAccess_.mifFileRead(&handle_, block_.get(), wanted);
    document_.stream_.throwPendingError();
    if (document_.memory_.refusals() > 0) { // the rest of the document may do without
        document_.memory_.forgetRefusals();
        throw ObjectLimitReached(document_.name(), std::nullopt,
                                 "object " + id_ + " cannot be read: too little memory");
    }
    if (delivered < 0 || delivered > wanted) {
        throw PluginError(document_.name(), std::nullopt, "the plug-in tells no valid number of bytes read");
    }
    return static_cast<std::size_t>(delivered);
}

// Where the document ends before the object's data do, the reader delivers nothing for a block that is not whole. It
// does for as much as it counted.
std::size_t Object::readRest()
{
    // The read that failed has left the reader elsewhere.
    const MifFileAccess &access = document_.fileAccess_;
    access.mifFileSeek(&handle_, 0, MIF_SEEK_START);
    for (std::uint64_t position = 0; position < blockStart_; position += blockLimit_) {
        access.mifFileSeek(&handle_, static_cast<std::int32_t>(blockLimit_), MIF_SEEK_CURRENT);
    }
    const std::size_t count =
        readBlock(static_cast<std::size_t>(std::min<std::uint64_t>(size_ - blockStart_, blockLimit_)));
    if (count == 0) {
        throw ObjectLimitReached(document_.name(), std::nullopt,
                                 "object " + id_ + " cannot be read from its byte " + std::to_string(blockStart_) +
                                     " on: its data stand in pieces too short for the reader");
    }
    return count;
}

} // namespace mifhost
