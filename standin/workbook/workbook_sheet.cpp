#include "workbook/workbook_sheet.h"
