// Writing the inventory ledger of the sample account: lines, their parts by cost item, and the general-ledger vouchers
// that they are posted to.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/account/sample_company.h"
#include "workbench/account/sample_stock.h"
#include "workbench/account/table_writer.h"

namespace quillon::account {

// The fields of a ledger line besides its number and its figures. Views point to constants or to what outlives the call.
struct Line {
  std::optional<int> behind;  // BakID
  int year = 0;
  int month = 0;
  Day voucherDay;
  Day keepDay;
  std::string_view voucherType;
  std::string voucherCode;
  std::optional<std::string_view> businessType;
  bool receipt = false;
  bool secondFlavour = false;  // bFlag
  const StockBalance* place = nullptr;
  bool direct = false;  // delivered past the warehouse: no warehouse, no batch
  std::optional<std::string_view> receiptIssueType;
  std::optional<std::string_view> accountingDepartment;
  const WorkCentre* workCentre = nullptr;
  std::optional<std::string_view> person;
  std::optional<std::string_view> customer;
  std::optional<std::string_view> vendor;
  std::optional<std::string_view> contraAccount;  // cOppHead
  std::optional<std::string> order;               // the order behind the voucher, as `orderKind` says
  enum class OrderKind {
    none,
    purchase,
    foreignPurchase,
    subcontract,
    production,
    sale,
    exportSale
  } orderKind = OrderKind::none;
  int orderLine = 0;
  std::optional<std::string> contract;
  std::optional<std::string> demand;
  std::optional<std::string_view> projectClass;
  std::optional<std::string> projectCode;
  std::optional<std::string> projectName;
  std::optional<std::string_view> projectItemClassName;
  std::optional<std::string_view> parentInventory;
  int definedFields = -1;             // which user-defined fields are filled: one in eight, counted from 0; -1: none
  std::int64_t debitDifference = 0;   // cents
  std::int64_t creditDifference = 0;  // cents
  Movement movement;
  bool hasFigures = true;      // false: quantity and amount are null
  bool splitForIssue = false;  // its parts go into ia_subsidiary_ItemOut too
  bool post = false;           // to the general ledger
  std::string_view maker;
  std::string_view accountant;
};

// Everything that carries running numbers. Throws tsql::SqlError.
class LedgerWriter {
 public:
  LedgerWriter(tsql::Connection& connection, const Company& company);

  // Writes a line to ia_subsidiary with its parts; gives its AutoID.
  int writeLine(const Line& line);
  // Writes a line to IA_Subsidiary_QC with its parts.
  void writeCostItemOpening(const Line& line);
  // Writes a line to IA_ENSubSidiary; its voucher is in no other ledger.
  void writeDelivery(const Line& line);
  // Writes the vouchers of the days so far; the next line belongs to a later day.
  void closeDay();

  std::int64_t lines() const { return nextLine_ - 1; }

 private:
  struct Voucher {
    std::string_view type;
    bool receipt = false;
    std::string_view stockAccount;
    std::string_view contraAccount;
    std::string digest;
    std::string outsideNumber;  // coutNo_ID
    int number = 0;             // within the month
    int firstEntry = 0;
    int year = 0;
    int month = 0;
    Day day;
    std::int64_t cents = 0;
  };

  Voucher& voucherFor(const Line& line, std::string_view kind);
  void writeLedger(TableWriter& table, int number, const Line& line, const Voucher* voucher);
  void writeParts(TableWriter& table, int& nextPart, int line, const Line& source);

  const Company& company_;
  TableWriter ledger_;
  TableWriter parts_;
  TableWriter issueParts_;
  TableWriter opening_;
  TableWriter openingParts_;
  TableWriter deliveries_;
  TableWriter entries_;
  int nextLine_ = 1;
  int nextPart_ = 1;
  int nextIssuePart_ = 1;
  int nextOpening_ = 1;
  int nextOpeningPart_ = 1;
  int nextDelivery_ = 1;
  int nextEntry_ = 1;
  int voucherMonth_ = 0;  // year * 12 + month of the last voucher number
  int nextVoucher_ = 1;
  std::vector<Voucher> openVouchers_;
};

}  // namespace quillon::account
