// Markers and cross-references of the extended stream.
#ifndef MIFREADER_SRC_TEXT_MARKERS_H
#define MIFREADER_SRC_TEXT_MARKERS_H

#include "reader/context.h"

// Statement handlers. What a marker or a reference says is kept to its end.
int mifMarkerType(MifContext *context);
int mifMarkerTypeName(MifContext *context);
int mifMarkerText(MifContext *context);
int mifEndMarker(MifContext *context);
int mifReferenceFormat(MifContext *context); // XRefName
int mifReferenceText(MifContext *context);
int mifReferenceFile(MifContext *context);
int mifBeginReference(MifContext *context); // the end of XRef, where the reference's text begins
int mifXRefEnd(MifContext *context);

void mifFreeMarkers(MifContext *context);

#endif
