#include "workbench/desk/gate.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "frame/text.h"
#include "workbench/desk/secret.h"
#include "workbench/desk/target.h"
#include "workbench/messages/desk.h"

namespace quillon::workbench::desk {

namespace {

constexpr std::string_view apiFolder = "/api/";
constexpr std::string_view linkFolder = "/open/";
constexpr std::string_view tokenName = "token";

constexpr std::array<std::string_view, 4> methods = {"GET", "POST", "PUT", "DELETE"};

// Of two of these, nobody could say which one counts.
constexpr std::array<std::string_view, 10> singleFields = {
    "Host",           "Origin",         "Cookie",       "Sec-Fetch-Site",    "Sec-Fetch-Mode",
    "Sec-Fetch-Dest", "Content-Length", "Content-Type", "Transfer-Encoding", "Expect"};

std::optional<std::string_view> fieldOf(const RequestHead& head, std::string_view name) {
  for (const auto& [its, value] : head.fields) {
    if (equalIgnoringCase(its, name)) return value;
  }
  return std::nullopt;
}

bool repeatsSingleField(const RequestHead& head) {
  return std::ranges::any_of(singleFields, [&head](std::string_view name) {
    return std::ranges::count_if(head.fields,
                                 [name](const auto& field) { return equalIgnoringCase(field.first, name); }) > 1;
  });
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
    text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
    text.remove_suffix(1);
  return text;
}

// "application/json", with or without the one charset that JSON has.
bool isJson(std::string_view type) {
  const std::size_t end = std::min(type.find(';'), type.size());
  if (!equalIgnoringCase(trimmed(type.substr(0, end)), "application/json")) return false;
  const std::string_view parameter = trimmed(type.substr(std::min(end + 1, type.size())));
  return parameter.empty() || equalIgnoringCase(parameter, "charset=utf-8");
}

// What of a request's framing is wrong, whoever sent it.
std::optional<Refusal> unclearForm(const RequestHead& head) {
  constexpr int version11 = 11;
  if (head.version != version11) return Refusal{505, "version", messages::otherVersion.caption()};
  if (fieldOf(head, "Transfer-Encoding")) return Refusal{411, "length", messages::lengthMissing.caption()};
  if (const auto expected = fieldOf(head, "Expect"); expected && !equalIgnoringCase(*expected, "100-continue"))
    return Refusal{417, "expectation", messages::otherExpectation.caption()};
  return std::nullopt;
}

// Whether another site, or another program on this machine that a browser shows, has made the browser ask. Where the
// browser says nothing of it, `otherwise` is the answer.
bool comesFromOwnPage(const RequestHead& head, bool ownOrigin, bool otherwise) {
  const auto site = fieldOf(head, "Sec-Fetch-Site");
  const auto origin = fieldOf(head, "Origin");
  if (site && *site != "same-origin") return false;
  if (origin && !ownOrigin) return false;
  return site || origin || otherwise;
}

// A person who follows a link or types an address, in a window of its own.
bool isNavigation(const RequestHead& head) {
  return fieldOf(head, "Sec-Fetch-Mode") == "navigate" && fieldOf(head, "Sec-Fetch-Dest") == "document";
}

std::optional<Refusal> wrongMethod(const RequestHead& head, bool ofApi) {
  const bool known = std::ranges::find(methods, head.method) != methods.end();
  if (known && (ofApi || head.method == "GET")) return std::nullopt;
  return Refusal{405, "method", ofApi ? messages::methodOfInterface.caption() : messages::methodOfPage.caption(),
                 ofApi};
}

std::optional<Refusal> wrongBody(const RequestHead& head, bool ofApi) {
  if (head.length > 0 && head.method == "GET") return Refusal{400, "body", messages::bodyOfReading.caption(), ofApi};
  if (head.length > Gate::bodyLimit) return Refusal{413, "size", messages::bodyTooLarge.caption(), ofApi};
  const auto type = fieldOf(head, "Content-Type");
  if (head.method == "GET" || (!type && head.length == 0)) return std::nullopt;
  if (!type || !isJson(*type)) return Refusal{415, "type", messages::bodyOfOtherType.caption(), ofApi};
  return std::nullopt;
}

}  // namespace

Language languageOf(const RequestHead& head) {
  std::string_view ranges = fieldOf(head, "Accept-Language").value_or("");
  while (!ranges.empty()) {
    const std::string_view range = ranges.substr(0, ranges.find(','));
    ranges.remove_prefix(std::min(range.size() + 1, ranges.size()));
    const std::string_view tag = trimmed(range.substr(0, range.find_first_of("-;")));
    if (equalIgnoringCase(tag, "zh")) return Language::chinese;
    if (equalIgnoringCase(tag, "en")) return Language::english;
  }
  return Language::chinese;
}

Gate::Gate(unsigned short port, std::string token, std::string session)
    : port_(std::to_string(port)),
      hosts_{"127.0.0.1:" + port_, "localhost:" + port_, "[::1]:" + port_},
      token_(std::move(token)),
      session_(std::move(session)) {}

std::string Gate::link() const {
  return "http://" + hosts_.front() + std::string(linkFolder) + token_;
}

std::string Gate::cookieName() const {
  // Cookies know no ports: each desk on this machine has a name of its own.
  return "quillon_" + port_;
}

bool Gate::hasSession(const RequestHead& head) const {
  std::string_view cookies = fieldOf(head, "Cookie").value_or("");
  const std::string name = cookieName() + "=";
  bool found = false;
  while (!cookies.empty()) {
    const std::string_view cookie = cookies.substr(0, cookies.find(';'));
    cookies.remove_prefix(std::min(cookie.size() + 1, cookies.size()));
    const std::string_view text = trimmed(cookie);
    // Another program on this machine may have set one of the same name; that takes nothing away.
    if (text.starts_with(name) && isSecret(text.substr(name.size()), session_)) found = true;
  }
  return found;
}

Decision Gate::decide(const RequestHead& head) {
  // First of all: a page whose name was made to lead to this machine can read every answer, and its Host tells.
  if (repeatsSingleField(head)) return Refusal{400, "form", messages::fieldTwice.caption()};
  const auto host = fieldOf(head, "Host");
  if (!host || std::ranges::find(hosts_, *host) == hosts_.end())
    return Refusal{403, "host", messages::otherHost.caption()};
  if (const auto refusal = unclearForm(head)) return *refusal;
  auto target = readTarget(head.target);
  if (!target) return Refusal{400, "target", messages::targetUnclear.caption()};

  const std::string& path = target->path;
  const bool ofApi = path.starts_with(apiFolder);
  const bool session = hasSession(head);
  const bool byQuery = path == "/" && target->query.contains(std::string(tokenName));
  if (head.method == "GET" && (byQuery || path.starts_with(linkFolder))) {
    const auto site = fieldOf(head, "Sec-Fetch-Site");
    Entry entry{.cookie = {}, .fromElsewhere = site && *site != "none" && *site != "same-origin"};
    if (session) return entry;
    const std::string token = byQuery ? target->query[std::string(tokenName)] : path.substr(linkFolder.size());
    if (!isSecret(token, token_)) return Refusal{401, "link", messages::linkSpent.caption()};
    token_.clear();
    entry.cookie = cookieName() + "=" + session_ + "; HttpOnly; SameSite=Strict; Path=/";
    return entry;
  }
  if (!session) return Refusal{401, "session", messages::noSession.caption(), ofApi};

  const auto origin = fieldOf(head, "Origin");
  const bool ownOrigin = origin && *origin == "http://" + std::string(*host);
  const bool reads = head.method == "GET";
  // What is typed into the address bar comes from nowhere: "none".
  const bool typed = reads && !origin && fieldOf(head, "Sec-Fetch-Site") == "none";
  const bool followed = reads && !ofApi && !origin && isNavigation(head);
  if (!typed && !followed && !comesFromOwnPage(head, ownOrigin, reads))
    return Refusal{403, "origin", messages::otherPage.caption(), ofApi};
  if (const auto refusal = wrongMethod(head, ofApi)) return *refusal;
  if (const auto refusal = wrongBody(head, ofApi)) return *refusal;

  if (!ofApi) return PageAsked{path};
  return ApiAsked{.request = {.method = head.method,
                              .path = path.substr(apiFolder.size()),
                              .query = std::move(target->query),
                              .body = {},
                              .language = languageOf(head)},
                  .awaitsContinue = fieldOf(head, "Expect").has_value() && head.length > 0};
}

}  // namespace quillon::workbench::desk
