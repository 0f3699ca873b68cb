// A server that runs what it is sent on an embedded account, so that whole reports can go over ODBC.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "tests/workbench/odbc/test_driver.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::odbc::test {

class EngineServer final : public Server {
 public:
  explicit EngineServer(std::filesystem::path account) : account_(std::move(account)) { *quillonTestServer() = this; }
  EngineServer(const EngineServer&) = delete;
  EngineServer& operator=(const EngineServer&) = delete;
  ~EngineServer() override { *quillonTestServer() = nullptr; }

  // A connection string that reaches this server.
  static std::string connectionString();

  std::unique_ptr<ServerSession> connect(const std::u16string& connectionString, std::vector<Record>& refusal) override;

  // The server is killed when it has run that many batches more, and does not come back.
  void dieAfter(int further) { batchesToLive_ = further; }
  // The person at the client asks for a stop when the server has taken that many batches more.
  void askForStopAfter(int further) { batchesToStop_ = further; }
  // Whether it takes another batch.
  bool takesBatch() {
    if (batchesToStop_ >= 0 && batchesToStop_-- == 0) tsql::requestStop();
    return batchesToLive_ < 0 || batchesToLive_-- > 0;
  }

  std::map<int, int> otherNumbers = {};  // errors to which this server gives numbers of its own
  // It is one of another make: has no temporary tables among the objects of tempdb, and the tables of the system database
  // in the schema `periods` of the account's.
  bool isBabelfish = false;
  int batches = 0;                                 // that it has run
  int openSessions = 0;                            // that are connected
  std::vector<std::u16string> connectedWith = {};  // the connection strings that reached it

 private:
  std::filesystem::path account_;
  int batchesToLive_ = -1;  // negative: for ever
  int batchesToStop_ = -1;  // negative: nobody asks
};

}  // namespace quillon::odbc::test
