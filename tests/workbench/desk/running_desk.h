// A desk that serves, and a client that sends it any bytes.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "workbench/desk/gate.h"
#include "workbench/desk/handler.h"
#include "workbench/desk/http_server.h"

namespace quillon::workbench::desk::testing {

inline const std::string token(64, 'a');
inline const std::string session(64, 'b');

struct Answer {
  int status = 0;
  std::map<std::string, std::string> fields;  // names in small letters
  std::string body;                           // of an answer in chunks: what they hold
  bool whole = false;                         // everything that the head announces has come

  std::string field(const std::string& name) const {
    const auto found = fields.find(name);
    return found == fields.end() ? "" : found->second;
  }
};

// A connection to the desk. What takes longer than ten seconds fails.
class Client {
 public:
  explicit Client(unsigned short port);
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  ~Client();

  // False when the desk has ended the connection.
  bool send(std::string_view bytes);
  // Ends what is sent.
  void sendNothingMore();
  // The next answer; that of a stream is read to its end. Status 0: the connection ended without one.
  Answer answer();
  // Waits for some more bytes; empty at the end of the connection.
  std::string some();
  // Waits for the end; whether it came.
  bool ends();

 private:
  class Socket;

  bool more();

  std::unique_ptr<Socket> socket_;
  std::string buffer_;
  bool ended_ = false;
};

// Answers what the tests ask for: "echo" gives back the body, or the query's "say"; the others are said below.
class TestHandler : public DeskHandler {
 public:
  DeskResponse handle(const DeskRequest& request) override;

  std::vector<DeskRequest> seen();
  bool waitForStreams(int running);  // whether it came to that
  std::atomic<bool> letGo = false;   // what "wait" waits for
  std::atomic<bool> waits = false;   // "wait" has begun

 private:
  void streamLines(Sink& sink);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<DeskRequest> seen_;
  int streams_ = 0;
};

class RunningDesk {
 public:
  explicit RunningDesk(ServerLimits limits = {});
  RunningDesk(const RunningDesk&) = delete;
  RunningDesk& operator=(const RunningDesk&) = delete;
  ~RunningDesk();

  unsigned short port() const { return server_.port(); }
  std::string host() const { return "127.0.0.1:" + std::to_string(port()); }
  std::string cookie() const { return "quillon_" + std::to_string(port()) + "=" + session; }
  TestHandler& handler() { return handler_; }
  // Puts the desk's own values in the place of {HOST}, {PORT}, {COOKIE}, {TOKEN}, and in that of {OWN} what the desk's own
  // page sends with everything.
  std::string filled(std::string request) const;
  // Sends one request over a connection of its own.
  Answer ask(const std::string& request) const;

  void askToEnd() { asked_ = true; }
  HttpServer::End join();

 private:
  TestHandler handler_;
  HttpServer server_;
  Gate gate_;
  std::atomic<bool> asked_ = false;
  HttpServer::End end_ = HttpServer::End::asked;
  std::thread thread_;
};

}  // namespace quillon::workbench::desk::testing
