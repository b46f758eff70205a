#include "command.h"
#include "conversion.h"
#include "info_document.h"
#include "info_report.h"
#include "mifconvert/json_text.h"

namespace mifread
{

Command infoCommand(bool asJson)
{
    const auto convert = [asJson](Conversion &conversion) {
        const DocumentInfo info = inspect(conversion);
        conversion.text() += asJson ? mifconvert::dumpJson(infoJson(info)) + '\n' : infoText(info);
    };
    return {.convert = convert, .extension = asJson ? ".info.json" : ".info.txt"};
}

} // namespace mifread
