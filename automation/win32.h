// The Win32 and automation headers, in the order that they need.
#pragma once

// clang-format off
#include <windows.h>
#include <ole2.h>
#include <ocidl.h>
#include <oleauto.h>
// clang-format on
