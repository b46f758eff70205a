// Telling what is in a document.
#ifndef MIFREAD_INFO_REPORT_H
#define MIFREAD_INFO_REPORT_H

#include <string>

#include "info_document.h"
#include "mifconvert/json_text.h"

namespace mifread
{

using mifconvert::Json;

// For people: some lines, the first one the document's name.
std::string infoText(const DocumentInfo &info);

// For programs.
Json infoJson(const DocumentInfo &info);

} // namespace mifread

#endif
