#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/fuzz/targets.h"
#include "workbench/account/account.h"
#include "workbench/account/sample.h"
#include "workbench/desk/desk_api.h"
#include "workbench/desk/target.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::fuzz {

namespace {

using namespace workbench::desk;
namespace fs = std::filesystem;

// Requests of one input; each may take a report's time.
constexpr int mostRequests = 8;
constexpr std::string_view apiFolder = "/api/";

// A folder with an account and a folder for filters, and nothing else.
class Place {
 public:
  Place() : folder_(fs::temp_directory_path() / ("quillon-fuzz-" + workbench::uniqueNamePart())) {
    fs::create_directories(folder_);
    account::createSample(file(), {.rows = account::minimumSampleRowsAYear, .years = 1});
    // A report of a few lines takes a few milliseconds.
    tsql::Connection::open(file(), tsql::OpenMode::existing)
        ->execute("Delete From ia_subsidiary Where AutoID % 12 <> 0 And cInvCode <> N'0401-00017'");
    written_ = fs::last_write_time(file());
  }
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  fs::path file() const { return folder_ / "a.account"; }
  fs::path filters() const { return folder_ / "filters"; }
  fs::path layouts() const { return folder_ / "layouts"; }
  std::string name() const { return utf8FromPath(folder_); }

  void check() const {
    require(fs::last_write_time(file()) == written_, "the account is only read");
    for (const auto& entry : fs::directory_iterator(folder_))
      require(entry.path() == file() || entry.path() == filters() || entry.path() == layouts(),
              "nothing is written beside filters and layouts");
    fs::remove_all(filters());
    fs::remove_all(layouts());
  }

 private:
  fs::path folder_;
  fs::file_time_type written_;
};

class Reader final : public Sink {
 public:
  bool write(std::string_view bytes) override {
    text.append(bytes);
    return open();
  }
  bool open() const override { return text.size() < most; }

  std::string text;

 private:
  static constexpr std::size_t most = 1'000'000;
};

std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

void checkError(const DeskResponse& response, const Json& json) {
  constexpr std::array<std::string_view, 15> codes = {"json",  "form",   "unknown", "document", "state",
                                                      "value", "lookup", "dialog",  "layout",   "name",
                                                      "item",  "format", "limit",   "account",  "stopped"};
  require(json.is_object() && json.contains("error"), "a refusal says so");
  const Json& error = json["error"];
  require(std::ranges::find(codes, error.at("code").get<std::string>()) != codes.end(), "a refusal has a known code");
  require(!error.at("message").get<std::string>().empty(), "a refusal says why");
  require(error.at("item").is_null() || error.at("item").is_string(), "a refusal names an item or none");
  require(!response.stream, "a refusal is no stream");
}

void checkAnswer(const DeskResponse& response, const Place& place, bool secretKnown) {
  require(response.status >= 200 && response.status < 600 && response.status != 500, "the program is without a fault");
  std::string said = response.body;
  if (response.stream) {
    Reader reader;
    response.stream(reader);
    said = reader.text;
  } else {
    const Json json = Json::parse(response.body, nullptr, false);
    require(!json.is_discarded(), "an answer is JSON");
    if (response.status >= 400) checkError(response, json);
  }
  require(secretKnown || said.find(place.name()) == std::string::npos, "an answer holds no path of the machine");
}

}  // namespace

// Lines in turn: a method, a blank and a target below /api/, and the body that goes with it.
void checkApi(std::string_view input) {
  static const Place place;
  const bool secretKnown = input.find(place.name()) != std::string_view::npos;
  {
    DeskApi api({.account = workbench::AccountSource::inFile(place.file()),
                 .filters = workbench::SavedFilters(place.filters()),
                 .layouts = workbench::KeptLayouts(place.layouts()),
                 .limits = {.dialogs = 2, .runs = 2, .running = 1, .run = {.views = 2}}});
    for (int i = 0; i < mostRequests && !input.empty(); ++i) {
      const std::string_view line = takeLine(input);
      const std::string_view body = takeLine(input);
      const std::size_t blank = std::min(line.find(' '), line.size());
      const auto target =
          readTarget(std::string(apiFolder) + std::string(line.substr(std::min(blank + 1, line.size()))));
      if (!target || target->path.size() <= apiFolder.size()) continue;
      const DeskResponse response =
          api.handle({.method = std::string(line.substr(0, blank)),
                      .path = target->path.substr(apiFolder.size()),
                      .query = target->query,
                      .body = std::string(body),
                      .language = i % 2 == 0 ? workbench::Language::chinese : workbench::Language::english});
      checkAnswer(response, place, secretKnown);
    }
  }
  place.check();
}

}  // namespace quillon::fuzz
