#include "cairo/cairo_file.h"

/// What the library shows; the number is that of the interface in canvas/canvas.h.
extern "C" lvx::canvas::FileMaker* lvxMakeFileMaker1() { return lvx::cairo::newFileMaker(); }
