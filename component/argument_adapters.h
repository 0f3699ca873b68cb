// ReportArgument and what it holds (ports of the core) over the argument object e that the platform hands in: the library
// calls the ports, the adapters call the objects late-bound, each member one call by name (platform_bindings.h).
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "automation/late_bound.h"
#include "frame/platform.h"

namespace quillon::component {

class LateBoundDataSource : public DataSource {
 public:
  explicit LateBoundDataSource(automation::LateBound dataSource) : dataSource_(std::move(dataSource)) {}

  void setType(int type) override;
  std::string resultTable() override;
  void setResultTable(std::string_view name) override;

 private:
  automation::LateBound dataSource_;
};

class LateBoundReportRow : public ReportRow {
 public:
  explicit LateBoundReportRow(automation::LateBound row) : row_(std::move(row)) {}

  std::string value(std::string_view column) override;
  std::string requiredValue(std::string_view column) override;

 private:
  automation::LateBound row_;
};

class LateBoundReportArgument : public ReportArgument {
 public:
  // `argument` may be null ("Nothing"): every member then throws Basic's error 91.
  explicit LateBoundReportArgument(automation::ComPtr<IDispatch> argument) : argument_(std::move(argument), "e") {}

  std::shared_ptr<Filter> rawFilter() override;
  std::shared_ptr<Login> login() override;
  // LoginObj of the argument; where it has none, of its filter object. Throws Basic's error 91 when there is none either.
  std::shared_ptr<Login> filterLogin() override;
  std::unique_ptr<DataSource> dataSource() override;
  std::string action() override;
  // Throws Basic's error 91 when no row is chosen: RelateData is lacking, Nothing, Empty or Null.
  std::unique_ptr<ReportRow> row() override;
  std::string languageId() override;

 private:
  automation::LateBound argument_;
};

}  // namespace quillon::component
