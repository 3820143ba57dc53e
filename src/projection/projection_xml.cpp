#include "projection/projection_xml.h"
