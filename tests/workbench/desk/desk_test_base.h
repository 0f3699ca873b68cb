// The desk's interface over a small sample, asked without sockets.
#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/desk/desk_api.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench::desk::test {

using workbench::test::TemporaryFile;

// Keeps what is sent; a reader that goes away after so many bytes when that is set.
class KeptSink final : public Sink {
 public:
  bool write(std::string_view bytes) override {
    text.append(bytes);
    return open();
  }
  bool open() const override { return text.size() < leavesAfter; }

  std::string text;
  std::size_t leavesAfter = std::string::npos;
};

// An answer with its JSON.
struct Answer {
  int status = 0;
  Json json;
  DeskResponse response;

  std::string code() const { return json["error"]["code"]; }
  std::string message() const { return json["error"]["message"]; }
};

class DeskTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    account_ = std::make_unique<TemporaryFile>(".account");
    account::createSample(account_->path(), {.rows = 1'500});
  }
  static void TearDownTestSuite() { account_.reset(); }

  void SetUp() override { open({}); }
  void TearDown() override {
    api_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(filters_.path(), ignored);
    std::filesystem::remove_all(layouts_.path(), ignored);
  }

  void open(DeskLimits limits) {
    api_.reset();
    api_ = std::make_unique<DeskApi>(DeskOptions{.account = AccountSource::inFile(account_->path()),
                                                 .filters = SavedFilters(filters_.path()),
                                                 .layouts = KeptLayouts(layouts_.path()),
                                                 .version = "1.0.0",
                                                 .licences = {{"regular-table", "Apache-2.0", "words"}},
                                                 .limits = limits});
  }

  Answer ask(const std::string& method, const std::string& path, const std::string& body = {},
             std::map<std::string, std::string> query = {}) {
    Answer answer;
    answer.response =
        api_->handle({.method = method, .path = path, .query = std::move(query), .body = body, .language = language_});
    answer.status = answer.response.status;
    if (!answer.response.body.empty()) answer.json = Json::parse(answer.response.body);
    return answer;
  }
  Json get(const std::string& path, std::map<std::string, std::string> query = {}) {
    const Answer answer = ask("GET", path, {}, std::move(query));
    EXPECT_EQ(answer.status, 200) << path << ' ' << answer.response.body;
    return answer.json;
  }
  Answer post(const std::string& path, const Json& body = Json::object()) { return ask("POST", path, body.dump()); }
  // The text of a stream.
  std::string streamed(const Answer& answer) {
    KeptSink sink;
    answer.response.stream(sink);
    return sink.text;
  }

  // Starts a run and waits for its end; gives its path, "runs/1".
  std::string run(const std::string& report, const Json& values = Json::object(), const std::string& lang = "en") {
    const Answer started = post("runs", {{"report", report}, {"lang", lang}, {"values", values}});
    EXPECT_EQ(started.status, 201) << started.response.body;
    std::string path = "runs/" + started.json["id"].dump();
    streamed(ask("GET", path + "/events"));
    return path;
  }
  // The same for a run that has a result.
  std::string done(const std::string& report, const Json& values = Json::object(), const std::string& lang = "en") {
    std::string path = run(report, values, lang);
    const Json info = get(path);
    EXPECT_EQ(info["state"], "done") << info["error"] << info["messages"];
    return path;
  }
  // Opens a view; gives its description.
  Json view(const std::string& run, Json asked) {
    if (!asked.contains("lang")) asked["lang"] = "en";
    const Answer answer = post(run + "/views", asked);
    EXPECT_EQ(answer.status, 201) << answer.response.body;
    return answer.json;
  }
  static std::string pathOf(const std::string& run, const Json& view) { return run + "/views/" + view["id"].dump(); }
  // All rows of a view.
  Json allRows(const std::string& run, const Json& view) {
    Json rows = Json::array();
    while (true) {
      const Json page = get(pathOf(run, view) + "/rows", {{"offset", std::to_string(rows.size())}, {"limit", "300"}});
      for (const Json& row : page["rows"])
        rows.push_back(row);
      if (page["complete"] && rows.size() >= page["rowCount"]) return rows;
    }
  }

  static const std::filesystem::path& accountFile() { return account_->path(); }

  TemporaryFile filters_{".filters"};
  TemporaryFile layouts_{".layouts"};
  std::unique_ptr<DeskApi> api_;
  Language language_ = Language::english;  // of the requests

 private:
  static inline std::unique_ptr<TemporaryFile> account_;
};

}  // namespace quillon::workbench::desk::test
