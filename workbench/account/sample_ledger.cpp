#include "workbench/account/sample_ledger.h"

#include <algorithm>

namespace quillon::account {
namespace {

// In the order in which writeLedger() gives the values.
const std::vector<std::string>& ledgerColumnNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> list = {
        "AutoID",          "BakID",           "iYear",           "iMonth",         "dVouDate",
        "dKeepDate",       "cVouType",        "cVouCode",        "cBusType",       "cBusCode",
        "bRdFlag",         "bFlag",           "cWhCode",         "cInvCode",       "cPspCode",
        "cRdCode",         "cDepCode",        "cAccDep",         "cProCode",       "cPersonCode",
        "cCusCode",        "cVenCode",        "iAInQuantity",    "iInCost",        "iAInPrice",
        "iAOutQuantity",   "iOutCost",        "iAOutPrice",      "iDebitDifCost",  "iCreditDifCost",
        "cBatchIA",        "cItem_Class",     "cItemCName",      "cItemCode",      "cName",
        "cOppHead",        "strContractCode", "cProordercode",   "iProorderids",   "cworkprocode",
        "cworkprocodedis", "cworkcentercode", "cworkcentername", "cSaleorderCode", "isaleorderids",
        "exoCode",         "iExRowno",        "cImordercode",    "cpurorderCode",  "centrustordercode",
        "cOrderCode",      "cDemandCode",     "cdemandmemo",     "cMaker",         "cAccounter",
        "cHandler",        "cMemo",           "cPZID",           "iPZID",          "cPZdigest"};
    for (std::size_t i = 1; i <= freeItemCount; ++i)
      list.push_back("cFree" + std::to_string(i));
    for (int i = 1; i <= 37; ++i) {
      if (i < 17 || i > 21) list.push_back("cDefine" + std::to_string(i));
    }
    return list;
  }();
  return names;
}

enum class FieldKind { text, number, fraction, date };

// What user-defined field `number` of a voucher holds.
FieldKind definedFieldKind(int number) {
  switch (number) {
    case 5:
    case 15:
    case 34:
    case 35:
      return FieldKind::number;
    case 7:
    case 26:
    case 27:
      return FieldKind::fraction;
    case 4:
    case 6:
    case 16:
    case 36:
    case 37:
      return FieldKind::date;
    default:
      return FieldKind::text;
  }
}

// Appends the value of user-defined field `number` on a line; `choice` is 1 to 4.
void appendDefinedField(TableWriter& table, int number, int choice, Day day) {
  switch (definedFieldKind(number)) {
    case FieldKind::number:
      return table.append(choice * 10);
    case FieldKind::fraction:
      return table.append(choice + 0.25);
    case FieldKind::date:
      return table.append(day + std::chrono::days(choice * 7));
    case FieldKind::text:
      break;
  }
  table.append("项" + std::to_string(number) + "-" + std::to_string(choice));
}

// Amount by quantity in ten-thousandths; nothing without a quantity.
std::optional<UnitCost> unitCost(std::int64_t amount, std::int64_t quantity) {
  if (quantity == 0) return std::nullopt;
  constexpr std::int64_t tenThousand = 10'000;
  const std::int64_t scaled = amount * tenThousand;
  const std::int64_t half = (scaled < 0) == (quantity < 0) ? quantity / 2 : -quantity / 2;
  return UnitCost{(scaled + half) / quantity};
}

// The account of the stock itself.
std::string_view stockAccount(Category category) {
  switch (category) {
    case Category::rawMaterial:
    case Category::purchasedPart:
      return "1403";
    case Category::packaging:
    case Category::consumable:
      return "1411";
    case Category::semiFinished:
    case Category::finished:
      break;
  }
  return "1405";
}

std::string digestOf(const Line& line) {
  return std::to_string(line.year) + "年" + padded(line.month, 2) + "月" +
         std::string(line.businessType.value_or(line.receipt ? "存货入库" : "存货出库"));
}

template <typename T>
std::optional<T> when(bool condition, const T& value) {
  return condition ? std::optional<T>(value) : std::nullopt;
}

// The columns of a table of parts, whose `lineColumn` names the line.
std::vector<std::string> partColumnNames(const char* lineColumn) {
  return {"AutoID",           lineColumn,     "iItemID",         "iItemDetailID", "iYear",
          "iMonth",           "bRdFlag",      "iItemInQuantity", "iItemInCost",   "iItemInPrice",
          "iItemOutQuantity", "iItemOutCost", "iItemOutPrice"};
}

}  // namespace

LedgerWriter::LedgerWriter(tsql::Connection& connection, const Company& company)
    : company_(company),
      ledger_(connection, "ia_subsidiary", ledgerColumnNames()),
      parts_(connection, "ia_subsidiary_Item", partColumnNames("iSubID")),
      issueParts_(connection, "ia_subsidiary_ItemOut", partColumnNames("iSubID")),
      opening_(connection, "IA_Subsidiary_QC", ledgerColumnNames()),
      openingParts_(connection, "IA_Subsidiary_QC_Item", partColumnNames("iSubQcID")),
      deliveries_(connection, "IA_ENSubSidiary", ledgerColumnNames()),
      entries_(connection, "gl_AccVouch",
               {"i_id", "iYear", "iPeriod", "cSign", "ino_id", "inid", "dbill_date", "cBill", "cDigest", "cCode", "md",
                "mc", "coutSysName", "coutNo_ID"}) {}

int LedgerWriter::writeLine(const Line& line) {
  const int number = nextLine_++;
  const Voucher* voucher = nullptr;
  if (line.post) {
    Voucher& itsVoucher = voucherFor(line, "IA");
    itsVoucher.cents += line.movement.amount;
    voucher = &itsVoucher;
  }
  writeLedger(ledger_, number, line, voucher);
  writeParts(parts_, nextPart_, number, line);
  if (line.splitForIssue) writeParts(issueParts_, nextIssuePart_, number, line);
  return number;
}

void LedgerWriter::writeCostItemOpening(const Line& line) {
  const int number = nextOpening_++;
  writeLedger(opening_, number, line, nullptr);
  writeParts(openingParts_, nextOpeningPart_, number, line);
}

void LedgerWriter::writeDelivery(const Line& line) {
  Voucher& voucher = voucherFor(line, "EN");
  voucher.cents += line.movement.amount;
  writeLedger(deliveries_, nextDelivery_++, line, &voucher);
}

// Lines of one day that agree in ledger, voucher type, direction and accounts share a voucher.
LedgerWriter::Voucher& LedgerWriter::voucherFor(const Line& line, std::string_view kind) {
  const std::string_view contra = line.contraAccount.value_or("6602");
  const std::string_view stock = stockAccount(company_.items[static_cast<std::size_t>(line.place->item)].category);
  const auto found = std::ranges::find_if(openVouchers_, [&](const Voucher& voucher) {
    return voucher.type == line.voucherType && voucher.receipt == line.receipt && voucher.stockAccount == stock &&
           voucher.contraAccount == contra && voucher.outsideNumber.starts_with(kind);
  });
  if (found != openVouchers_.end()) return *found;

  constexpr int months = 12;
  const int month = line.year * months + line.month;
  if (month != voucherMonth_) {
    voucherMonth_ = month;
    nextVoucher_ = 1;
  }
  Voucher voucher;
  voucher.type = line.voucherType;
  voucher.receipt = line.receipt;
  voucher.stockAccount = stock;
  voucher.contraAccount = contra;
  voucher.digest = digestOf(line);
  voucher.number = nextVoucher_++;
  voucher.outsideNumber = std::string(kind) + periodText(line.year, line.month) + padded(voucher.number, 5);
  voucher.firstEntry = nextEntry_;
  voucher.year = line.year;
  voucher.month = line.month;
  voucher.day = line.keepDay;
  nextEntry_ += 2;
  openVouchers_.push_back(std::move(voucher));
  return openVouchers_.back();
}

void LedgerWriter::closeDay() {
  for (const Voucher& voucher : openVouchers_) {
    // A receipt debits the stock account, an issue credits it.
    const std::string_view debit = voucher.receipt ? voucher.stockAccount : voucher.contraAccount;
    const std::string_view credit = voucher.receipt ? voucher.contraAccount : voucher.stockAccount;
    entries_.add(voucher.firstEntry, voucher.year, voucher.month, "转", voucher.number, 1, voucher.day,
                 users().front().name, voucher.digest, debit, Amount{voucher.cents}, Amount{0}, "IA",
                 voucher.outsideNumber);
    entries_.add(voucher.firstEntry + 1, voucher.year, voucher.month, "转", voucher.number, 2, voucher.day,
                 users().front().name, voucher.digest, credit, Amount{0}, Amount{voucher.cents}, "IA",
                 voucher.outsideNumber);
  }
  openVouchers_.clear();
}

void LedgerWriter::writeLedger(TableWriter& table, int number, const Line& line, const Voucher* voucher) {
  const StockBalance& place = *line.place;
  const InventoryItem& item = company_.items[static_cast<std::size_t>(place.item)];
  const Warehouse& warehouse = warehouses()[static_cast<std::size_t>(place.warehouse)];
  const bool in = line.receipt && line.hasFigures;
  const bool out = !line.receipt && line.hasFigures;
  const Movement& moved = line.movement;
  const std::optional<UnitCost> cost = unitCost(moved.amount, moved.quantity);
  const auto orderOf = [&](Line::OrderKind kind) { return line.orderKind == kind ? line.order : std::nullopt; };
  const auto orderLineOf = [&](Line::OrderKind kind) { return when(line.orderKind == kind, line.orderLine); };
  using enum Line::OrderKind;
  const WorkCentre* centre = line.workCentre;
  constexpr std::int64_t operationStep = 10;

  table.beginRow();
  const auto add = [&table](const auto&... values) { table.append(values...); };
  add(number, line.behind, line.year, line.month, line.voucherDay, line.keepDay);
  add(line.voucherType, line.voucherCode, line.businessType, line.order, line.receipt, line.secondFlavour);
  add(when(!line.direct, warehouse.master.code), item.code, line.parentInventory, line.receiptIssueType,
      line.direct ? std::string_view("04") : warehouse.department, line.accountingDepartment);
  add(when(centre != nullptr, centre != nullptr ? centre->department : std::string_view()), line.person, line.customer,
      line.vendor, when(in, Quantity{moved.quantity}), in ? cost : std::nullopt);
  add(when(in, Amount{moved.amount}), when(out, Quantity{moved.quantity}), out ? cost : std::nullopt,
      when(out, Amount{moved.amount}), when(line.debitDifference != 0, Amount{line.debitDifference}),
      when(line.creditDifference != 0, Amount{line.creditDifference}));
  add(when(item.batches && !line.direct && !place.batch.empty(), place.batch), line.projectClass,
      line.projectItemClassName, line.projectCode, line.projectName, line.contraAccount);
  add(line.contract, orderOf(production), orderLineOf(production),
      when(centre != nullptr, padded(line.orderLine * operationStep, 4)),
      when(centre != nullptr, "工序" + std::to_string(line.orderLine)),
      when(centre != nullptr, centre != nullptr ? centre->code : std::string_view()));
  add(when(centre != nullptr, centre != nullptr ? centre->name : std::string_view()), orderOf(sale), orderLineOf(sale),
      orderOf(exportSale), orderLineOf(exportSale), orderOf(foreignPurchase));
  add(orderOf(purchase), orderOf(subcontract), line.orderKind == purchase ? line.order : std::nullopt, line.demand,
      when(line.demand.has_value(), std::string_view("按需求跟踪备货")), line.maker);
  add(when(voucher != nullptr, line.accountant), line.person,
      when(line.secondFlavour, std::string_view("发票未到，暂估入账")),
      when(voucher != nullptr, voucher != nullptr ? voucher->outsideNumber : std::string()),
      when(voucher != nullptr, voucher != nullptr ? voucher->firstEntry : 0),
      when(voucher != nullptr, voucher != nullptr ? voucher->digest : std::string()));
  for (std::size_t i = 0; i < freeItemCount; ++i) {
    const std::int8_t value = place.free[i];
    add(when(value != 0, value != 0 ? freeItemValues(i)[static_cast<std::size_t>(value - 1)] : std::string_view()));
  }
  constexpr int fieldGroups = 8;
  for (int i = 1; i <= 37; ++i) {
    if (i >= 17 && i <= 21) continue;
    if (line.definedFields == i % fieldGroups) {
      appendDefinedField(table, i, 1 + number % 4, line.keepDay);
    } else {
      add(nullptr);
    }
  }
  table.endRow();
}

void LedgerWriter::writeParts(TableWriter& table, int& nextPart, int line, const Line& source) {
  const InventoryItem& item = company_.items[static_cast<std::size_t>(source.place->item)];
  for (std::size_t i = 0; i < source.movement.parts.size(); ++i) {
    const PartFigures& figures = source.movement.parts[i];
    if (figures.quantity == 0 && figures.amount == 0) continue;
    const std::optional<UnitCost> cost = unitCost(figures.amount, figures.quantity);
    const bool in = source.receipt;
    table.add(nextPart++, line, item.parts[i].costItem, item.parts[i].detail, source.year, source.month, in,
              when(in, Quantity{figures.quantity}), in ? cost : std::nullopt, when(in, Amount{figures.amount}),
              when(!in, Quantity{figures.quantity}), in ? std::nullopt : cost, when(!in, Amount{figures.amount}));
  }
}

}  // namespace quillon::account
