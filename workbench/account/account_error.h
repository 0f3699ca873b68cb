// The one exception of the account's own operations.
#pragma once

#include <stdexcept>

namespace quillon::account {

// What is wrong and what to do about it, in one line for the user.
class AccountError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace quillon::account
