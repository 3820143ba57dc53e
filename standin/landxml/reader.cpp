#include "landxml/reader.h"
