// How the workbench refuses what a user asked for.
#pragma once

#include <stdexcept>

namespace quillon::workbench {

// Bad input or work that cannot be done. Its text is one line for the user: what is wrong and what to do about it. The
// program `quillon` prints it and ends with exit status 1.
class UserError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace quillon::workbench
