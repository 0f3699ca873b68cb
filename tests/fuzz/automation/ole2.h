// All of it is in one header here.
#pragma once

#include <windows.h>
