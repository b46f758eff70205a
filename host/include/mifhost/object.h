// The data of embedded objects: pictures and other files that a document carries within itself. The reader decodes them
// while they are read and keeps none of their data, so that an object costs its text in the document again at each
// reading.
#ifndef MIFHOST_OBJECT_H
#define MIFHOST_OBJECT_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "mifreader/reader.h"

namespace mifhost
{

class Document;

// An object that is embedded in a document, as a file to read. It may be opened at any moment after its Frame token,
// and again after it was closed; the destructor closes it. A document has one object open at a time, and gives no
// tokens meanwhile. Memory does not grow with the object: 64 KB, and what the reader needs for one block.
//
// It is used on the thread that uses the document. Its reads count as work of the document and call its proceed().
class Object
{
public:
    // document  must outlive the object; on the same thread
    // id        the object's identifier, from its Frame token; it is copied
    // Throws IoError when the document has no such object so far, PluginError when the reader offers no objects,
    // std::logic_error when another object of the document is open, std::bad_alloc.
    Object(Document &document, std::string_view id);
    Object(const Object &) = delete;
    Object &operator=(const Object &) = delete;
    ~Object();

    // The size in bytes as the reader counted it when it met the data, 0 to 2 GiB less one byte. For unusual data
    // read() may deliver some bytes more or fewer: read to the end rather than rely on it.
    std::uint64_t size() const noexcept
    {
        return size_;
    }

    // The position of the next read, counted in bytes from the object's start.
    std::uint64_t tell() const noexcept
    {
        return blockStart_ + offset_;
    }

    // Moves to a position counted from the start; one beyond the end becomes the end. The cost is that of reading what
    // lies between, or, to go back further than to the last block, what lies before the position: there is no index.
    // Throws as read().
    void seek(std::uint64_t position);

    // Reads destination.size() bytes, fewer only at the object's end, in whatever portions the caller likes: the reader
    // is asked for blocks of its own size. Returns their number; 0 at the end, or for no room. Throws
    //   IoError             the document cannot be read
    //   ObjectLimitReached  memory is exhausted, or the data stand in such short pieces that the reader cannot decode
    //                       them
    //   LimitReached        the work limit of the document is reached
    //   PluginError         the reader is faulty
    // and what the document's proceed() throws. After an ObjectLimitReached the document goes on once the object is
    // gone; after all others but PluginError its next() throws the same.
    std::size_t read(std::span<std::uint8_t> destination);

private:
    // Puts the block behind the present one in its place. Returns false at the end.
    bool nextBlock();
    // Reads up to count bytes, at most 64 KB, to the block, and looks for everything that can have gone wrong.
    std::size_t readBlock(std::size_t count);
    std::size_t readRest();

    Document &document_;
    std::string id_;
    MifFileHandle handle_{};
    std::uint64_t size_ = 0;
    // The reader is asked for blocks of this size, whatever the user asks for: it may deliver nothing for a small read
    // although bytes are left.
    std::size_t blockLimit_ = 0;
    std::unique_ptr<std::uint8_t[]> block_;
    std::uint64_t blockStart_ = 0; // the block's position in the object
    std::size_t blockSize_ = 0;
    std::size_t offset_ = 0; // of the next read in the block
    bool ended_ = false;     // the block is the last one
};

} // namespace mifhost

#endif
