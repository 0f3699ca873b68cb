// How the desk carries requests and answers, and how it ends.
#include "workbench/desk/http_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "tests/workbench/desk/running_desk.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench::desk {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;
using ::testing::AllOf;
using testing::Answer;
using testing::Client;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Key;
using ::testing::Not;
using ::testing::Pair;
using testing::RunningDesk;
using ::testing::SizeIs;
using ::testing::StartsWith;

const std::string json = "Content-Type: application/json\r\n";

std::string get(const std::string& target) {
  return "GET " + target + " HTTP/1.1\r\n{OWN}\r\n";
}

std::string post(const std::string& path, const std::string& body) {
  return "POST " + path + " HTTP/1.1\r\n{OWN}" + json + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
         body;
}

TEST(HttpServer, HandsRequestsToTheHandlerDecoded) {
  RunningDesk desk;
  const Answer answer = desk.ask("PUT /api/filters/%E6%9C%88%20a+b?x=1+2&x=%09&empty&say=%E6%9C%88 HTTP/1.1\r\n{OWN}" +
                                 json + "Content-Length: 3\r\n\r\n[1]");
  EXPECT_EQ(answer.status, 404);
  const auto seen = desk.handler().seen();
  ASSERT_THAT(seen, SizeIs(1));
  EXPECT_EQ(seen[0].method, "PUT");
  EXPECT_EQ(seen[0].path, "filters/月 a+b");
  EXPECT_EQ(seen[0].query, (std::map<std::string, std::string>{{"empty", ""}, {"say", "月"}, {"x", "\t"}}));
  EXPECT_EQ(seen[0].body, "[1]");
}

TEST(HttpServer, KeepsTheConnectionForRequestsInTheirOrder) {
  RunningDesk desk;
  Client client(desk.port());
  for (const char* const word : {"one", "two"}) {
    client.send(desk.filled(post("/api/echo", word)));
    EXPECT_EQ(client.answer().body, word);
  }
  // All at once, as a client may that waits for no answer.
  client.send(desk.filled(post("/api/echo", "three") + get("/api/echo?say=four") + post("/api/echo", "five")));
  for (const char* const word : {"three", "four", "five"})
    EXPECT_EQ(client.answer().body, word);
}

TEST(HttpServer, AnswersNothingBehindARequestThatItRefused) {
  RunningDesk desk;
  Client client(desk.port());
  client.send(desk.filled("GET /api/echo HTTP/1.1\r\nHost: {HOST}\r\n\r\n" + post("/api/echo", "behind")));
  EXPECT_EQ(client.answer().status, 401);
  EXPECT_EQ(client.answer().status, 0);
  EXPECT_THAT(desk.handler().seen(), IsEmpty());
}

TEST(HttpServer, ReadsARequestHoweverItIsCut) {
  RunningDesk desk;
  Client client(desk.port());
  for (const char c : desk.filled(post("/api/echo", "slowly")))
    client.send(std::string_view(&c, 1));
  EXPECT_EQ(client.answer().body, "slowly");
}

TEST(HttpServer, TakesABodyOfOneMegabyte) {
  RunningDesk desk;
  const std::string body(Gate::bodyLimit, 'x');
  EXPECT_EQ(desk.ask(post("/api/echo", body)).body, body);
}

TEST(HttpServer, TellsWhoWaitsThatItsBodyIsWelcome) {
  RunningDesk desk;
  Client client(desk.port());
  client.send(
      desk.filled("POST /api/echo HTTP/1.1\r\n{OWN}" + json + "Expect: 100-continue\r\nContent-Length: 2\r\n\r\n"));
  EXPECT_EQ(client.answer().status, 100);
  client.send("ok");
  EXPECT_EQ(client.answer().body, "ok");
}

TEST(HttpServer, EndsTheConnectionWhenAsked) {
  RunningDesk desk;
  Client client(desk.port());
  client.send(desk.filled("GET /api/echo?say=a HTTP/1.1\r\n{OWN}Connection: close\r\n\r\n"));
  const Answer answer = client.answer();
  EXPECT_EQ(answer.body, "a");
  EXPECT_EQ(answer.field("connection"), "close");
  EXPECT_TRUE(client.ends());
}

TEST(HttpServer, PutsWhatKeepsOthersOutIntoEveryAnswer) {
  RunningDesk desk;
  for (const std::string& request :
       {get("/"), get("/api/echo?say=a"), get("/api/none"), get("/api/throw"), get("/api/headers"), get("/api/split"),
        get("/api/download"), get("/api/broken"), get("/none"), get("/%"), std::string("nonsense\r\n\r\n"),
        std::string("GET / HTTP/1.1\r\nHost: {HOST}\r\n\r\n"), std::string("GET / HTTP/1.1\r\nHost: evil\r\n\r\n"),
        std::string("GET /open/{TOKEN} HTTP/1.1\r\nHost: {HOST}\r\n\r\n")}) {
    SCOPED_TRACE(request);
    const Answer answer = desk.ask(request);
    EXPECT_EQ(
        answer.field("content-security-policy"),
        "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self' data:; base-uri "
        "'none'; form-action 'none'; frame-ancestors 'none'");
    EXPECT_THAT(answer.fields,
                AllOf(Contains(Pair("x-content-type-options", "nosniff")), Contains(Pair("x-frame-options", "DENY")),
                      Contains(Pair("referrer-policy", "no-referrer")),
                      Contains(Pair("cross-origin-opener-policy", "same-origin")),
                      Contains(Pair("cross-origin-resource-policy", "same-origin")),
                      Contains(Pair("cache-control", "no-store"))));
    for (const auto& [name, value] : answer.fields)
      EXPECT_THAT(name, Not(StartsWith("access-control-")));
  }
}

TEST(HttpServer, KeepsHandlersFromHeadersThatAreNotTheirs) {
  RunningDesk desk;
  const Answer answer = desk.ask(get("/api/headers"));
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.field("x-own"), "kept");
  EXPECT_THAT(answer.fields, Not(Contains(Key("set-cookie"))));
  const Answer split = desk.ask(get("/api/split"));
  EXPECT_EQ(split.status, 500);
  EXPECT_THAT(split.fields, Not(Contains(Key("set-cookie"))));
}

TEST(HttpServer, SaysNothingOfWhatWentWrongInside) {
  RunningDesk desk;
  const Answer answer = desk.ask(get("/api/throw"));
  EXPECT_EQ(answer.status, 500);
  EXPECT_EQ(answer.body, R"({"error":{"code":"internal","message":"工作台无法作出应答","item":null}})");
}

TEST(HttpServer, RefusesInTheLanguageOfTheRequest) {
  RunningDesk desk;
  const std::string request = "PATCH /api/echo HTTP/1.1\r\n{OWN}";
  EXPECT_THAT(desk.ask(request + "Accept-Language: en\r\n\r\n").body, HasSubstr("the desk knows GET"));
  EXPECT_THAT(desk.ask(request + "\r\n").body, HasSubstr("工作台使用 GET"));
  EXPECT_THAT(desk.ask("GET /api/throw HTTP/1.1\r\n{OWN}Accept-Language: en\r\n\r\n").body,
              HasSubstr("could not answer this"));
  EXPECT_THAT(desk.ask("nothing\r\n\r\n").body, AllOf(HasSubstr("读不懂"), HasSubstr("can read")))
      << "of which nothing is known";
}

// --- Pages and the link -----------------------------------------------------------------------------------------------

TEST(HttpServer, OpensItsLinkOnce) {
  RunningDesk desk;
  const std::string link = "GET /open/{TOKEN} HTTP/1.1\r\nHost: {HOST}\r\n\r\n";
  const Answer first = desk.ask(link);
  EXPECT_EQ(first.status, 303);
  EXPECT_EQ(first.field("location"), "/");
  EXPECT_EQ(first.field("set-cookie"), desk.cookie() + "; HttpOnly; SameSite=Strict; Path=/");
  const Answer second = desk.ask(link);
  EXPECT_EQ(second.status, 401);
  EXPECT_THAT(second.fields, Not(Contains(Key("set-cookie"))));
  EXPECT_THAT(second.body, AllOf(HasSubstr("重新启动 quillon serve"), HasSubstr("start quillon serve again")));
}

TEST(HttpServer, ServesTheStartPageAndWhatItNames) {
  RunningDesk desk;
  const Answer page = desk.ask(get("/?report=fx-detail"));
  EXPECT_EQ(page.status, 200);
  EXPECT_EQ(page.field("content-type"), "text/html; charset=utf-8");
  const std::size_t at = page.body.find("/assets/");
  ASSERT_NE(at, std::string::npos);
  const Answer asset = desk.ask(get(page.body.substr(at, page.body.find('"', at) - at)));
  EXPECT_EQ(asset.status, 200);
  EXPECT_EQ(asset.field("cache-control"), "private, max-age=31536000, immutable");
}

// --- Streams ----------------------------------------------------------------------------------------------------------

TEST(HttpServer, SendsADownloadWhole) {
  RunningDesk desk;
  const Answer answer = desk.ask(get("/api/download"));
  EXPECT_TRUE(answer.whole);
  EXPECT_EQ(answer.body.size(), 10U * 1024 * 1024);
  EXPECT_EQ(answer.field("content-disposition"), "attachment; filename=\"rows.csv\"");
}

TEST(HttpServer, CutsOffAStreamThatFails) {
  RunningDesk desk;
  const Answer answer = desk.ask(get("/api/broken"));
  EXPECT_FALSE(answer.whole);
  EXPECT_THAT(answer.body, Not(HasSubstr("secret")));
}

TEST(HttpServer, SendsAnotherAnswerForAStreamThatHasNotBegun) {
  RunningDesk desk;
  const Answer refused = desk.ask(get("/api/refused"));
  EXPECT_EQ(refused.status, 409);
  EXPECT_EQ(refused.body, R"({"error":{"code":"stopped"}})");
  EXPECT_EQ(refused.field("content-disposition"), "");
  const Answer unbegun = desk.ask(get("/api/unbegun"));
  EXPECT_EQ(unbegun.status, 500);
  EXPECT_THAT(unbegun.body, HasSubstr(R"("code":"internal")"));
  EXPECT_THAT(unbegun.body, Not(HasSubstr("secret")));
  const Answer late = desk.ask(get("/api/late"));
  EXPECT_EQ(late.status, 200);
  EXPECT_TRUE(late.whole);
  EXPECT_EQ(late.body, "whole");
  EXPECT_EQ(late.field("content-disposition"), "attachment");
  const Answer empty = desk.ask(get("/api/empty"));
  EXPECT_EQ(empty.status, 200);
  EXPECT_TRUE(empty.whole);
  EXPECT_EQ(empty.body, "");
}

TEST(HttpServer, EndsAStreamWhoseReaderHasGone) {
  RunningDesk desk;
  {
    Client client(desk.port());
    client.send(desk.filled(get("/api/lines")));
    std::string came;
    while (came.find(": begun\n") == std::string::npos)
      came += client.some();
    EXPECT_TRUE(desk.handler().waitForStreams(1));
  }
  EXPECT_TRUE(desk.handler().waitForStreams(0));
}

TEST(HttpServer, EndsAStreamWhoseReaderTakesNothing) {
  RunningDesk desk({.stream = 200ms});
  Client client(desk.port());
  client.send(desk.filled(get("/api/download")));
  std::this_thread::sleep_for(1s);
  EXPECT_FALSE(client.answer().whole);
}

TEST(HttpServer, OpensNoMoreStreamsThanItMay) {
  RunningDesk desk({.streams = 2});
  std::vector<std::unique_ptr<Client>> clients;
  for (int i = 0; i < 2; ++i) {
    clients.push_back(std::make_unique<Client>(desk.port()));
    clients.back()->send(desk.filled(get("/api/lines")));
  }
  ASSERT_TRUE(desk.handler().waitForStreams(2));
  EXPECT_EQ(desk.ask(get("/api/lines")).status, 503);
  clients.clear();
  ASSERT_TRUE(desk.handler().waitForStreams(0));
  // The thread of a stream that has ended is put away within one look at them.
  std::this_thread::sleep_for(200ms);
  Client client(desk.port());
  client.send(desk.filled(get("/api/lines")));
  EXPECT_TRUE(desk.handler().waitForStreams(1));
}

// --- Limits -----------------------------------------------------------------------------------------------------------

TEST(HttpServer, EndsAHeadThatComesTooSlowly) {
  RunningDesk desk({.head = 100ms});
  Client client(desk.port());
  client.send("GET / HT");
  EXPECT_EQ(client.answer().status, 408);
  EXPECT_TRUE(client.ends());
}

TEST(HttpServer, IsNotHeldByAHeadThatDrips) {
  RunningDesk desk({.head = 300ms});
  Client client(desk.port());
  const auto begun = steady_clock::now();
  client.send("GET / HTTP/1.1\r\n");
  while (client.send("X: y\r\n") && steady_clock::now() - begun < 5s)
    std::this_thread::sleep_for(50ms);
  EXPECT_LT(steady_clock::now() - begun, 5s);
}

TEST(HttpServer, EndsABodyThatComesTooSlowly) {
  RunningDesk desk({.body = 100ms});
  Client client(desk.port());
  client.send(desk.filled("POST /api/echo HTTP/1.1\r\n{OWN}" + json + "Content-Length: 10\r\n\r\n{"));
  EXPECT_EQ(client.answer().status, 408);
  EXPECT_THAT(desk.handler().seen(), IsEmpty());
}

TEST(HttpServer, EndsAConnectionThatIsNotUsed) {
  RunningDesk desk({.idle = 100ms});
  Client silent(desk.port());
  EXPECT_EQ(silent.answer().status, 0);
  Client between(desk.port());
  between.send(desk.filled(get("/api/echo?say=a")));
  EXPECT_EQ(between.answer().body, "a");
  EXPECT_EQ(between.answer().status, 0);
}

TEST(HttpServer, TakesNoMoreConnectionsThanItMay) {
  RunningDesk desk({.connections = 2});
  {
    Client one(desk.port());
    one.send(desk.filled(get("/api/echo?say=a")));
    EXPECT_EQ(one.answer().status, 200);
    Client two(desk.port());
    two.send(desk.filled(get("/api/echo?say=a")));
    EXPECT_EQ(two.answer().status, 200);
    Client three(desk.port());
    EXPECT_EQ(three.answer().status, 503);
    // Who is in is served as before.
    one.send(desk.filled(get("/api/echo?say=b")));
    EXPECT_EQ(one.answer().body, "b");
  }
  for (int tries = 0; desk.ask(get("/api/echo?say=c")).status != 200; ++tries) {
    ASSERT_LT(tries, 100);
    std::this_thread::sleep_for(20ms);
  }
}

TEST(HttpServer, AnswersOthersWhileOneRequestTakesLong) {
  RunningDesk desk;
  Client slow(desk.port());
  slow.send(desk.filled(get("/api/wait")));
  while (!desk.handler().waits)
    std::this_thread::sleep_for(5ms);
  EXPECT_EQ(desk.ask(get("/api/echo?say=a")).body, "a");
  desk.handler().letGo = true;
  EXPECT_EQ(slow.answer().status, 200);
}

TEST(HttpServer, SaysWhenItsPortCannotBeHad) {
  const RunningDesk desk;
  try {
    const HttpServer second(desk.port());
    FAIL();
  } catch (const UserError& error) {
    EXPECT_THAT(error.what(), HasSubstr("choose another with --port"));
  }
}

// --- The end ----------------------------------------------------------------------------------------------------------

TEST(HttpServer, EndsInTheMiddleOfEverything) {
  RunningDesk desk;
  Client idle(desk.port()), half(desk.port()), stream(desk.port()), download(desk.port()), waiting(desk.port());
  half.send("GET / HT");
  stream.send(desk.filled(get("/api/lines")));
  download.send(desk.filled(get("/api/download")));
  waiting.send(desk.filled(get("/api/wait")));
  ASSERT_TRUE(desk.handler().waitForStreams(1));
  while (!desk.handler().waits)
    std::this_thread::sleep_for(5ms);
  desk.askToEnd();
  for (Client* const client : {&idle, &half, &waiting, &stream, &download})
    EXPECT_TRUE(client->ends());
  // It waits for what still runs in the handler.
  desk.handler().letGo = true;
  EXPECT_EQ(desk.join(), HttpServer::End::asked);
  EXPECT_TRUE(desk.handler().waitForStreams(0));
  EXPECT_ANY_THROW(Client(desk.port()));
}

TEST(HttpServer, EndsWhenNobodyUsesIt) {
  RunningDesk desk({.unused = 300ms});
  {
    // An open page is use.
    Client page(desk.port());
    page.send(desk.filled(get("/api/lines")));
    ASSERT_TRUE(desk.handler().waitForStreams(1));
    std::this_thread::sleep_for(600ms);
    EXPECT_EQ(desk.ask(get("/api/echo?say=a")).status, 200);
  }
  EXPECT_EQ(desk.join(), HttpServer::End::unused);
}

}  // namespace
}  // namespace quillon::workbench::desk
