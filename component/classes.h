// The eight classes of the library: what the class factory and the registration go through.
#pragma once

#include <span>

#include "automation/com_ptr.h"

namespace quillon::component {

struct ServerClass {
  CLSID id;
  const wchar_t* name;   // without the "Quillon." of the ProgID
  const wchar_t* title;  // what a person reads in a list of registered classes
  automation::ComPtr<IUnknown> (*make)();
};

std::span<const ServerClass> serverClasses();

}  // namespace quillon::component
