// An account file with a small table, an apartment, and the ADO look-alike over it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "automation/late_bound.h"
#include "automation/win32.h"
#include "workbench/com/ado.h"
#include "workbench/platform/account_source.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench::test {

class AdoTest : public testing::Test {
 protected:
  AdoTest() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) throw std::runtime_error("no apartment");
    const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    file_ = std::filesystem::temp_directory_path() / ("quillon-ado-" + name + ".account");
    std::filesystem::remove(file_);
    const auto account = tsql::Connection::open(file_, tsql::OpenMode::createNew);
    account->execute(
        "Create Table Material (cCode nvarchar(20) not null, cName nvarchar(60), iQuantity decimal(18,6), iMoney "
        "money, "
        "dDate datetime, bStock bit)");
    account->execute(
        "Insert Into Material Values (N'M1', N'钢板', 12.5, 100.10, '2024-03-05', 1) "
        "Insert Into Material Values (N'M2', null, 0.000001, -7.5, '2024-03-06 08:30:00', 0)");
    ado_.emplace(nullptr);
  }
  ~AdoTest() override {
    ado_.reset();
    CoUninitialize();
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
  }

  static automation::LateBound create(const wchar_t* progId) {
    CLSID id;
    if (FAILED(CLSIDFromProgID(progId, &id))) throw std::runtime_error("the ProgID is not known on this machine");
    automation::ComPtr<IDispatch> object;
    if (FAILED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                reinterpret_cast<void**>(object.out())))) {
      throw std::runtime_error("the class cannot be created");
    }
    return {std::move(object), "ADODB"};
  }
  automation::LateBound openConnection() {
    automation::LateBound connection = create(L"ADODB.Connection");
    connection.put(L"ConnectionString", connectionString(file_));
    connection.call(L"Open", {"", "", "", -1});
    return connection;
  }
  static automation::LateBound openRecordset(const automation::LateBound& connection, const char* sql) {
    automation::LateBound recordset = create(L"ADODB.Recordset");
    recordset.call(L"Open", {sql, connection.get(), 3, 1, -1});
    return recordset;
  }
  static automation::Variant field(const automation::LateBound& recordset, automation::Variant which) {
    return recordset.object(L"Fields", "Fields").item(std::move(which), "Field").get(L"Value");
  }

  // The code of the error that `action` ends with; 0 when it ends well.
  template <typename Action>
  static HResult codeOf(Action action) {
    try {
      action();
      return 0;
    } catch (const AutomationError& error) {
      return error.code();
    }
  }

  std::filesystem::path file_;
  std::optional<EmbeddedAdo> ado_;
};

}  // namespace quillon::workbench::test
