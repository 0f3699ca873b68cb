// How a ProgID becomes an object: the one place through which the library creates what it does not make itself.
#pragma once

#include <optional>
#include <string>

#include "automation/late_bound.h"

namespace quillon::com {

// A class that the library creates: its ProgID, and the class id under which a stand-in can be had when no such ProgID
// is registered on the machine.
struct PlatformClass {
  const wchar_t* progId;
  CLSID standIn;
};

// The class id behind `wanted`: what the machine's registry says, else the stand-in's. So a program that stands in for
// the platform makes an InProcessClass for `wanted.standIn`: nothing is written to the registry, and a machine where
// the real platform is registered keeps it.
CLSID classIdOf(const PlatformClass& wanted) noexcept;

// A new object of the class, or null when neither a registered class nor a stand-in exists. Throws AutomationError for
// every other failure.
LateBound tryCreateObject(const PlatformClass& wanted);
// As above, but a class that is not there is an error that names it.
LateBound createObject(const PlatformClass& wanted);

}  // namespace quillon::com
