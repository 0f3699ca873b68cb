#include "tests/workbench/tds/session.h"

#include <algorithm>
#include <cstdlib>

#include "frame/text.h"
#include "tests/workbench/tds/login.h"
#include "tests/workbench/tds/statements.h"
#include "tests/workbench/tds/tokens.h"

namespace quillon::tds {

namespace {

constexpr int severityOfSyntax = 15, severityOfOthers = 16, severityOfLogin = 14, severityOfDatabase = 11;
constexpr int lastNumberOfSyntax = 199;
constexpr int refusedNumber = 40510, faultNumber = 40197;

ServerMessage messageOf(const tsql::SqlError& error) {
  return {.number = error.number(),
          .severity = error.number() <= lastNumberOfSyntax ? severityOfSyntax : severityOfOthers,
          .text = error.message(),
          .line = error.line()};
}

// Sends a batch's results as the engine gives them. The end of each statement waits for what follows, because it says
// whether anything does.
class ReplySink final : public tsql::ResultSink {
 public:
  explicit ReplySink(ReplyWriter& reply) : reply_(reply) {}

  void columns(std::span<const tsql::Column> columns) override {
    flushDone(true);
    columns_.assign(columns.begin(), columns.end());
    Bytes tokens;
    putColumns(tokens, columns_);
    reply_.write(tokens);
  }
  void row(std::span<const tsql::Value> values) override {
    tsql::endIfStopped();
    row_.clear();
    putRow(row_, columns_, values);
    reply_.write(row_);
  }
  void rowsAffected(std::int64_t count) override {
    flushDone(true);
    done_ = Done{.rows = count};
  }

  void succeed() {
    if (!done_) done_ = Done{};
    flushDone(false);
  }
  void fail(const ServerMessage& message) {
    flushDone(true);
    Bytes tokens;
    putMessage(tokens, message);
    putDone(tokens, {.failed = true});
    reply_.write(tokens);
  }
  void stop() {
    flushDone(true);
    Bytes tokens;
    putDone(tokens, {.attention = true});
    reply_.write(tokens);
  }

 private:
  void flushDone(bool more) {
    if (!done_) return;
    done_->more = more;
    Bytes tokens;
    putDone(tokens, *done_);
    reply_.write(tokens);
    done_.reset();
  }

  ReplyWriter& reply_;
  std::vector<tsql::Column> columns_;
  Bytes row_;
  std::optional<Done> done_;
};

// One row with one text.
void answerWithText(tsql::ResultSink& sink, const std::string& name, std::string_view text) {
  constexpr int width = 300;
  const tsql::Column column{name, {.kind = tsql::Kind::nVarChar, .width = width}};
  const tsql::Value value = std::string(text);
  sink.columns(std::span(&column, 1));
  sink.row(std::span(&value, 1));
  sink.rowsAffected(1);
}

}  // namespace

void Inbox::fill(Wire& wire) {
  // A client waits for its answer; one that sends on and on is none.
  constexpr std::size_t mostWaiting = 16;
  try {
    while (auto message = readMessage(wire)) {
      const std::scoped_lock lock(mutex_);
      if (message->isWithdrawn) continue;
      if (messages_.size() >= mostWaiting) break;
      if (message->type == MessageType::attention) stopWhatRuns();
      messages_.push_back(std::move(*message));
      arrived_.notify_one();
    }
  } catch (const ProtocolError&) {
    // There is nobody to be told.
  }
  const std::scoped_lock lock(mutex_);
  isClosed_ = true;
  stopWhatRuns();
  arrived_.notify_one();
}

std::optional<Message> Inbox::take() {
  std::unique_lock lock(mutex_);
  arrived_.wait(lock, [this] { return isClosed_ || !messages_.empty(); });
  if (messages_.empty()) return std::nullopt;
  Message message = std::move(messages_.front());
  messages_.pop_front();
  return message;
}

void Inbox::stopWhatRuns() {
  if (running_) running_->request();
}

Inbox::Interruptible::Interruptible(Inbox& inbox) : inbox_(inbox), scope_(std::make_shared<tsql::StopRequest>()) {
  const std::scoped_lock lock(inbox_.mutex_);
  inbox_.running_ = tsql::StopScope::current();
  // The client may have thought better of it before anything ran.
  const bool hasAttention = std::ranges::any_of(
      inbox_.messages_, [](const Message& message) { return message.type == MessageType::attention; });
  if (inbox_.isClosed_ || hasAttention) inbox_.stopWhatRuns();
}

Inbox::Interruptible::~Interruptible() {
  const std::scoped_lock lock(inbox_.mutex_);
  inbox_.running_.reset();
}

void Session::serve(Inbox& inbox) {
  try {
    while (const auto message = inbox.take()) {
      if (!answer(inbox, *message)) return;
    }
  } catch (const Disconnected&) {
    // The client knows.
  } catch (const ProtocolError&) {
    // A client that cannot be understood cannot be answered.
  } catch (const std::exception& error) {
    // A fault of this server's ends the connection, and nothing else.
    refuseQuietly(error.what());
  }
}

bool Session::answer(Inbox& inbox, const Message& message) {
  switch (message.type) {
    case MessageType::preLogin:
      if (account_) throw ProtocolError("a second login");
      readPreLogin(message.data);
      send(preLoginReply());
      return true;
    case MessageType::login:
      if (account_) throw ProtocolError("a second login");
      return answerLogin(message);
    default:
      break;
  }
  if (!account_) throw ProtocolError("a request before the login");
  switch (message.type) {
    case MessageType::batch:
      runBatch(inbox, readBatch(message.data));
      return true;
    case MessageType::attention: {
      // What it was meant for has ended by itself.
      ++server_.attentions;
      Bytes tokens;
      putDone(tokens, {.attention = true});
      send(tokens);
      return true;
    }
    default:
      refuse(refusedNumber, "Only batches of statements are taken here.");
      return true;
  }
}

bool Session::answerLogin(const Message& message) {
  const Login login = readLogin(message.data);
  Bytes tokens;
  const auto refuseLogin = [&](const ServerMessage& reason) {
    putMessage(tokens, reason);
    putDone(tokens, {.failed = true});
    send(tokens);
    return false;
  };
  if (login.user != server_.user || login.password != server_.password) {
    return refuseLogin(
        {.number = 18456, .severity = severityOfLogin, .text = "Login failed for user '" + login.user + "'."});
  }
  if (login.version < version74) {
    return refuseLogin({.number = refusedNumber,
                        .severity = severityOfLogin,
                        .text = "Only version 7.4 of the protocol is spoken here."});
  }
  const std::string database = login.database.empty() ? server_.firstDatabase : login.database;
  if (!use(database, tokens)) {
    return refuseLogin({.number = 4060,
                        .severity = severityOfDatabase,
                        .text = "Cannot open database \"" + database + "\" requested by the login. The login failed."});
  }
  const std::size_t agreed = login.packetSize == 0
                                 ? firstPacketSize
                                 : std::clamp<std::size_t>(login.packetSize, leastPacketSize, greatestPacketSize);
  putCollationChange(tokens);
  putLanguageChange(tokens, "us_english", "");
  putMessage(tokens, {.number = 5703, .text = "Changed language setting to us_english."});
  putLoginAck(tokens);
  putPacketSizeChange(tokens, agreed, packetSize_);
  putDone(tokens, {});
  send(tokens);
  packetSize_ = agreed;
  return true;
}

void Session::runBatch(Inbox& inbox, const std::string& sql) {
  ++server_.batches;
  if (const auto database = databaseUsedBy(sql)) {
    Bytes tokens;
    if (!use(*database, tokens)) return refuse(911, "Database '" + *database + "' does not exist.");
    putDone(tokens, {});
    return send(tokens);
  }
  ReplyWriter reply(wire_, packetSize_, number_);
  ReplySink sink(reply);
  bool stopped = false;
  try {
    const Inbox::Interruptible interruptible(inbox);
    if (asksForVersion(sql)) {
      answerWithText(sink, "version", programName);
    } else if (!setsSizeOfTexts(sql)) {
      account_->run(sql, sink);
    }
    sink.succeed();
  } catch (const tsql::Stopped&) {
    stopped = true;
  } catch (const tsql::SqlError& error) {
    sink.fail(messageOf(error));
  }
  if (stopped) {
    // By an attention, which this answers, or by a client that has gone.
    const auto attention = inbox.take();
    if (!attention || attention->type != MessageType::attention) throw Disconnected("the client has gone");
    ++server_.attentions;
    sink.stop();
  }
  reply.finish();
}

void Session::refuse(int number, std::string text) {
  Bytes tokens;
  putMessage(tokens, {.number = number, .severity = severityOfOthers, .text = std::move(text)});
  putDone(tokens, {.failed = true});
  send(tokens);
}

void Session::refuseQuietly(const std::string& text) {
  try {
    refuse(faultNumber, text);
  } catch (const Disconnected&) {
    // The client knows.
  }
}

bool Session::use(const std::string& database, Bytes& reply) {
  const auto found = std::ranges::find_if(server_.databases,
                                          [&](const auto& entry) { return equalIgnoringCase(entry.first, database); });
  if (found == server_.databases.end()) return false;
  // Temporary tables outlive a change to where one is.
  if (found->first != database_) account_ = tsql::Connection::open(found->second, tsql::OpenMode::existing);
  putDatabaseChange(reply, found->first, database_);
  putMessage(reply, {.number = 5701, .text = "Changed database context to '" + found->first + "'."});
  database_ = found->first;
  return true;
}

void Session::send(std::span<const Byte> tokens) {
  ReplyWriter reply(wire_, packetSize_, number_);
  reply.write(tokens);
  reply.finish();
}

}  // namespace quillon::tds
