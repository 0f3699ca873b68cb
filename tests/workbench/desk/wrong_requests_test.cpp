// Requests that nobody's own page sends: each is refused, and none reaches the handler.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>

#include "tests/workbench/desk/running_desk.h"

namespace quillon::workbench::desk {
namespace {

using testing::Answer;
using testing::Client;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::RunningDesk;

// Nothing is answered: the connection ends.
constexpr int noAnswer = 0;

struct WrongRequest {
  const char* name;
  int status;
  std::string request;
};

std::string post(const std::string& fields, const std::string& body = "{}") {
  return "POST /api/echo HTTP/1.1\r\n" + fields + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string get(const std::string& target) {
  return "GET " + target + " HTTP/1.1\r\n{OWN}\r\n";
}

const std::string json = "Content-Type: application/json\r\n";
const std::string signedIn = "Host: {HOST}\r\nCookie: {COOKIE}\r\n";

std::vector<WrongRequest> wrongRequests() {
  return {
      // Who asks.
      {"page without a cookie", 401, "GET / HTTP/1.1\r\nHost: {HOST}\r\n\r\n"},
      {"interface without a cookie", 401, "GET /api/echo HTTP/1.1\r\nHost: {HOST}\r\n\r\n"},
      {"asset without a cookie", 401, "GET /assets/x/app.js HTTP/1.1\r\nHost: {HOST}\r\n\r\n"},
      {"post without a cookie", 401, post("Host: {HOST}\r\nSec-Fetch-Site: same-origin\r\n" + json)},
      {"wrong cookie", 401, "GET /api/echo HTTP/1.1\r\nHost: {HOST}\r\nCookie: quillon_{PORT}=c\r\n\r\n"},
      {"empty cookie", 401, "GET /api/echo HTTP/1.1\r\nHost: {HOST}\r\nCookie: quillon_{PORT}=\r\n\r\n"},
      {"cookie of another desk", 401,
       "GET /api/echo HTTP/1.1\r\nHost: {HOST}\r\nCookie: quillon_1=" + testing::session + "\r\n\r\n"},
      {"cookie with something behind it", 401, "GET /api/echo HTTP/1.1\r\nHost: {HOST}\r\nCookie: {COOKIE}x\r\n\r\n"},
      {"token as a cookie", 401, "GET /api/echo HTTP/1.1\r\nHost: {HOST}\r\nCookie: quillon_{PORT}={TOKEN}\r\n\r\n"},
      {"token at the interface", 401, "GET /api/echo?token={TOKEN} HTTP/1.1\r\nHost: {HOST}\r\n\r\n"},
      {"token in a bearer field", 401,
       "GET /api/echo HTTP/1.1\r\nHost: {HOST}\r\nAuthorization: Bearer {TOKEN}\r\n\r\n"},
      {"wrong token", 401, "GET /open/{TOKEN}a HTTP/1.1\r\nHost: {HOST}\r\n\r\n"},
      {"empty token", 401, "GET /?token= HTTP/1.1\r\nHost: {HOST}\r\n\r\n"},
      {"token with another method", 401, "POST /open/{TOKEN} HTTP/1.1\r\nHost: {HOST}\r\nContent-Length: 0\r\n\r\n"},
      // Under which name.
      {"name that leads to this machine", 403,
       "GET /api/echo HTTP/1.1\r\nHost: evil.example:{PORT}\r\nCookie: {COOKIE}\r\n\r\n"},
      {"host without its port", 403, "GET /api/echo HTTP/1.1\r\nHost: 127.0.0.1\r\nCookie: {COOKIE}\r\n\r\n"},
      {"host with another port", 403, "GET /api/echo HTTP/1.1\r\nHost: 127.0.0.1:1\r\nCookie: {COOKIE}\r\n\r\n"},
      {"host with something before it", 403, "GET /api/echo HTTP/1.1\r\nHost: x.{HOST}\r\nCookie: {COOKIE}\r\n\r\n"},
      {"host with a point behind it", 403,
       "GET /api/echo HTTP/1.1\r\nHost: localhost.:{PORT}\r\nCookie: {COOKIE}\r\n\r\n"},
      {"another address of this machine", 403,
       "GET /api/echo HTTP/1.1\r\nHost: 127.0.0.2:{PORT}\r\nCookie: {COOKIE}\r\n\r\n"},
      {"no host", 403, "GET /api/echo HTTP/1.1\r\nCookie: {COOKIE}\r\n\r\n"},
      {"two hosts", 400, "GET /api/echo HTTP/1.1\r\nHost: {HOST}\r\nHost: evil.example\r\nCookie: {COOKIE}\r\n\r\n"},
      {"right token under a wrong name", 403, "GET /open/{TOKEN} HTTP/1.1\r\nHost: evil.example\r\n\r\n"},
      // From which page.
      {"post that says nothing of its page", 403, post(signedIn + json)},
      {"post from another site", 403, post(signedIn + json + "Sec-Fetch-Site: cross-site\r\n")},
      {"post from another port of this machine", 403, post(signedIn + json + "Sec-Fetch-Site: same-site\r\n")},
      {"post out of the address bar", 403, post(signedIn + json + "Sec-Fetch-Site: none\r\n")},
      {"post with a foreign origin", 403, post(signedIn + json + "Origin: http://evil.example\r\n")},
      {"post with no origin of its own", 403, post(signedIn + json + "Origin: null\r\n")},
      {"post with the origin of another scheme", 403, post(signedIn + json + "Origin: https://{HOST}\r\n")},
      {"post with the other name as its origin", 403, post(signedIn + json + "Origin: http://localhost:{PORT}\r\n")},
      {"own site and foreign origin", 403,
       post(signedIn + json + "Sec-Fetch-Site: same-origin\r\nOrigin: http://evil.example\r\n")},
      {"foreign site and own origin", 403,
       post(signedIn + json + "Sec-Fetch-Site: cross-site\r\nOrigin: http://{HOST}\r\n")},
      {"reading from another site", 403,
       "GET /api/echo HTTP/1.1\r\n" + signedIn + "Sec-Fetch-Site: cross-site\r\n\r\n"},
      {"reading from another port", 403, "GET /api/echo HTTP/1.1\r\n" + signedIn + "Sec-Fetch-Site: same-site\r\n\r\n"},
      {"reading with a foreign origin", 403,
       "GET /api/echo HTTP/1.1\r\n" + signedIn + "Origin: http://evil.example\r\n\r\n"},
      {"following a link to the interface", 403,
       "GET /api/echo HTTP/1.1\r\n" + signedIn +
           "Sec-Fetch-Site: cross-site\r\nSec-Fetch-Mode: navigate\r\nSec-Fetch-Dest: document\r\n\r\n"},
      {"page in a frame of another site", 403,
       "GET / HTTP/1.1\r\n" + signedIn +
           "Sec-Fetch-Site: cross-site\r\nSec-Fetch-Mode: navigate\r\nSec-Fetch-Dest: iframe\r\n\r\n"},
      {"question before a foreign post", 403,
       "OPTIONS /api/echo HTTP/1.1\r\n" + signedIn +
           "Origin: http://evil.example\r\nAccess-Control-Request-Method: POST\r\n\r\n"},
      {"deletion from another site", 403,
       "DELETE /api/echo HTTP/1.1\r\n" + signedIn + "Sec-Fetch-Site: cross-site\r\n\r\n"},
      // What is asked.
      {"method that is none here", 405, "PATCH /api/echo HTTP/1.1\r\n{OWN}\r\n"},
      {"head", 405, "HEAD /api/echo HTTP/1.1\r\n{OWN}\r\n"},
      {"trace", 405, "TRACE /api/echo HTTP/1.1\r\n{OWN}\r\n"},
      {"post to a page", 405, "POST / HTTP/1.1\r\n{OWN}Content-Length: 0\r\n\r\n"},
      {"way up", 400, get("/api/../api/echo")},
      {"encoded way up", 400, get("/api/%2e%2e/echo")},
      {"encoded slash", 400, get("/api/a%2Fecho")},
      {"encoded backslash", 400, get("/api/a%5Cecho")},
      {"empty part", 400, get("//api/echo")},
      {"zero byte", 400, get("/api/echo%00")},
      {"line end in the path", 400, get("/api/echo%0d%0aX")},
      {"percent sign alone", 400, get("/api/echo?say=%")},
      {"bytes that are no text", 400, get("/api/echo?say=%ff")},
      {"slash in too many bytes", 400, get("/api/a%c0%afecho")},
      {"address of another server", 400, get("http://evil.example/api/echo")},
      {"tunnel", 400, "CONNECT evil.example:443 HTTP/1.1\r\n{OWN}\r\n"},
      {"page that is not there", 404, get("/assets/0000000000000000/app.js")},
      {"file of this machine", 404, get("/etc/passwd")},
      // Bodies.
      {"form", 415, post("{OWN}Content-Type: application/x-www-form-urlencoded\r\n", "a=b")},
      {"plain text", 415, post("{OWN}Content-Type: text/plain\r\n")},
      {"body of no type", 415, post("{OWN}")},
      {"other character set", 415, post("{OWN}Content-Type: application/json; charset=gbk\r\n")},
      {"type that begins with the right one", 415, post("{OWN}Content-Type: application/json-seq\r\n")},
      {"two types", 400, post("{OWN}" + json + "Content-Type: text/plain\r\n")},
      {"body where something is read", 400, "GET /api/echo HTTP/1.1\r\n{OWN}Content-Length: 2\r\n\r\n{}"},
      {"body in chunks", 411,
       "POST /api/echo HTTP/1.1\r\n{OWN}" + json + "Transfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n"},
      {"length and chunks", 400,
       "POST /api/echo HTTP/1.1\r\n{OWN}" + json + "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n{}"},
      {"two lengths", 400,
       "POST /api/echo HTTP/1.1\r\n{OWN}" + json + "Content-Length: 2\r\nContent-Length: 3\r\n\r\n{}"},
      {"length that is no number", 400, "POST /api/echo HTTP/1.1\r\n{OWN}" + json + "Content-Length: -1\r\n\r\n"},
      {"length beyond all numbers", 400,
       "POST /api/echo HTTP/1.1\r\n{OWN}" + json + "Content-Length: 99999999999999999999999\r\n\r\n"},
      {"body that is too large", 413, "POST /api/echo HTTP/1.1\r\n{OWN}" + json + "Content-Length: 1048577\r\n\r\n"},
      {"body that is too large and comes", 413, post("{OWN}" + json, std::string(3'000'000, ' '))},
      {"body that nobody asked for, by a stranger", 401,
       "POST /api/echo HTTP/1.1\r\nHost: {HOST}\r\nSec-Fetch-Site: same-origin\r\n" + json +
           "Content-Length: 999999999999\r\n\r\n"},
      {"unknown expectation", 417,
       "POST /api/echo HTTP/1.1\r\n{OWN}" + json + "Expect: money\r\nContent-Length: 2\r\n\r\n"},
      // Form.
      {"head that is too large", 431, "GET /api/echo HTTP/1.1\r\n{OWN}X: " + std::string(17'000, 'x') + "\r\n\r\n"},
      {"head without an end", 431, "GET /api/echo?" + std::string(40'000, 'x')},
      {"older version", 505, "GET /api/echo HTTP/1.0\r\n{OWN}\r\n"},
      {"no version", 400, "GET /api/echo\r\n\r\n"},
      {"version to come", 400, "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n"},
      {"another protocol", 400, std::string("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03\r\n\r\n", 15)},
      {"lines without their first half", 400, "GET /api/echo HTTP/1.1\nHost: {HOST}\n\n"},
      {"field without a name", 400, "GET /api/echo HTTP/1.1\r\n{OWN}: x\r\n\r\n"},
      {"blank before the colon", 400, "GET /api/echo HTTP/1.1\r\nHost : {HOST}\r\n\r\n"},
      {"zero byte in a field", 400, "GET /api/echo HTTP/1.1\r\n{OWN}X: a" + std::string(1, '\0') + "b\r\n\r\n"},
      // Cut off.
      {"nothing at all", noAnswer, ""},
      {"half a line", noAnswer, "GET /api/ec"},
      {"head without its last line", noAnswer, "GET /api/echo HTTP/1.1\r\n{OWN}"},
      {"half a body", noAnswer, "POST /api/echo HTTP/1.1\r\n{OWN}" + json + "Content-Length: 20\r\n\r\n{\"a\":"},
  };
}

std::string nameOf(const ::testing::TestParamInfo<WrongRequest>& info) {
  std::string name;
  for (const char c : std::string_view(info.param.name))
    name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
  return name;
}

class WrongRequests : public ::testing::TestWithParam<WrongRequest> {};

TEST_P(WrongRequests, IsRefused) {
  RunningDesk desk;
  Client client(desk.port());
  client.send(desk.filled(GetParam().request));
  if (GetParam().status == noAnswer) client.sendNothingMore();
  const Answer answer = client.answer();
  EXPECT_EQ(answer.status, GetParam().status) << answer.body;
  EXPECT_TRUE(client.ends());
  EXPECT_THAT(desk.handler().seen(), IsEmpty());
  EXPECT_THAT(answer.fields, Not(::testing::Contains(::testing::Key("set-cookie"))));
  EXPECT_THAT(answer.body, Not(HasSubstr(testing::token)));
  EXPECT_THAT(answer.body, Not(HasSubstr(testing::session)));
  // The link is as good as before.
  EXPECT_EQ(desk.ask("GET /open/{TOKEN} HTTP/1.1\r\nHost: {HOST}\r\n\r\n").status, 303);
}

INSTANTIATE_TEST_SUITE_P(All, WrongRequests, ::testing::ValuesIn(wrongRequests()), nameOf);

TEST(WrongRequests, AreManyEnough) {
  EXPECT_GE(wrongRequests().size(), 50U);
}

}  // namespace
}  // namespace quillon::workbench::desk
