// What the library writes into the registry, and takes out again.
#pragma once

namespace quillon::component {

// Registers the type library, the classes and their ProgIDs for all users, under HKEY_CLASSES_ROOT, with the path that
// the DLL was loaded from. Throws AutomationError; what was written until then is taken out again.
void registerServer();
// Takes out everything that registerServer writes; what is not there is no error. Throws AutomationError when something
// cannot be taken out.
void unregisterServer();

}  // namespace quillon::component
