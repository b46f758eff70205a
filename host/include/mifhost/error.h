// The exceptions of the host library.
#ifndef MIFHOST_ERROR_H
#define MIFHOST_ERROR_H

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace mifhost
{

// The base of them all. what() is a whole message for people, "NAME: byte N: REASON" with the parts that are known.
class Error : public std::runtime_error
{
public:
    // name      the file or document concerned; may be empty
    // position  the byte concerned, counted from 0, where there is one
    // reason    what is wrong, without a full stop
    Error(const std::string &name, std::optional<std::uint64_t> position, const std::string &reason);

    // The byte concerned, counted from 0 in the document or, for a StreamError, in the token stream.
    std::optional<std::uint64_t> position() const noexcept
    {
        return position_;
    }

private:
    std::optional<std::uint64_t> position_;
};

// A file cannot be opened, read or written.
class IoError : public Error
{
public:
    using Error::Error;
};

// The reader refused the document: it does not begin as MIF does.
class NotMif : public Error
{
public:
    using Error::Error;
};

// The document needs more than it was given, memory, work or a larger token buffer, or more than the reader can do: it
// has 2 GiB or more.
class LimitReached : public Error
{
public:
    using Error::Error;
};

// So does an embedded object: its data cannot be decoded, or only with more memory. The rest of the document is not
// concerned.
class ObjectLimitReached : public LimitReached
{
public:
    using LimitReached::LimitReached;
};

// The token stream is not well formed.
class StreamError : public Error
{
public:
    using Error::Error;
};

// A reader plug-in cannot be loaded, lacks an entry, or breaks the interface.
class PluginError : public Error
{
public:
    using Error::Error;
};

} // namespace mifhost

#endif
