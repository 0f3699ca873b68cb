// What the translation of a filter costs: 120 items, each with a value, as the dialog of a large account hands them in.
// The platform's answers are constants here, so that only the library's own work is measured.
#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "reports/sfc_item/filter_translation.h"

namespace quillon {
namespace {

constexpr int itemCount = 120;

struct ItemData {
  std::string name;
  std::string value;
};

class BenchItem final : public FilterItem {
 public:
  explicit BenchItem(const ItemData& data) : data_(data) {}
  void setGroupToken(int) override {}
  std::string name() override { return data_.name; }
  std::string value() override { return data_.value; }
  std::string value2() override { return {}; }
  bool rangeInput() override { return false; }
  bool multipleSelection() override { return true; }
  std::string sqlText() override { return {}; }

 private:
  const ItemData& data_;
};

class BenchFilter final : public Filter {
 public:
  BenchFilter() {
    // The last keys of the table, so that each look-up walks far; one in four is unknown.
    const std::array<std::string, 4> keys{"cFree10", "cDefine33", "bIncludeTransVouch", "cUnknown"};
    items_.push_back({"iYear", "2024"});
    while (items_.size() < itemCount)
      items_.push_back({keys[items_.size() % keys.size()], "01\t02\t03 "});
  }
  int count() override { return static_cast<int>(items_.size()); }
  std::unique_ptr<FilterItem> item(int position) override {
    return std::make_unique<BenchItem>(items_.at(static_cast<std::size_t>(position - 1)));
  }
  std::unique_ptr<FilterItem> item(std::string_view) override { return nullptr; }
  std::string whereWithToken(int) override { return {}; }

 private:
  std::vector<ItemData> items_;
};

class NoRows final : public Recordset {
 public:
  bool eof() override { return true; }
  void moveNext() override {}
  std::optional<std::string> text(int) override { return std::nullopt; }
  void close() override {}
};

class BenchSession final : public Session {
 public:
  void setCursorLocation(CursorLocation) override {}
  void setConnectionString(std::string_view) override {}
  void setConnectionTimeout(int) override {}
  void setCommandTimeout(int) override {}
  void open(std::string_view, std::string_view, int) override {}
  std::int64_t execute(std::string_view) override { return 0; }
  std::unique_ptr<Recordset> query(std::string_view, const QueryOptions&) override {
    return std::make_unique<NoRows>();
  }
  int state() override { return 1; }
  void close() override {}
};

class BenchComponent final : public PublicComponent {
 public:
  std::string accountInformation(std::string_view, std::string_view, Session&) override { return {}; }
  int currentPeriodYear(Session&) override { return 2024; }
  int costItemStartMonth(std::string_view, Session&) override { return 1; }
  std::vector<std::string> usedYears(std::string_view, Session&) override { return {}; }
};

class BenchPlatform final : public Platform {
 public:
  std::shared_ptr<Session> createSession() override { return std::make_shared<BenchSession>(); }
  std::shared_ptr<PublicComponent> createPublicComponent() override { return std::make_shared<BenchComponent>(); }
  std::shared_ptr<ResourceService> createResourceService() override { return nullptr; }
  std::shared_ptr<UniqueNameSource> createUniqueNameSource() override { return nullptr; }
  std::shared_ptr<DrillThroughHelper> createDrillThroughHelper() override { return nullptr; }
  std::string namingNumber() override { return "1"; }
};

void translate120Items(benchmark::State& state) {
  BenchPlatform platform;
  Module module(platform);
  module.session = platform.createSession();
  BenchFilter filter;
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(sfc_item::translateFilter(filter, module));
  }
}
BENCHMARK(translate120Items)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillon

BENCHMARK_MAIN();
