// A report as an HTML page.
#pragma once

#include "workbench/presentation/result_page.h"
