// Who is let in, and with what: every check of a request that needs no more than its head.
//
// Whoever runs a report can run statements with the rights of the account's connection. So nothing is answered to anyone
// but the person who started the desk, and to no page but the desk's own: see SECURITY.md.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "workbench/desk/handler.h"
#include "workbench/desk/request_head.h"
#include "workbench/messages/language.h"

namespace quillon::workbench::desk {

// The request is not let in. What is behind its head is not read.
struct Refusal {
  int status = 0;
  std::string_view code;  // for programs: "session"
  Caption message;        // one clear line
  bool ofApi = false;     // asked by the page's code and not by a person
};

// The link's token was right: the answer sets the cookie and leads to the start page.
struct Entry {
  std::string cookie;  // the whole Set-Cookie field; empty for who is in already
  // The link was opened from another place than the address bar. A browser then sends no strict cookie with the request
  // that a redirection leads to, so that a page has to lead there.
  bool fromElsewhere = false;
};

// A page or one of its parts, by the decoded path; whether there is one is not known here.
struct PageAsked {
  std::string path;
};

// What goes to the handler, once its body is there.
struct ApiAsked {
  DeskRequest request;
  bool awaitsContinue = false;  // the sender waits to be told that its body is welcome
};

// The language that the sender wants to hear: the first of Accept-Language that the workbench speaks, or else Chinese.
Language languageOf(const RequestHead& head);

using Decision = std::variant<Refusal, Entry, PageAsked, ApiAsked>;

// Not for several threads at once: a token is used up by one of them.
class Gate {
 public:
  static constexpr std::uint64_t bodyLimit = std::uint64_t{1024} * 1024;

  // For the desk at `port`. The two secrets are newSecret()'s: `token` stands in the link and opens once, `session` in the
  // cookie.
  Gate(unsigned short port, std::string token, std::string session);

  Decision decide(const RequestHead& head);

  // The link that opens the desk, as long as nobody has used it.
  std::string link() const;
  bool linkUsed() const { return token_.empty(); }

 private:
  bool hasSession(const RequestHead& head) const;
  std::string cookieName() const;

  std::string port_;
  std::array<std::string, 3> hosts_;
  std::string token_;
  std::string session_;
};

}  // namespace quillon::workbench::desk
