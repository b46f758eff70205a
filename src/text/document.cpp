#include "text/document.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>
#include <utility>

#include "formats/extended_properties.h"
#include "mifreader/extended.h"
#include "reader/extended_tokens.h"
#include "reader/host_memory.h"
#include "reader/statement.h"
#include "reader/units.h"
#include "text/mif_text.h"

namespace
{

struct InfoField {
    std::string_view key;
    uint32_t field;
};

constexpr InfoField infoFields[] = {
    {"Title", MIF_DOCUMENT_TITLE},
    {"Author", MIF_DOCUMENT_AUTHOR},
    {"Subject", MIF_DOCUMENT_SUBJECT},
    {"Keywords", MIF_DOCUMENT_KEYWORDS},
};

// Versions have two decimals at most.
constexpr int versionDecimals = 2;
constexpr double largestVersion = 1e6;

std::string_view encodingName(const MifExtensionState &extension)
{
    switch (extension.encoding) {
    case MIF_ENCODING_MIF:
        return "MIF";
    case MIF_ENCODING_WINDOWS_1252:
        return "Windows-1252";
    case MIF_ENCODING_UTF_8:
        return "UTF-8";
    default:
        return (extension.encodingsFound & FOUND_UTF_8) != 0 ? "UTF-8" : "MIF";
    }
}

} // namespace

int mifDocumentLanguage(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr || context->document.inDocument == 0) {
        return 0;
    }
    const char *code = mifLanguageCode(mifReadLanguage(value));
    if (code == nullptr) {
        return 1;
    }
    context->document.hasLanguage = 1;
    return mifWriteDocumentField(context, MIF_DOCUMENT_LANGUAGE, code);
}

int mifDocumentPageSize(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr || context->document.inDocument == 0) {
        return 0;
    }
    MifMeasurementList sizes = MifMeasurementList::fromFirst(value);
    const int32_t width = sizes.next();
    const int32_t height = sizes.next();
    return mifWriteRecord(context, TOKEN_PAGE_SIZE, {width, height});
}

int mifDocumentKey(MifContext *context)
{
    return context->document.inInfo != 0 ? mifKeepValue(context, context->document.infoKey) : 1;
}

int mifDocumentValue(MifContext *context)
{
    char *&key = context->document.infoKey;
    const char *value = mifUnquotedValue(context);
    if (value == nullptr || key == nullptr) {
        return 0;
    }
    const InfoField *found = std::find_if(std::begin(infoFields), std::end(infoFields),
                                          [key](const InfoField &row) { return row.key == key; });
    const int result = found != std::end(infoFields)
                           ? mifWriteDocumentField(context, found->field, mifTextOfValue(context, value))
                           : 1;
    mifRelease(context, std::exchange(key, nullptr));
    return result;
}

void mifTellVersion(MifContext *context)
{
    const double version = context->header.version;
    char text[32];
    char *end = text;
    if (version >= 0 && version < largestVersion) { // and not no number
        end = std::to_chars(text, std::end(text), version, std::chars_format::fixed, versionDecimals).ptr;
    }
    mifWriteDocumentField(context, MIF_DOCUMENT_VERSION, {text, static_cast<size_t>(end - text)});
}

void mifTellFindings(MifContext *context)
{
    const uint32_t(&paragraphs)[languageCount] = context->formats.extended.paragraphsOf;
    const auto commonest = static_cast<int32_t>(std::max_element(std::begin(paragraphs) + 1, std::end(paragraphs)) -
                                                std::begin(paragraphs));
    if (context->document.hasLanguage == 0 && paragraphs[commonest] != 0) {
        mifWriteDocumentField(context, MIF_DOCUMENT_LANGUAGE, mifLanguageCode(commonest));
    }
    mifWriteDocumentField(context, MIF_DOCUMENT_ENCODING, encodingName(context->extension));
}

void mifFreeDocument(MifContext *context)
{
    mifRelease(context, std::exchange(context->document.infoKey, nullptr));
}
