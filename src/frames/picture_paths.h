// The pictures that frames name, in the extended stream: paths with slashes.
#ifndef MIFREADER_SRC_FRAMES_PICTURE_PATHS_H
#define MIFREADER_SRC_FRAMES_PICTURE_PATHS_H

#include "reader/context.h"

// Statement handlers.
int mifPicturePath(MifContext *context);         // ImportObFileDI
int mifPicturePathOfSystem(MifContext *context); // ImportObFile

#endif
