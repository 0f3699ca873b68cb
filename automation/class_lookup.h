// How a ProgID becomes an object.
#pragma once

#include <optional>
#include <string>

#include "automation/late_bound.h"

namespace quillon::automation {

// A class that is asked for by name: its ProgID, and the class id under which a stand-in can be had when no such ProgID
// is registered on the machine.
struct NamedClass {
  const wchar_t* progId;
  CLSID standIn;
};

// The class id behind `wanted`: what the machine's registry says, else the stand-in's. So a program that stands in for
// a class makes an InProcessClass for `wanted.standIn`: nothing is written to the registry, and a machine where the real
// class is registered keeps it.
CLSID classIdOf(const NamedClass& wanted) noexcept;

// A new object of the class, or null when neither a registered class nor a stand-in exists. Throws AutomationError for
// every other failure.
LateBound tryCreateObject(const NamedClass& wanted);
// As above, but a class that is not there is an error that names it.
LateBound createObject(const NamedClass& wanted);

}  // namespace quillon::automation
