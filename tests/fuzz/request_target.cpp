#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <variant>

#include "frame/text.h"
#include "tests/fuzz/targets.h"
#include "workbench/desk/answer.h"
#include "workbench/desk/gate.h"
#include "workbench/desk/pages.h"
#include "workbench/desk/request_reader.h"

namespace quillon::fuzz {

namespace {

using namespace workbench::desk;
using State = RequestReader::State;

constexpr unsigned short port = 8765;
// Short, so that an input can hold them.
const std::string token = "TOKEN", session = "SESSION";

// How often a field stands in the head, and its value where it stands once.
struct Field {
  std::size_t count = 0;
  std::string value;
};

Field fieldOf(const RequestHead& head, std::string_view name) {
  Field field;
  for (const auto& [its, value] : head.fields) {
    if (!equalIgnoringCase(its, name)) continue;
    ++field.count;
    field.value = value;
  }
  return field;
}

void requireOwnHost(const RequestHead& head) {
  const Field host = fieldOf(head, "Host");
  require(host.count == 1 &&
              (host.value == "127.0.0.1:8765" || host.value == "localhost:8765" || host.value == "[::1]:8765"),
          "nobody is let in under another name");
}

void requireSession(const RequestHead& head) {
  requireOwnHost(head);
  require(fieldOf(head, "Cookie").value.find("quillon_8765=SESSION") != std::string::npos,
          "nobody is let in without the cookie");
  require(fieldOf(head, "Transfer-Encoding").count == 0, "a body's end is known from its length");
}

void requireWholeText(const std::string& text, const std::string& what) {
  require(text.find('\0') == std::string::npos, what + " has no zero byte");
}

void checkAsked(const RequestHead& head, const ApiAsked& asked) {
  requireSession(head);
  const DeskRequest& request = asked.request;
  constexpr std::array<std::string_view, 4> methods = {"GET", "POST", "PUT", "DELETE"};
  require(std::ranges::find(methods, request.method) != methods.end(), "a handler gets four methods");
  require(!request.path.empty() && !request.path.starts_with('/') &&
              ("/" + request.path + "/").find("/../") == std::string::npos,
          "a path has no second reading");
  requireWholeText(request.path, "a path");
  for (const auto& [name, value] : request.query)
    requireWholeText(name + value, "a query");
  require(head.length <= Gate::bodyLimit, "a body is within the limit");
  const Field site = fieldOf(head, "Sec-Fetch-Site"), origin = fieldOf(head, "Origin"),
              type = fieldOf(head, "Content-Type");
  const bool own = origin.count == 1 && origin.value == "http://" + fieldOf(head, "Host").value;
  require(origin.count == 0 || own, "no other origin is let in");
  if (request.method == "GET") {
    require(site.count == 0 || site.value == "same-origin" || site.value == "none", "no other site reads");
    require(head.length == 0, "what is read takes no body");
  } else {
    require(own || site.value == "same-origin", "only the desk's own pages do something");
    require(site.count == 0 || site.value == "same-origin", "no other site does something");
    require(head.length == 0 || equalIgnoringCase(type.value.substr(0, 16), "application/json"), "a body is JSON");
  }
}

// Every answer's head is lines of a name and a value, and ends once.
void checkAnswer(const DeskResponse& response) {
  const std::string head = answerHead(response, response.body.size(), true);
  require(head.find("\r\n\r\n") == head.size() - 4, "an answer's head ends once");
  require(std::ranges::count(head, '\n') == std::ranges::count(head, '\r'), "an answer's head has whole lines");
  require(head.find("Content-Security-Policy: default-src 'none';") != std::string::npos,
          "an answer is kept from others");
  require(head.find("Access-Control-") == std::string::npos, "no other site reads an answer");
  require((head + response.body).find(token) == std::string::npos, "an answer does not hold the link");
}

void checkDecision(Gate& gate, const RequestHead& head) {
  const bool used = gate.linkUsed();
  const Decision decision = gate.decide(head);
  if (const auto* const refusal = std::get_if<Refusal>(&decision)) {
    require(refusal->status >= 400 && refusal->status < 600, "a refusal is an error");
    require(used == gate.linkUsed(), "who is refused uses up no link");
    const DeskResponse answer = answerTo(*refusal, languageOf(head));
    checkAnswer(answer);
    require(answer.headers.empty() || answer.headers[0].first == "Allow", "a refusal gives nothing");
  } else if (const auto* const entry = std::get_if<Entry>(&decision)) {
    requireOwnHost(head);
    require(entry->cookie.empty() || (!used && gate.linkUsed() && head.target.find(token) != std::string::npos) ||
                head.target.find('%') != std::string::npos,
            "the cookie is given for the token, once");
    checkAnswer(answerTo(*entry));
  } else if (const auto* const page = std::get_if<PageAsked>(&decision)) {
    requireSession(head);
    require(head.method == "GET", "a page is only read");
    if (const auto found = findPage(page->path)) checkAnswer(*found);
  } else {
    checkAsked(head, std::get<ApiAsked>(decision));
  }
}

}  // namespace

// The first byte says how the others come in: in pieces of so many bytes.
void checkRequest(std::string_view input) {
  if (input.empty()) return;
  const std::size_t piece = std::max<std::size_t>(static_cast<unsigned char>(input.front()), 1);
  input.remove_prefix(1);
  Gate gate(port, token, session);
  std::string buffer;
  RequestReader reader;
  for (bool waits = true;;) {
    if (waits && input.empty()) return;
    if (waits) {
      const std::string_view next = input.substr(0, piece);
      input.remove_prefix(next.size());
      buffer += next;
    }
    const std::size_t before = buffer.size();
    const State state = reader.take(buffer);
    require(buffer.size() <= before, "nothing is added to what came in");
    waits = state == State::needsMore;
    if (state == State::malformed || state == State::tooLarge || state == State::complete) return;
    if (state != State::headRead) continue;
    checkDecision(gate, reader.head());
    // The server reads no body that is not bearable.
    if (reader.head().length > Gate::bodyLimit) return;
  }
}

}  // namespace quillon::fuzz
