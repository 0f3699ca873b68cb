#include "tests/workbench/odbc/test_driver.h"

namespace quillon::odbc::test {

// Exported from the test program: the driver, which the driver manager loads into it, finds it there.
extern "C" __attribute__((visibility("default"))) Server** quillonTestServer() {
  static Server* server = nullptr;
  return &server;
}

}  // namespace quillon::odbc::test
