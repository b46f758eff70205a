// The exceptions of the host library: what goes wrong with a document, told apart by what its user can do about it. The
// one exhausted resource that is none of them is the host's own heap, std::bad_alloc; the one mistake of a caller that
// is noticed, a second use of a document while an object is open, is std::logic_error.
//
// A program that tells them apart catches ObjectLimitReached before LimitReached, which it is one of, and Error last.
// All may be copied and outlive what threw them.
#ifndef MIFHOST_ERROR_H
#define MIFHOST_ERROR_H

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace mifhost
{

// The base of them all. what() is a whole message for people, in English and in one line unless the name has several:
// "NAME: byte N: REASON" with the parts that are known. It holds the name as it was given, control characters included,
// which a program that prints it to a terminal has to replace.
class Error : public std::runtime_error
{
public:
    // name      the file or document concerned, as Stream::name() has it; may be empty and is then left out
    // position  the byte concerned, counted from 0, where there is one
    // reason    what is wrong, in words that can stand behind a colon, without a full stop
    // Throws std::bad_alloc when there is no memory for the message.
    Error(const std::string &name, std::optional<std::uint64_t> position, const std::string &reason);

    // The byte concerned, counted from 0: in the document or, for a StreamError, in the token stream. For a failure of
    // the reader it is how far the document had been read, which may lie beyond the statement that led to it. Without a
    // value the failure has no place, such as a file that cannot be opened.
    std::optional<std::uint64_t> position() const noexcept
    {
        return position_;
    }

private:
    // What position() returns; the message has it in words.
    std::optional<std::uint64_t> position_;
};

// A file cannot be opened, read or written, or became shorter while it was read; the message has the system's words for
// it. Also for an object that a document does not have. Thrown by streams when they are made or read, by Document for
// its stream, and by Object. Another try may go well when the cause is gone.
class IoError : public Error
{
public:
    using Error::Error;
};

// The reader refused the document before its first token: it is empty, does not begin as MIF does, or has a first
// statement longer than the reader takes up. Nothing of it can be read, with whatever options.
class NotMif : public Error
{
public:
    using Error::Error;
};

// The document needs more than it was given, memory, work or a larger token buffer, or more than the reader can do: it
// has 2 GiB or more. The message tells which limit it was and, but for the heap's own, how large; with a larger one
// another try may come further. A Stream throws it for its size, before anything is read; a Document at any token, once
// those before are handed out.
class LimitReached : public Error
{
public:
    using Error::Error;
};

// An embedded object needs more than there is: its data cannot be decoded, or only with more memory. Thrown by Object
// alone, by its read() and seek(); the rest of the document is not concerned, and may be read on once the object is
// gone.
class ObjectLimitReached : public LimitReached
{
public:
    using LimitReached::LimitReached;
};

// The token stream is not well formed: a fault of the reader or of who stored the stream, never of the document. One
// that was stored and cut between two bytes of a token gives it, too. position() is that of the token, or of the field,
// that cannot be.
class StreamError : public Error
{
public:
    using Error::Error;
};

// A reader plug-in cannot be loaded, lacks an entry, or breaks the interface: it makes no context, takes no document,
// tells impossible numbers of bytes, or makes no progress. Another document will fare no better with it. The name is
// the plug-in's path while it is loaded and the document's afterwards.
class PluginError : public Error
{
public:
    using Error::Error;
};

} // namespace mifhost

#endif
