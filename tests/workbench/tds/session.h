// One client on the server: its login, then its batches on the account that it names.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "tests/workbench/tds/packets.h"
#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::tds {

// What all clients share.
struct Server {
  // Account files by the names of their databases. The first is that of a client that names none.
  std::map<std::string, std::filesystem::path> databases;
  std::string firstDatabase;
  std::string user, password;

  std::atomic<int> batches = 0;     // that have been run
  std::atomic<int> attentions = 0;  // that have been answered
};

// What a client has sent and nobody has looked at yet. A client's attention is seen at once, whatever runs.
class Inbox {
 public:
  // Takes what the client sends until it hangs up or sends what cannot be read.
  void fill(Wire& wire);
  // Waits for the next message; nullopt when there will be none any more.
  std::optional<Message> take();

  // While it lives, an attention of the client stops what runs on this thread.
  class Interruptible {
   public:
    explicit Interruptible(Inbox& inbox);
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;
    ~Interruptible();

   private:
    Inbox& inbox_;
    tsql::StopScope scope_;
  };

 private:
  void stopWhatRuns();

  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<Message> messages_;
  bool isClosed_ = false;
  std::shared_ptr<tsql::StopRequest> running_;  // null while nothing runs
};

class Session {
 public:
  // Server and wire stay as long as this. `number` is the session's own among those of the server.
  Session(Server& server, Wire& wire, std::uint16_t number) : server_(server), wire_(wire), number_(number) {}

  // Serves the client until it hangs up, is refused, or sends what cannot be read.
  void serve(Inbox& inbox);

 private:
  // Each answers one message; false when nothing more is to be said on the connection.
  bool answer(Inbox& inbox, const Message& message);
  bool answerLogin(const Message& message);
  void runBatch(Inbox& inbox, const std::string& sql);
  // Answers with one error; the connection goes on.
  void refuse(int number, std::string text);
  // The same on a connection that may have ended.
  void refuseQuietly(const std::string& text);
  // Changes to the database of that name; false when there is none.
  bool use(const std::string& database, Bytes& reply);
  void send(std::span<const Byte> tokens);

  Server& server_;
  Wire& wire_;
  std::uint16_t number_;
  std::size_t packetSize_ = firstPacketSize;
  std::string database_;
  std::unique_ptr<tsql::Connection> account_;  // null before the login
};

}  // namespace quillon::tds
