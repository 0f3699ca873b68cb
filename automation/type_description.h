// Type descriptions out of the type library that a module (DLL or program) carries.
#pragma once

#include <string>

#include "automation/com_ptr.h"
#include "automation/win32.h"

namespace quillon::automation {

// The handle of the module (DLL or program) that this code was linked into.
HMODULE thisModule() noexcept;
// The full path of its file. Throws AutomationError.
std::wstring modulePath();

// The type library in that file. Throws AutomationError.
ComPtr<ITypeLib> typeLibrary();
// The description with the id `id`: of an interface as automation sees it, or of a class. Throws AutomationError.
ComPtr<ITypeInfo> typeDescription(REFGUID id);
// The description of the dual interface `id` with its slots. Throws AutomationError.
ComPtr<ITypeInfo> slotDescription(REFIID id);

}  // namespace quillon::automation
