// How the desk's interface refuses a request.
#pragma once

#include <exception>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "workbench/messages/desk.h"

namespace quillon::workbench::desk {

using Json = nlohmann::ordered_json;

class ApiError : public std::exception {
 public:
  // `code` is for programs, `message` one line for the user, who hears it in his language; `item` is the filter item that it
  // is about, empty for none; `state` the dialog as it then is, null for none.
  ApiError(int status, std::string code, Message message, std::string item = {}, Json state = nullptr)
      : status_(status),
        code_(std::move(code)),
        message_(std::move(message)),
        item_(std::move(item)),
        state_(std::move(state)) {}

  int status() const noexcept { return status_; }
  const std::string& code() const noexcept { return code_; }
  const Message& message() const noexcept { return message_; }
  const std::string& item() const noexcept { return item_; }
  const Json& state() const noexcept { return state_; }
  const char* what() const noexcept override { return message_.english().c_str(); }

 private:
  int status_;
  std::string code_;
  Message message_;
  std::string item_;
  Json state_;
};

// 404: there is no such thing, or none any more.
inline ApiError unknown(Message message) {
  return {404, "unknown", std::move(message)};
}

}  // namespace quillon::workbench::desk
