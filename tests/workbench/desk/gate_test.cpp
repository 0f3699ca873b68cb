// Who is let in, without a connection; tests/workbench/desk/wrong_requests_test.cpp sends what is refused.
#include "workbench/desk/gate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "workbench/desk/secret.h"

namespace quillon::workbench::desk {
namespace {

constexpr unsigned short port = 8765;
const std::string token(64, 'a'), session(64, 'b'), cookie = "quillon_8765=" + session;

using Fields = std::vector<std::pair<std::string, std::string>>;

RequestHead head(std::string method, std::string target, const Fields& fields, std::uint64_t length = 0) {
  RequestHead made;
  made.method = std::move(method);
  made.target = std::move(target);
  made.fields = {{"Host", "127.0.0.1:8765"}};
  for (const auto& field : fields) {
    if (field.first == "Host") made.fields.clear();
  }
  made.fields.insert(made.fields.end(), fields.begin(), fields.end());
  made.length = length;
  return made;
}

class GateTest : public ::testing::Test {
 protected:
  // 0 when it is let in.
  int refusal(const RequestHead& request) {
    const Decision decision = gate_.decide(request);
    const auto* const refusal = std::get_if<Refusal>(&decision);
    return refusal == nullptr ? 0 : refusal->status;
  }

  Gate gate_{port, token, session};
};

TEST_F(GateTest, AnswersUnderThreeNames) {
  for (const char* const host : {"127.0.0.1:8765", "localhost:8765", "[::1]:8765"})
    EXPECT_EQ(refusal(head("GET", "/", {{"Host", host}, {"Cookie", cookie}})), 0) << host;
  for (const char* const host : {"", "127.0.0.1", "127.0.0.1:08765", "127.0.0.1:8765 ", "LOCALHOST:8765", "::1:8765",
                                 "127.1:8765", "0.0.0.0:8765", "2130706433:8765", "user@127.0.0.1:8765"})
    EXPECT_EQ(refusal(head("GET", "/", {{"Host", host}, {"Cookie", cookie}})), 403) << host;
}

TEST_F(GateTest, FindsItsCookieAmongOthers) {
  for (const std::string& cookies :
       {cookie, "a=b; " + cookie, cookie + "; a=b", "a=b;" + cookie, "quillon_8765=planted; " + cookie, "; ;" + cookie})
    EXPECT_EQ(refusal(head("GET", "/api/x", {{"cookie", cookies}})), 0) << cookies;
  for (const std::string& cookies : {std::string(), "x" + cookie, cookie + "b", cookie.substr(0, cookie.size() - 1),
                                     "a=\"" + cookie + "\"", "QUILLON_8765=" + session})
    EXPECT_EQ(refusal(head("GET", "/api/x", {{"cookie", cookies}})), 401) << cookies;
}

TEST_F(GateTest, ChangesTheTokenIntoTheCookieOnce) {
  EXPECT_EQ(gate_.link(), "http://127.0.0.1:8765/open/" + token);
  EXPECT_FALSE(gate_.linkUsed());
  const Decision decision = gate_.decide(head("GET", "/?token=" + token, {}));
  const auto* const entry = std::get_if<Entry>(&decision);
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->cookie, cookie + "; HttpOnly; SameSite=Strict; Path=/");
  EXPECT_FALSE(entry->fromElsewhere);
  EXPECT_TRUE(gate_.linkUsed());
  EXPECT_EQ(refusal(head("GET", "/?token=" + token, {})), 401);
  EXPECT_EQ(refusal(head("GET", "/open/" + token, {})), 401);
  EXPECT_EQ(refusal(head("GET", "/open/x", {})), 401);
  EXPECT_EQ(refusal(head("GET", "/?token=", {})), 401);
}

TEST_F(GateTest, LeadsWhoIsInToTheStartPage) {
  const Decision decision = gate_.decide(head("GET", "/open/anything", {{"Cookie", cookie}}));
  const auto* const entry = std::get_if<Entry>(&decision);
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->cookie, "");
  EXPECT_FALSE(gate_.linkUsed());
}

TEST_F(GateTest, KnowsALinkThatWasOpenedFromAFile) {
  const Decision decision = gate_.decide(head("GET", "/open/" + token, {{"Sec-Fetch-Site", "cross-site"}}));
  const auto* const entry = std::get_if<Entry>(&decision);
  ASSERT_NE(entry, nullptr);
  EXPECT_TRUE(entry->fromElsewhere);
  EXPECT_NE(entry->cookie, "");
}

TEST_F(GateTest, LetsItsOwnPagesAsk) {
  const Fields in = {{"Cookie", cookie}};
  const auto with = [&in](Fields more) {
    more.insert(more.end(), in.begin(), in.end());
    return more;
  };
  for (const char* const method : {"POST", "PUT", "DELETE"}) {
    EXPECT_EQ(refusal(head(method, "/api/x", with({{"Sec-Fetch-Site", "same-origin"}}))), 0) << method;
    EXPECT_EQ(refusal(head(method, "/api/x", with({{"Origin", "http://127.0.0.1:8765"}}))), 0) << method;
    EXPECT_EQ(refusal(head(method, "/api/x", in)), 403) << method;
  }
  EXPECT_EQ(refusal(head("POST", "/api/x", with({{"Host", "localhost:8765"}, {"Origin", "http://localhost:8765"}}))),
            0);
  // What is only read may also be typed, or asked by a program that is no browser.
  EXPECT_EQ(refusal(head("GET", "/api/x", with({{"Sec-Fetch-Site", "none"}}))), 0);
  EXPECT_EQ(refusal(head("GET", "/api/x", in)), 0);
  // A link to the start page may stand anywhere; what it shows, it gets by itself.
  EXPECT_EQ(
      refusal(head(
          "GET", "/",
          with({{"Sec-Fetch-Site", "same-site"}, {"Sec-Fetch-Mode", "navigate"}, {"Sec-Fetch-Dest", "document"}}))),
      0);
  EXPECT_EQ(refusal(head("GET", "/", with({{"Sec-Fetch-Site", "same-site"}, {"Sec-Fetch-Mode", "no-cors"}}))), 403);
}

TEST_F(GateTest, TakesJsonAndNoBody) {
  const auto typed = [this](const std::string& type, std::uint64_t length) {
    Fields fields = {{"Cookie", cookie}, {"Sec-Fetch-Site", "same-origin"}};
    if (!type.empty()) fields.emplace_back("Content-Type", type);
    return refusal(head("POST", "/api/x", fields, length));
  };
  EXPECT_EQ(typed("application/json", 2), 0);
  EXPECT_EQ(typed("Application/JSON ; charset=UTF-8", 2), 0);
  EXPECT_EQ(typed("", 0), 0);
  EXPECT_EQ(typed("", 2), 415);
  EXPECT_EQ(typed("text/plain", 0), 415);
  EXPECT_EQ(typed("text/plain;application/json", 2), 415);
  EXPECT_EQ(typed("application/json;charset=utf-8;x", 2), 415);
  EXPECT_EQ(typed("application/json", Gate::bodyLimit), 0);
  EXPECT_EQ(typed("application/json", Gate::bodyLimit + 1), 413);
}

TEST(Gate, HearsWhichLanguageIsWanted) {
  const auto wanted = [](const Fields& fields) { return languageOf(head("GET", "/", fields)); };
  EXPECT_EQ(wanted({}), Language::chinese);
  for (const char* const english : {"en", "EN-us", " en;q=0.8, zh", "de, en-GB;q=0.7, zh;q=0.3"})
    EXPECT_EQ(wanted({{"accept-language", english}}), Language::english) << english;
  for (const char* const chinese : {"", "zh", "zh-CN,zh;q=0.9,en;q=0.8", "*", "de", "engl", ",,;", "zh\xff"})
    EXPECT_EQ(wanted({{"Accept-Language", chinese}}), Language::chinese) << chinese;
  const Decision decision =
      Gate(port, token, session).decide(head("GET", "/api/x", {{"Cookie", cookie}, {"Accept-Language", "en"}}));
  EXPECT_EQ(std::get<ApiAsked>(decision).request.language, Language::english);
}

TEST(Secret, IsNewEachTime) {
  const std::string one = newSecret(), other = newSecret();
  EXPECT_EQ(one.find_first_not_of("0123456789abcdef"), std::string::npos);
  EXPECT_EQ(one.size(), 64U);
  EXPECT_NE(one, other);
}

TEST(Secret, FitsItselfAlone) {
  EXPECT_TRUE(isSecret("abc", "abc"));
  EXPECT_FALSE(isSecret("abd", "abc"));
  EXPECT_FALSE(isSecret("ab", "abc"));
  EXPECT_FALSE(isSecret("abcd", "abc"));
  EXPECT_FALSE(isSecret("", ""));
}

}  // namespace
}  // namespace quillon::workbench::desk
