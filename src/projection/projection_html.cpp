#include "projection/projection_html.h"
