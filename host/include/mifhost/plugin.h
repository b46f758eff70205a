// The reader plug-in.
#ifndef MIFHOST_PLUGIN_H
#define MIFHOST_PLUGIN_H

#include <memory>
#include <string>

#include "mifreader/extended.h"
#include "mifreader/reader.h"

namespace mifhost
{

// A reader and its entry table. Must outlive the documents that use it; several may at once.
class Plugin
{
public:
    // The reader that the program is linked with.
    static Plugin linked();

    // Loads a reader from a shared library; a path without a slash is searched for as the system's loader does. Its
    // entries are the library's own, also where they have the names of those that the program is linked with. The
    // library is unloaded with the object. Throws PluginError when it cannot be loaded or is not a reader.
    static Plugin load(const std::string &path);

    const MifReaderInterface &entries() const noexcept
    {
        return entries_;
    }

    // The entries beside the table, mifExtendStream and mifGetFailure; null where the plug-in has none.
    struct Extension {
        decltype(&mifExtendStream) extendStream = nullptr;
        decltype(&mifGetFailure) getFailure = nullptr;
    };
    const Extension &extension() const noexcept
    {
        return extension_;
    }

private:
    struct Unload {
        void operator()(void *library) const noexcept;
    };
    using Library = std::unique_ptr<void, Unload>;

    Plugin(Library library, const MifReaderInterface &entries, const Extension &extension) noexcept;

    Library library_;
    MifReaderInterface entries_;
    Extension extension_;
};

} // namespace mifhost

#endif
