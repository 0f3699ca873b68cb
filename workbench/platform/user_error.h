// How the workbench refuses what a user asked for.
#pragma once

#include <stdexcept>

#include "workbench/messages/told_error.h"

namespace quillon::workbench {

// Bad input or work that cannot be done. Its message is one line for the user: what is wrong and what to do about it. The
// program `quillon` prints it in the command's language and ends with exit status 1.
class UserError : public Told<std::runtime_error> {
 public:
  using Told::Told;
};

// The same for an argument that cannot be meant, such as a filter item that does not exist.
class InputError : public Told<std::invalid_argument> {
 public:
  using Told::Told;
};

}  // namespace quillon::workbench
