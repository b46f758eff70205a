// What the format family keeps: the format that the document asks for and the one that the output was last told.
#ifndef MIFREADER_SRC_FORMATS_RECORDS_H
#define MIFREADER_SRC_FORMATS_RECORDS_H

#include <cstdint>

#include "formats/style.h"

struct MifFormatState {
    MifParagraphStyle currentStyle; // what the document asks for
    MifParagraphStyle appliedStyle; // what the output was last told
};

#endif
