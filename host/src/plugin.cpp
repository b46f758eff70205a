#include "mifhost/plugin.h"

#include <dlfcn.h>

#include <string_view>
#include <utility>

#include "mifhost/error.h"

namespace mifhost
{

namespace
{

std::string loaderMessage()
{
    const char *message = dlerror();
    return message != nullptr ? message : "unknown error";
}

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

} // namespace

void Plugin::Unload::operator()(void *library) const noexcept
{
    dlclose(library);
}

Plugin::Plugin(Library library, const MifReaderInterface &entries) noexcept
    : library_(std::move(library)), entries_(entries)
{
}

Plugin Plugin::linked()
{
    MifReaderInterface entries{};
    mifGetReaderInterface(&entries);
    return {nullptr, entries};
}

Plugin Plugin::load(const std::string &path)
{
    Library library(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (library == nullptr) {
        throw PluginError(path, std::nullopt, "cannot load the plug-in: " + loaderMessage());
    }
    void *entry = dlsym(library.get(), "mifGetReaderInterface");
    if (entry == nullptr) {
        throw PluginError(path, std::nullopt, "not a reader plug-in: " + loaderMessage());
    }

    MifReaderInterface entries{};
    reinterpret_cast<decltype(&mifGetReaderInterface)>(entry)(&entries);
    requireEntries(path, entries);
    return {std::move(library), entries};
}

} // namespace mifhost
