#include "projection/sample_line_collector.h"
