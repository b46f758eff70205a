// Writing the tokens of the extended stream, whose layouts are those of mifreader/extended.h. What holds for the plain
// ones (tokens.h) holds here too. Texts are UTF-8.
#ifndef MIFREADER_SRC_READER_EXTENDED_TOKENS_H
#define MIFREADER_SRC_READER_EXTENDED_TOKENS_H

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "reader/context.h"

// A token whose payload is numbers and then texts.
int mifWriteRecord(MifContext *context, uint8_t code, std::initializer_list<int32_t> numbers,
                   std::initializer_list<std::string_view> texts = {});

// A text run in UTF-8, cut between characters into pieces of at most a source buffer.
int mifWriteUtf8(MifContext *context, std::string_view text);

int mifWriteParagraph(MifContext *context, const MifExtendedParagraph &paragraph,
                      const char *language); // null for none
int mifWriteMode(MifContext *context, uint32_t mode, bool on);
int mifWriteStops(MifContext *context, const MifTabList &tabs);
int mifWriteLeaders(MifContext *context, const MifTabList &tabs);
int mifWriteTableOpen(MifContext *context, const MifTableFormat &table, int32_t columns, const int32_t *widths);
int mifWriteCell(MifContext *context, const MifExtendedCell &cell, int32_t columns, int32_t rows);
int mifWriteAnchor(MifContext *context, const MifPlacedFrame &frame);
int mifWriteDocumentField(MifContext *context, uint32_t field, std::string_view value);
int mifWriteLoss(MifContext *context, uint32_t kind, int32_t position);
int mifWriteLossTotal(MifContext *context, uint32_t kind, const MifLossCount &losses);

#endif
