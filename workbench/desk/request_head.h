// What is known of a request before any of its body is read.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quillon::workbench::desk {

// As it was sent: the form is HTTP's, nothing is decoded and nothing is trusted yet.
struct RequestHead {
  std::string method;
  std::string target;
  int version = 11;                                         // 11: HTTP/1.1
  std::vector<std::pair<std::string, std::string>> fields;  // in their order; a name's letter case is the sender's
  std::uint64_t length = 0;                                 // of the body, as Content-Length says; 0 without one
  bool keepsConnection = true;
};

}  // namespace quillon::workbench::desk
