// What a document says of itself, told in the extended stream where it stands.
#ifndef MIFREADER_SRC_TEXT_DOCUMENT_H
#define MIFREADER_SRC_TEXT_DOCUMENT_H

#include "reader/context.h"

// Statement handlers.
int mifDocumentLanguage(MifContext *context); // DLanguage
int mifDocumentPageSize(MifContext *context); // DPageSize
int mifDocumentKey(MifContext *context);      // Key, of PDFDocInfo
int mifDocumentValue(MifContext *context);    // Value

// The version, before all else; and at the document's end what only the whole of it tells.
void mifTellVersion(MifContext *context);
void mifTellFindings(MifContext *context);

void mifFreeDocument(MifContext *context);

#endif
