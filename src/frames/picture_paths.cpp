#include "frames/picture_paths.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "frames/extended_frames.h"
#include "frames/extended_objects.h"
#include "frames/imported_objects.h"
#include "reader/host_memory.h"
#include "reader/statement.h"
#include "text/mif_text.h"

namespace
{

// What stands in place of a path when the data are in the document.
constexpr std::string_view noFile = "2.0 internal inset";

// From a device-independent path, such as `<u\><c\>images<c\>logo.gif`, to names with slashes between.
size_t convertPath(std::string_view path, char *out)
{
    char *place = out;
    const auto append = [&place](std::string_view text) {
        memcpy(place, text.data(), text.size());
        place += text.size();
    };
    const auto separate = [&] {
        if (place != out && place[-1] != '/') {
            *place++ = '/';
        }
    };
    while (!path.empty()) {
        const size_t codeEnd = path.find('>');
        if (path.front() != '<' || codeEnd == std::string_view::npos) {
            const std::string_view name = path.substr(0, std::max<size_t>(path.find('<'), 1));
            append(name);
            path.remove_prefix(name.size());
            continue;
        }
        const char code = path.size() > 1 ? path[1] : '\0';
        path.remove_prefix(codeEnd + 1);
        switch (code) {
        case 'u':
            separate();
            append("../");
            break;
        case 'r':
            append("/");
            break;
        case 'c':
            separate();
            break;
        default: { // of a volume or a host, which keeps its name
            const std::string_view name = path.substr(0, path.find('<'));
            append(name);
            append("/");
            path.remove_prefix(name.size());
        }
        }
    }
    return static_cast<size_t>(place - out);
}

int namePicture(MifContext *context, std::string_view path)
{
    char *copy = mifCopyBytes(context, path.data(), path.size());
    if (copy == nullptr) {
        return 0;
    }
    mifNamePicture(context, copy);
    return 1;
}

} // namespace

int mifPicturePath(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    const char *text = mifTextOfValue(context, value);
    const size_t length = strlen(text);
    auto *path = static_cast<char *>(mifAllocateBytes(context, 2 * length + 1));
    if (path == nullptr) {
        return 0;
    }
    const int result = namePicture(context, {path, convertPath(text, path)});
    mifRelease(context, path);
    return mifIsInObject(context) ? result : result & mifImportObFileDI(context);
}

int mifPicturePathOfSystem(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    const std::string_view path = mifTextOfValue(context, value);
    return context->frames.placing.path == nullptr && path != noFile ? namePicture(context, path) : 1;
}
