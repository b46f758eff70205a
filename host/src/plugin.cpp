#include "mifhost/plugin.h"

#include <string_view>
#include <utility>

#include "mifhost/error.h"
#include "system.h"

namespace mifhost
{

namespace
{

void requireEntries(const std::string &path, const MifReaderInterface &entries)
{
    const auto require = [&path](bool present, std::string_view entry) {
        if (!present) {
            throw PluginError(path, std::nullopt, "the plug-in offers no " + std::string(entry));
        }
    };
    require(entries.mifAllocateContext != nullptr, "mifAllocateContext");
    require(entries.mifFreeContext != nullptr, "mifFreeContext");
    require(entries.mifInitDoc != nullptr, "mifInitDoc");
    require(entries.mifFillBuffer != nullptr, "mifFillBuffer");
}

template <typename Function>
Function findEntry(void *library, const char *name)
{
    return reinterpret_cast<Function>(system::findFunction(library, name));
}

template <typename Function>
void takeOwn(void *library, const char *name, Function linked, Function &entry)
{
    void *own = entry == linked ? system::findFunction(library, name) : nullptr;
    if (own != nullptr) {
        entry = reinterpret_cast<Function>(own);
    }
}

// A plug-in that looks up its own functions by their names may have been given those of the reader that the program is
// linked with, whose names are the same.
void takeOwnEntries(void *library, MifReaderInterface &entries)
{
    MifReaderInterface linked{};
    mifGetReaderInterface(&linked);
    takeOwn(library, "mifAllocateContext", linked.mifAllocateContext, entries.mifAllocateContext);
    takeOwn(library, "mifFreeContext", linked.mifFreeContext, entries.mifFreeContext);
    takeOwn(library, "mifInitDoc", linked.mifInitDoc, entries.mifInitDoc);
    takeOwn(library, "mifFillBuffer", linked.mifFillBuffer, entries.mifFillBuffer);
    takeOwn(library, "mifCharSet", linked.mifCharSet, entries.mifCharSet);
}

} // namespace

void Plugin::Unload::operator()(void *library) const noexcept
{
    system::unloadLibrary(library);
}

Plugin::Plugin(Library library, const MifReaderInterface &entries, const Extension &extension) noexcept
    : library_(std::move(library)), entries_(entries), extension_(extension)
{
}

Plugin Plugin::linked()
{
    MifReaderInterface entries{};
    mifGetReaderInterface(&entries);
    return {nullptr, entries, {mifExtendStream, mifGetFailure}};
}

Plugin Plugin::load(const std::string &path)
{
    Library library(system::loadLibrary(path));
    if (library == nullptr) {
        throw PluginError(path, std::nullopt, "cannot load the plug-in: " + system::lastLoaderError());
    }
    void *entry = system::findFunction(library.get(), "mifGetReaderInterface");
    if (entry == nullptr) {
        throw PluginError(path, std::nullopt, "not a reader plug-in: " + system::lastLoaderError());
    }

    MifReaderInterface entries{};
    reinterpret_cast<decltype(&mifGetReaderInterface)>(entry)(&entries);
    requireEntries(path, entries);
    takeOwnEntries(library.get(), entries);
    const Extension extension = {findEntry<decltype(&mifExtendStream)>(library.get(), "mifExtendStream"),
                                 findEntry<decltype(&mifGetFailure)>(library.get(), "mifGetFailure")};
    return {std::move(library), entries, extension};
}

} // namespace mifhost
