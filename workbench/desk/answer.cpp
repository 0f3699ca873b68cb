#include "workbench/desk/answer.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "frame/text.h"
#include "workbench/messages/desk.h"

namespace quillon::workbench::desk {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array<std::pair<int, std::string_view>, 24> reasons = {{
    {200, "OK"},
    {201, "Created"},
    {202, "Accepted"},
    {204, "No Content"},
    {303, "See Other"},
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {408, "Request Timeout"},
    {409, "Conflict"},
    {410, "Gone"},
    {411, "Length Required"},
    {413, "Content Too Large"},
    {415, "Unsupported Media Type"},
    {417, "Expectation Failed"},
    {422, "Unprocessable Content"},
    {429, "Too Many Requests"},
    {431, "Request Header Fields Too Large"},
    {500, "Internal Server Error"},
    {501, "Not Implemented"},
    {503, "Service Unavailable"},
    {505, "HTTP Version Not Supported"},
}};

std::string_view reasonOf(int status) {
  const auto found = std::ranges::find(reasons, status, &std::pair<int, std::string_view>::first);
  // An answer without a reason is as good.
  return found == reasons.end() ? std::string_view() : found->second;
}

constexpr std::array<std::pair<std::string_view, std::string_view>, 6> safetyHeaders = {{
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self' data:; base-uri 'none'; "
     "form-action 'none'; frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"X-Frame-Options", "DENY"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
}};

bool isOwnHeader(std::string_view name) {
  constexpr std::array<std::string_view, 7> others = {
      "Content-Length", "Content-Type", "Transfer-Encoding", "Connection", "Set-Cookie", "Location", "Cache-Control"};
  constexpr std::string_view otherSites = "Access-Control-";
  const auto is = [name](std::string_view own) { return equalIgnoringCase(name, own); };
  return std::ranges::any_of(others, is) || equalIgnoringCase(name.substr(0, otherSites.size()), otherSites) ||
         std::ranges::any_of(safetyHeaders, [is](const auto& header) { return is(header.first); });
}

bool hasControl(std::string_view text) {
  constexpr unsigned char firstPrintable = 0x20, deleted = 0x7F;
  return std::ranges::any_of(text, [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < firstPrintable || byte == deleted;
  });
}

bool isFieldName(std::string_view name) {
  return !name.empty() && std::ranges::all_of(name, [](char c) {
    return isDigit(c) || (lowerAscii(c) >= 'a' && lowerAscii(c) <= 'z') || c == '-';
  });
}

// A page in both languages. The texts are this program's own.
std::string page(std::string_view head, std::string_view chinese, std::string_view english) {
  return "<!doctype html>\n<html lang=\"zh\">\n<meta charset=\"utf-8\">\n<title>Quillon</title>\n" + std::string(head) +
         "<p>" + std::string(chinese) + "</p>\n<p lang=\"en\">" + std::string(english) + "</p>\n</html>\n";
}

DeskResponse pageAnswer(int status, std::string body) {
  DeskResponse response;
  response.status = status;
  response.contentType = "text/html";
  response.body = std::move(body);
  return response;
}

}  // namespace

DeskResponse errorAnswer(int status, std::string_view code, std::string_view message) {
  DeskResponse response;
  response.status = status;
  response.body = Json{{"error", {{"code", code}, {"message", message}, {"item", nullptr}}}}.dump();
  return response;
}

DeskResponse answerTo(const Refusal& refusal, Language language) {
  constexpr int unauthorized = 401;
  DeskResponse response;
  if (refusal.ofApi) {
    response = errorAnswer(refusal.status, refusal.code, refusal.message.in(language));
  } else if (refusal.status == unauthorized) {
    response = pageAnswer(
        refusal.status,
        page(
            "",
            "请重新打开 quillon serve 显示的链接。链接只能使用一次；如果已经用过，请重新启动 quillon serve 以取得新链接。",
            "Open the link again that quillon serve printed. It works once: if it has been used, start quillon serve again "
            "for a new one."));
  } else {
    response = pageAnswer(refusal.status, page("", refusal.message.chinese, refusal.message.english));
  }
  if (refusal.code == "method")
    response.headers.emplace_back("Allow", refusal.ofApi ? "GET, POST, PUT, DELETE" : "GET");
  return response;
}

DeskResponse answerTo(const Entry& entry) {
  constexpr int seeOther = 303, found = 200;
  DeskResponse response =
      pageAnswer(entry.fromElsewhere ? found : seeOther,
                 page(entry.fromElsewhere ? "<meta http-equiv=\"refresh\" content=\"0; url=/\">\n" : "",
                      "<a href=\"/\">打开</a>", "<a href=\"/\">Open the desk</a>"));
  if (!entry.fromElsewhere) response.headers.emplace_back("Location", "/");
  if (!entry.cookie.empty()) response.headers.emplace_back("Set-Cookie", entry.cookie);
  return response;
}

DeskResponse checkedAnswer(DeskResponse response, Language language) {
  constexpr int first = 200, last = 599;
  std::erase_if(response.headers, [](const auto& header) { return isOwnHeader(header.first); });
  const bool sound = std::ranges::all_of(
      response.headers, [](const auto& header) { return isFieldName(header.first) && !hasControl(header.second); });
  if (sound && !hasControl(response.contentType) && response.status >= first && response.status <= last)
    return response;
  return errorAnswer(500, "internal", messages::answerFailed.in(language));
}

std::string answerHead(const DeskResponse& response, std::optional<std::size_t> length, bool endsConnection) {
  std::string head =
      "HTTP/1.1 " + std::to_string(response.status) + " " + std::string(reasonOf(response.status)) + "\r\n";
  const auto add = [&head](std::string_view name, std::string_view value) {
    head.append(name).append(": ").append(value).append("\r\n");
  };
  const bool text = response.contentType.starts_with("text/") && response.contentType.find(';') == std::string::npos;
  if (length != std::optional<std::size_t>(0))
    add("Content-Type", response.contentType + (text ? "; charset=utf-8" : ""));
  if (length) {
    constexpr int noContent = 204;
    if (response.status != noContent) add("Content-Length", std::to_string(*length));
  } else {
    add("Transfer-Encoding", "chunked");
  }
  bool cached = false;
  for (const auto& [name, value] : response.headers) {
    add(name, value);
    cached = cached || equalIgnoringCase(name, "Cache-Control");
  }
  for (const auto& [name, value] : safetyHeaders)
    add(name, value);
  if (!cached) add("Cache-Control", "no-store");
  if (endsConnection) add("Connection", "close");
  return head + "\r\n";
}

}  // namespace quillon::workbench::desk
