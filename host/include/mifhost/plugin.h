// The reader plug-in: where the entry points that mifreader/reader.h declares come from. A program needs this header
// only to choose another reader than the one that it is linked with.
#ifndef MIFHOST_PLUGIN_H
#define MIFHOST_PLUGIN_H

#include <memory>
#include <string>

#include "mifreader/extended.h"
#include "mifreader/reader.h"

namespace mifhost
{

// A reader and its entry table. Must outlive the documents that use it; several may at once, on several threads, as the
// object never changes after it was made. It can be moved, also while documents use it, but not copied; the library
// stays loaded with the object that it was moved to.
class Plugin
{
public:
    // The reader that the program is linked with. It has nothing to unload, so that its documents may outlive the
    // object.
    static Plugin linked();

    // Loads a reader from a shared library, which is code of this process from then on: nothing confines it.
    //   path  of the library, on Windows in UTF-8; one without a slash is searched for as the system's loader does
    // Its entries are the library's own, also where they have the names of those that the program is linked with. The
    // library is unloaded with the object. Throws PluginError, with the loader's message, when it cannot be loaded or
    // does not export mifGetReaderInterface, and when the table that this fills lacks one of mifAllocateContext,
    // mifFreeContext, mifInitDoc and mifFillBuffer. mifCharSet may be missing.
    static Plugin load(const std::string &path);

    // The functions of the reader, of which only mifCharSet may be null. Valid as long as this object; copies of the
    // table as long as the library is loaded.
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
    // Hands a library back to the system's loader.
    struct Unload {
        void operator()(void *library) const noexcept;
    };
    using Library = std::unique_ptr<void, Unload>;

    // library  what to keep loaded, or null
    // entries  its functions, complete
    Plugin(Library library, const MifReaderInterface &entries, const Extension &extension) noexcept;

    // Null for the reader that the program is linked with.
    Library library_;
    MifReaderInterface entries_;
    Extension extension_;
};

} // namespace mifhost

#endif
