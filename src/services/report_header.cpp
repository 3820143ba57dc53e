#include "services/report_header.h"
