// Quillon.dll behind the commands of the workbench: while a ComLibrary lives, reports, dialogs and drill-throughs that the
// commands run are objects of the library that it loaded, called late-bound as the host platform calls them.
#pragma once

#include "automation/live_count.h"
#include "tests/component/quillon_library.h"

namespace quillon::long_life {

// Loads Quillon.dll and unloads it. One at a time.
class ComLibrary : public component::test::QuillonLibrary {
 public:
  ComLibrary();
  ~ComLibrary();
};

}  // namespace quillon::long_life
