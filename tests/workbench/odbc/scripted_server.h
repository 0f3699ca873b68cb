// A server whose answers a test writes down, and that writes down what it is asked.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/workbench/odbc/test_driver.h"
#include "workbench/odbc/wide_text.h"

namespace quillon::odbc::test {

inline std::string utf8(const std::u16string& text) {
  return toUtf8(WideText(text.begin(), text.end()));
}
inline std::u16string utf16(std::string_view text) {
  const WideText wide = toWide(text);
  return {wide.begin(), wide.end()};
}

class ScriptedServer final : public Server {
 public:
  ScriptedServer() { *quillonTestServer() = this; }
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;
  ~ScriptedServer() override { *quillonTestServer() = nullptr; }

  // A connection string that reaches this server.
  static std::string connectionString() {
    return std::string("Driver=") + QUILLON_TEST_DRIVER + ";Server=here;Database=account;UID=sa;PWD=geheim";
  }

  std::unique_ptr<ServerSession> connect(const std::u16string& text, std::vector<Record>& refused) override {
    log.push_back("connect " + utf8(text));
    if (!refusal.empty()) {
      refused = refusal;
      return nullptr;
    }
    return std::make_unique<Session>(*this);
  }

  std::vector<Record> refusal;                                    // of the next connection
  std::function<std::vector<Result>(const std::string&)> answer;  // to a batch; without it batches give nothing
  bool tellsLength = true;
  bool isDead = false;  // the driver knows that there is no connection any more
  std::vector<std::string> log;

 private:
  class Session final : public ServerSession {
   public:
    explicit Session(ScriptedServer& server) : server_(server) {}
    std::vector<Result> run(const std::u16string& sql) override {
      server_.log.push_back("run " + utf8(sql));
      return server_.answer ? server_.answer(utf8(sql)) : std::vector<Result>{};
    }
    void note(const std::string& text) override { server_.log.push_back(text); }
    bool tellsLength() override { return server_.tellsLength; }
    bool isDead() override { return server_.isDead; }

   private:
    ScriptedServer& server_;
  };
};

}  // namespace quillon::odbc::test
