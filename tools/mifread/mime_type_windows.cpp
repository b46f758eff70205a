#include "mime_type.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include <objbase.h>
#include <urlmon.h>

#include "paths.h"

namespace mifread
{

namespace
{

struct Name {
    std::string_view here;
    std::string_view elsewhere;
};

// The types that Windows calls by names of its own.
constexpr std::array names = {
    Name{"application/x-zip-compressed", "application/zip"},
    Name{"audio/wav", "audio/x-wav"},
    Name{"image/pjpeg", "image/jpeg"},
    Name{"image/x-emf", "image/emf"},
    Name{"image/x-png", "image/png"},
    Name{"image/x-wmf", "image/wmf"},
    Name{"text/richtext", "text/rtf"},
    Name{"video/avi", "video/x-msvideo"},
};

struct FreeText {
    void operator()(wchar_t *text) const noexcept
    {
        CoTaskMemFree(text);
    }
};

} // namespace

std::string detectMimeType(std::span<const std::uint8_t> beginning)
{
    constexpr std::size_t lookedAt = 256; // by the system, at most
    // What it takes is not const, but it is not changed.
    const auto size = static_cast<DWORD>(std::min(beginning.size(), lookedAt));
    wchar_t *text = nullptr;
    const HRESULT result = FindMimeFromData(nullptr, nullptr, const_cast<std::uint8_t *>(beginning.data()), size,
                                            nullptr, FMFD_DEFAULT, &text, 0);
    const std::unique_ptr<wchar_t, FreeText> owner(text);
    if (result != S_OK || text == nullptr) {
        return "application/octet-stream";
    }
    const std::string found = textOf(text);
    const auto *const name =
        std::find_if(names.begin(), names.end(), [&found](const Name &row) { return row.here == found; });
    return name != names.end() ? std::string(name->elsewhere) : found;
}

std::string detectExtension(std::span<const std::uint8_t> /*beginning*/)
{
    return "";
}

} // namespace mifread
