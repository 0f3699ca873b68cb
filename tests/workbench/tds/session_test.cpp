// Whole conversations with a session, without sockets and drivers.
#include "tests/workbench/tds/session.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/workbench/platform/temporary_file.h"
#include "tests/workbench/tds/login.h"
#include "tests/workbench/tds/test_bytes.h"

namespace quillon::tds {
namespace {

using test::hex;
using test::packetOf;
using test::wide;

Bytes preLoginMessage() {
  return packetOf(MessageType::preLogin, hex("01 00 06 00 01 ff 00"));
}

// What a client asks for in its login.
struct Asked {
  std::string user = "tester", password = "geheim", database = {};
  std::uint32_t packetSize = 512;
  std::uint32_t version = version74;
};

Bytes loginMessage(const Asked& asked) {
  constexpr std::size_t fixedPart = 94;
  Bytes places, texts;
  const auto putPlace = [&](const Bytes& text) {
    putU16(places, fixedPart + texts.size());
    putU16(places, text.size() / 2);
    putBytes(texts, text);
  };
  Bytes hidden = utf16Of(asked.password);
  for (Byte& byte : hidden) {
    const unsigned plain = byte;
    byte = static_cast<Byte>((plain << 4U | plain >> 4U) ^ 0xa5U);
  }
  for (const Bytes& text :
       {Bytes{}, utf16Of(asked.user), hidden, Bytes{}, Bytes{}, Bytes{}, Bytes{}, Bytes{}, utf16Of(asked.database)})
    putPlace(text);
  Bytes data;
  putU32(data, fixedPart + texts.size());
  putU32(data, asked.version);
  putU32(data, asked.packetSize);
  data.resize(36);
  putBytes(data, places);
  data.resize(fixedPart);
  putBytes(data, texts);
  return packetOf(MessageType::login, data);
}

Bytes batchMessage(std::string_view sql) {
  Bytes data = hex("04 00 00 00");
  putBytes(data, utf16Of(sql));
  return packetOf(MessageType::batch, data);
}

// A client that waits for each answer. What it says at once has one answer with what it said before.
struct Said {
  Bytes bytes;
  bool atOnce = false;
};

class ConversationWire final : public Wire {
 public:
  explicit ConversationWire(std::vector<Said> said) : said_(std::move(said)) {}

  std::size_t read(std::span<Byte> room) override {
    std::unique_lock lock(mutex_);
    if (left_.empty()) {
      const bool atOnce = next_ < said_.size() && said_[next_].atOnce;
      answered_.wait(lock, [&] { return atOnce || hasEnded_ || answers.size() >= awaited_; });
      if (next_ == said_.size() || hasEnded_) return 0;
      left_ = said_[next_++].bytes;
      if (!atOnce) ++awaited_;
    }
    const std::size_t count = std::min(room.size(), left_.size());
    std::copy_n(left_.begin(), count, room.begin());
    left_.erase(left_.begin(), left_.begin() + static_cast<std::ptrdiff_t>(count));
    return count;
  }
  void send(std::span<const Byte> packet) override {
    const std::scoped_lock lock(mutex_);
    if (isNewAnswer_) reply_.clear();
    putBytes(reply_, packet.subspan(headerSize));
    longestPacket = std::max(longestPacket, packet.size());
    isNewAnswer_ = packet[1] == 1;
    if (isNewAnswer_) answers.push_back(reply_);
    answered_.notify_all();
  }
  // The server has ended the connection.
  void end() {
    const std::scoped_lock lock(mutex_);
    hasEnded_ = true;
    answered_.notify_all();
  }

  std::vector<Bytes> answers;  // whole messages, without headers
  std::size_t longestPacket = 0;

 private:
  std::vector<Said> said_;
  std::mutex mutex_;
  std::condition_variable answered_;
  std::size_t next_ = 0, awaited_ = 0;
  Bytes left_, reply_;
  bool isNewAnswer_ = true, hasEnded_ = false;
};

const Bytes attentionMessage = packetOf(MessageType::attention, {});
const Bytes done = hex("fd 00 00 00 00 00 00 00 00 00 00 00 00");
const Bytes failed = hex("fd 02 00 00 00 00 00 00 00 00 00 00 00");
const Bytes answersAttention = hex("fd 20 00 00 00 00 00 00 00 00 00 00 00");

bool holds(const Bytes& bytes, const Bytes& part) {
  return std::search(bytes.begin(), bytes.end(), part.begin(), part.end()) != bytes.end();
}
bool endsWith(const Bytes& bytes, const Bytes& end) {
  return bytes.size() >= end.size() && std::equal(end.rbegin(), end.rend(), bytes.rbegin());
}

class TdsSession : public testing::Test {
 protected:
  TdsSession() { tsql::Connection::open(file_.path(), tsql::OpenMode::createNew); }

  std::vector<Bytes> answersTo(std::vector<Said> said) {
    ConversationWire wire(std::move(said));
    Inbox inbox;
    std::thread reader([&] { inbox.fill(wire); });
    Session(server_, wire, 51).serve(inbox);
    wire.end();
    reader.join();
    longestPacket_ = wire.longestPacket;
    return wire.answers;
  }
  // What answers a batch on a connection of its own.
  Bytes answerTo(std::string_view sql, const Asked& asked = {}) {
    const auto answers = answersTo({{preLoginMessage()}, {loginMessage(asked)}, {batchMessage(sql)}});
    return answers.size() == 3 ? answers.back() : Bytes{};
  }

  workbench::test::TemporaryFile file_{".qacc"};
  Server server_{
      .databases = {{"one.qacc", file_.path()}}, .firstDatabase = "one.qacc", .user = "tester", .password = "geheim"};
  std::size_t longestPacket_ = 0;
};

TEST_F(TdsSession, ALoginIsTaken) {
  const auto answers = answersTo({{preLoginMessage()}, {loginMessage({})}});
  ASSERT_EQ(answers.size(), 2U);
  EXPECT_EQ(answers[0], preLoginReply());
  EXPECT_TRUE(holds(answers[1], hex("e3 13 00 01 08 " + wide("one.qacc") + "00"))) << "the database";
  EXPECT_TRUE(holds(answers[1], hex("e3 11 00 04 03 " + wide("512") + "04 " + wide("4096")))) << "the size of packets";
  EXPECT_TRUE(holds(answers[1], hex("ad 34 00 01 74 00 00 04")));
  EXPECT_TRUE(endsWith(answers[1], done));
}

TEST_F(TdsSession, ALoginIsRefused) {
  struct Case {
    Asked asked;
    int number;
  };
  for (const auto& [asked, number] : {Case{{.user = "sa"}, 18456},
                                      {{.password = "Geheim"}, 18456},
                                      {{.database = "other"}, 4060},
                                      {{.version = 0x71000001}, 40510}}) {
    const auto answers = answersTo({{preLoginMessage()}, {loginMessage(asked)}, {batchMessage("Select 1")}});
    ASSERT_EQ(answers.size(), 2U) << "and the connection ends";
    Bytes numberBytes;
    putU32(numberBytes, static_cast<std::uint64_t>(number));
    EXPECT_EQ(answers[1].front(), 0xaa);
    EXPECT_TRUE(holds(answers[1], numberBytes)) << number;
    EXPECT_TRUE(endsWith(answers[1], failed));
  }
  EXPECT_EQ(server_.batches, 0);
}

TEST_F(TdsSession, SeveralResultsInOneBatch) {
  EXPECT_EQ(
      answerTo(
          "Create Table #t (i int) Insert Into #t Values (1), (2) Select i From #t Order By i Update #t Set i = 3"),
      hex("fd 11 00 00 00 02 00 00 00 00 00 00 00 "
          "81 01 00 00 00 00 00 09 00 26 04 01 69 00 d1 04 01 00 00 00 d1 04 02 00 00 00 "
          "fd 11 00 00 00 02 00 00 00 00 00 00 00 "
          "fd 10 00 00 00 02 00 00 00 00 00 00 00"));
  EXPECT_EQ(answerTo("Set NoCount On"), done);
  EXPECT_EQ(answerTo("Set TextSize 2147483647"), done);
}

TEST_F(TdsSession, AnErrorComesBehindTheResultsBeforeIt) {
  const Bytes answer = answerTo("Select 1 As a\nSelect a\nFrom nowhere");
  EXPECT_TRUE(holds(answer, hex("d1 04 01 00 00 00 fd 11 00 00 00 01 00 00 00 00 00 00 00 aa")));
  EXPECT_TRUE(holds(answer, hex("d0 00 00 00 01 10 1e 00 " + wide("Invalid object name 'nowhere'") + "2e 00")));
  EXPECT_TRUE(endsWith(answer, failed));
}

TEST_F(TdsSession, ALongAnswerKeepsToThePacketSize) {
  const Bytes answer = answerTo("Select Replicate(N'x', 4000) As a", {.packetSize = 600});
  EXPECT_GT(answer.size(), 8000U);
  EXPECT_EQ(longestPacket_, 600U);
  answerTo("Select Replicate(N'x', 4000) As a", {.packetSize = 1});
  EXPECT_EQ(longestPacket_, leastPacketSize);
  answerTo("Select 1", {.packetSize = 0});
}

TEST_F(TdsSession, AnotherDatabase) {
  const workbench::test::TemporaryFile other(".qacc");
  tsql::Connection::open(other.path(), tsql::OpenMode::createNew)->execute("Create Table here (i int)");
  server_.databases.emplace("two.qacc", other.path());
  const auto answers = answersTo({{preLoginMessage()},
                                  {loginMessage({})},
                                  {batchMessage("Select * From here")},
                                  {batchMessage("use [TWO.qacc]")},
                                  {batchMessage("Select * From here")},
                                  {batchMessage("use three")}});
  ASSERT_EQ(answers.size(), 6U);
  EXPECT_TRUE(endsWith(answers[2], failed));
  EXPECT_TRUE(holds(answers[3], hex("e3 23 00 01 08 " + wide("two.qacc") + "08 " + wide("one.qacc"))));
  EXPECT_EQ(answers[4].front(), 0x81);
  EXPECT_TRUE(endsWith(answers[5], failed));
}

TEST_F(TdsSession, AnAttentionEndsWhatRuns) {
  tsql::Connection::open(file_.path(), tsql::OpenMode::existing)
      ->execute("Create Table t (i int) Insert Into t Values (1), (2), (3), (4), (5), (6), (7), (8), (9), (10)");
  const Bytes endless =
      batchMessage("Select Count_Big(*) From t a, t b, t c, t d, t e, t f, t g, t h, t i, t j, t k, t l");
  const auto answers = answersTo(
      {{preLoginMessage()}, {loginMessage({})}, {endless}, {attentionMessage, true}, {batchMessage("Select 1 As a")}});
  ASSERT_EQ(answers.size(), 4U) << "one answers both";
  EXPECT_TRUE(endsWith(answers[2], answersAttention));
  EXPECT_FALSE(holds(answers[2], hex("aa")) && holds(answers[2], failed));
  EXPECT_EQ(server_.attentions, 1);
}

TEST_F(TdsSession, AnAttentionThatComesTooLateIsAnsweredAlone) {
  const auto answers = answersTo({{preLoginMessage()},
                                  {loginMessage({})},
                                  {batchMessage("Select 1 As a")},
                                  {attentionMessage},
                                  {batchMessage("Set NoCount On")}});
  ASSERT_EQ(answers.size(), 5U);
  EXPECT_EQ(answers[3], answersAttention);
  EXPECT_EQ(answers[4], done);
}

TEST_F(TdsSession, AProcedureIsRefusedAndTheConnectionGoesOn) {
  const auto answers = answersTo({{preLoginMessage()},
                                  {loginMessage({})},
                                  {packetOf(MessageType::procedure, hex("04 00 00 00 ff ff 0a 00 00 00"))},
                                  {batchMessage("Set NoCount On")}});
  ASSERT_EQ(answers.size(), 4U);
  EXPECT_EQ(answers[2].front(), 0xaa);
  EXPECT_EQ(answers[3], done);
}

TEST_F(TdsSession, WhatIsOutOfTurnOrNoMessageEndsTheConnection) {
  EXPECT_EQ(answersTo({{batchMessage("Select 1")}}).size(), 0U) << "a batch before the login";
  EXPECT_EQ(answersTo({{attentionMessage}}).size(), 0U);
  EXPECT_EQ(answersTo({{hex("00 00 00 00 00 00 00 00")}}).size(), 0U);
  EXPECT_EQ(answersTo({{packetOf(MessageType::login, hex("00"))}}).size(), 0U);
  EXPECT_EQ(answersTo({{packetOf(MessageType::preLogin, {})}}).size(), 0U);
  EXPECT_EQ(answersTo({{loginMessage({})}, {loginMessage({})}}).size(), 1U) << "a second login";
  EXPECT_EQ(answersTo({{loginMessage({})}, {packetOf(MessageType::batch, hex("01"))}}).size(), 1U);
}

TEST_F(TdsSession, AnAccountThatCannotBeOpenedIsTold) {
  std::filesystem::remove(file_.path());
  const auto answers = answersTo({{loginMessage({})}});
  ASSERT_EQ(answers.size(), 1U);
  EXPECT_EQ(answers[0].front(), 0xaa);
  EXPECT_TRUE(endsWith(answers[0], failed));
}

}  // namespace
}  // namespace quillon::tds
