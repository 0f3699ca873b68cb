// The one exception of the account's own operations.
#pragma once

#include <stdexcept>

#include "workbench/messages/told_error.h"

namespace quillon::account {

using workbench::Message;
namespace messages = workbench::messages;

// What is wrong and what to do about it, in one line for the user.
class AccountError : public workbench::Told<std::runtime_error> {
 public:
  using Told::Told;
};

}  // namespace quillon::account
