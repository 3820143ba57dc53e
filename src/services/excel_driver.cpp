#include "services/excel_driver.h"
