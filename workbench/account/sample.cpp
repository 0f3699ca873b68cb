#include "workbench/account/sample.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "workbench/account/account_error.h"
#include "workbench/account/enumerations.h"
#include "workbench/account/sample_company.h"
#include "workbench/account/sample_ledger.h"
#include "workbench/account/sample_random.h"
#include "workbench/account/sample_stock.h"
#include "workbench/account/table_writer.h"
#include "workbench/messages/account.h"

namespace quillon::account {
namespace {

constexpr int monthsInYear = 12;
constexpr int lastSettledMonth = 9;  // of the last year; the years before are settled altogether

// Who is on the other side of a voucher.
enum class Party { none, vendor, customer, workshop, office };

// A kind of voucher, and how often it occurs among its like: the weights of a list sum to 100.
struct VoucherKind {
  int weight;
  std::string_view type;
  std::string_view businessType;
  std::string_view receiptIssueType;
  std::string_view contraAccount;
  Party party;
  Line::OrderKind order;
};

using enum Line::OrderKind;

constexpr VoucherKind purchases[] = {
    {78, "01", "普通采购", "101", "2202", Party::vendor, purchase},
    {6, "01", "一般贸易进口", "101", "2202", Party::vendor, foreignPurchase},
    {6, "01", "委外加工", "106", "2202", Party::vendor, subcontract},
    {6, "70", "受托代销", "101", "2202", Party::vendor, purchase},
    {4, "09", "其他入库", "103", "6602", Party::none, none},
};
constexpr VoucherKind completions[] = {
    {84, "10", "成品入库", "102", "5001", Party::workshop, production},
    {8, "01", "委外加工", "106", "2202", Party::vendor, subcontract},
    {4, "09", "组装入库", "103", "5001", Party::workshop, production},
    {4, "09", "其他入库", "103", "6602", Party::none, none},
};
constexpr VoucherKind consumption[] = {
    {58, "11", "领料", "201", "5001", Party::workshop, production},
    {10, "11", "限额领料", "201", "5001", Party::workshop, production},
    {10, "11", "生产倒冲", "201", "5001", Party::workshop, production},
    {6, "11", "配比出库", "201", "5001", Party::workshop, production},
    {6, "11", "委外发料", "206", "1401", Party::vendor, subcontract},
    {5, "08", "其他出库", "203", "6602", Party::office, none},
    {5, "32", "普通销售", "202", "6402", Party::customer, sale},
};
constexpr VoucherKind sales[] = {
    {50, "32", "普通销售", "202", "6401", Party::customer, sale},
    {8, "3201", "普通销售", "202", "6401", Party::customer, sale},
    {8, "05", "委托代销", "202", "1406", Party::customer, sale},
    {4, "06", "委托代销", "202", "1406", Party::customer, sale},
    {6, "26", "普通销售", "202", "6401", Party::customer, sale},
    {5, "27", "普通销售", "202", "6401", Party::customer, sale},
    {3, "28", "分期收款", "202", "1406", Party::customer, sale},
    {3, "29", "普通销售", "202", "6401", Party::customer, sale},
    {5, "EX26", "出口发票", "202", "6401", Party::customer, exportSale},
    {3, "EX27", "出口发票", "202", "6401", Party::customer, exportSale},
    {5, "08", "备件领用", "203", "6602", Party::office, none},
};
constexpr VoucherKind officeUse[] = {
    {70, "08", "其他出库", "203", "6602", Party::office, none},
    {30, "11", "领料", "201", "5101", Party::workshop, none},
};
constexpr VoucherKind transferOut = {0, "08", "调拨出库", "204", "1405", Party::none, none};
constexpr VoucherKind transferIn = {0, "09", "调拨入库", "104", "1405", Party::none, none};
constexpr VoucherKind countSurplus = {0, "09", "盘盈入库", "105", "1901", Party::none, none};
constexpr VoucherKind countShortage = {0, "08", "盘亏出库", "205", "1901", Party::none, none};
constexpr VoucherKind directPurchase = {0, "25", "直运采购", "101", "2202", Party::vendor, purchase};
constexpr VoucherKind directSale = {0, "26", "直运销售", "202", "6401", Party::customer, sale};
constexpr VoucherKind redWriteBack = {0, "24", "普通采购", "101", "2202", Party::vendor, purchase};
constexpr VoucherKind blueWriteBack = {0, "30", "普通采购", "101", "2202", Party::vendor, purchase};
constexpr VoucherKind receiptAdjustment = {0, "20", "", "107", "6602", Party::none, none};
constexpr VoucherKind issueAdjustment = {0, "21", "", "207", "6401", Party::none, none};
constexpr VoucherKind costItemAdjustment = {0, "21", "分项调整", "207", "6401", Party::none, none};
constexpr VoucherKind differenceCarryOver = {0, "35", "", "207", "6401", Party::none, none};
constexpr VoucherKind openingBalance = {0, "34", "", "", "", Party::none, none};
constexpr VoucherKind openingDifference = {0, "33", "", "", "", Party::none, none};
constexpr VoucherKind delivery = {0, "05", "分期收款", "202", "1406", Party::customer, sale};

std::optional<std::string_view> textOrNull(std::string_view text) {
  return text.empty() ? std::nullopt : std::optional(text);
}

Movement negated(Movement movement) {
  movement.quantity = -movement.quantity;
  movement.amount = -movement.amount;
  for (PartFigures& part : movement.parts) {
    part.quantity = -part.quantity;
    part.amount = -part.amount;
  }
  return movement;
}

struct Place {
  StockBalance balance;
  int counterpart = -1;  // the same batch and free items in the other warehouse, as a number of a place; -1: none
};

class Generator {
 public:
  Generator(tsql::Connection& connection, const SampleOptions& options, const Progress& progress)
      : connection_(connection),
        options_(options),
        progress_(progress),
        random_(options.seed),
        company_(makeCompany(options, random_)) {}

  void run() {
    writeMasters(connection_, company_, options_);
    writeEnumerations(connection_);
    writePeriodStates();
    LedgerWriter writer(connection_, company_);
    writer_ = &writer;
    makePlaces();
    for (year_ = firstYear(); year_ <= lastSampleYear; ++year_)
      writeYear();
    writer_ = nullptr;
    if (progress_) progress_(options_.rows, options_.rows);
  }

 private:
  int firstYear() const { return lastSampleYear - options_.years + 1; }
  int firstMonth() const { return year_ == firstYear() ? options_.startMonth : 1; }
  bool settled() const { return year_ < lastSampleYear || month_ <= lastSettledMonth; }
  const InventoryItem& itemOf(const StockBalance& balance) const {
    return company_.items[static_cast<std::size_t>(balance.item)];
  }

  void writePeriodStates() {
    TableWriter states(connection_, "IA_PeriodState", {"iYear", "iMonth", "bSettled"});
    for (year_ = firstYear(); year_ <= lastSampleYear; ++year_) {
      states.add(year_, 0, true);
      for (month_ = firstMonth(); month_ <= monthsInYear; ++month_)
        states.add(year_, month_, settled());
    }
  }

  void makePlaces() {
    for (int number = 0; number < static_cast<int>(company_.items.size()); ++number) {
      const InventoryItem& item = company_.items[static_cast<std::size_t>(number)];
      const int second = secondWarehouse(item.category);
      // Valued by inventory, stock stays together: a transfer moves all of it. So one place is enough.
      const bool twoWarehouses = options_.valuation != Valuation::inventory && second >= 0 && random_.percent(35);
      const bool twoVariants = item.checkedFreeItems[0] || item.checkedFreeItems[1];
      for (int variant = 0; variant < (twoVariants ? 2 : 1); ++variant) {
        for (int slot = 0; slot < (item.batches ? 2 : 1); ++slot) {
          Place place;
          place.balance.item = number;
          place.balance.warehouse = mainWarehouse(item.category);
          place.balance.slot = slot;
          for (std::size_t i = 0; i < freeItemCount; ++i) {
            if (item.checkedFreeItems[i]) place.balance.free[i] = static_cast<std::int8_t>(1 + (number + variant) % 4);
          }
          const int index = static_cast<int>(places_.size());
          if (twoWarehouses) place.counterpart = index + 1;
          places_.push_back(place);
          if (!twoWarehouses) continue;
          place.balance.warehouse = second;
          place.counterpart = index;
          places_.push_back(place);
        }
      }
    }
  }

  // --- Years and months ---------------------------------------------------------------------------------------------

  void writeYear() {
    month_ = 0;
    const Day eve = dayOf(year_, firstMonth(), 1) - std::chrono::days(1);
    if (year_ == firstYear()) {
      fillPlaces(eve);
      if (options_.costItemStartMonth == options_.startMonth) startCostItems();
    }
    writeOpenings(eve);
    for (month_ = firstMonth(); month_ <= monthsInYear; ++month_) {
      if (year_ == firstYear() && month_ == options_.costItemStartMonth && !costItemsStarted_) {
        startCostItems();
        writeCostItemOpenings();
      }
      writeMonth();
    }
  }

  void fillPlaces(Day eve) {
    for (Place& place : places_) {
      if (!random_.percent(75)) continue;
      const std::int64_t quantity = someQuantity(place.balance, 25, 100);
      const std::int64_t amount = amountFor(place.balance, quantity);
      openBatch(place.balance, eve);
      place.balance.add({quantity, amount, {}});
    }
  }

  void startCostItems() {
    costItemsStarted_ = true;
    for (Place& place : places_)
      place.balance.breakDown(itemOf(place.balance).parts);
  }

  void writeOpenings(Day eve) {
    int number = 0;
    for (const Place& place : places_) {
      if (!place.balance.empty()) writer_->writeLine(openingLine(place.balance, eve));
      // In the first year now and then a difference that was there before the account.
      constexpr int everyNth = 50;
      if (year_ == firstYear() && ++number % everyNth == 0) {
        Line line = newLine(openingDifference, place.balance, true, eve);
        line.hasFigures = false;
        line.debitDifference = random_.between(100, 9'999);
        writer_->writeLine(line);
      }
    }
  }

  // The balances where the cost items start, month 0 like every opening.
  void writeCostItemOpenings() {
    const Day eve = dayOf(year_, month_, 1) - std::chrono::days(1);
    const int month = std::exchange(month_, 0);
    for (const Place& place : places_) {
      if (!place.balance.empty()) writer_->writeCostItemOpening(openingLine(place.balance, eve));
    }
    month_ = month;
  }

  Line openingLine(const StockBalance& balance, Day eve) {
    Line line = newLine(openingBalance, balance, true, eve);
    line.movement = balance.all();
    return line;
  }

  void writeMonth() {
    const std::int64_t budget = linesOfMonth();
    const int days = daysInMonth(year_, month_);
    day_ = dayOf(year_, month_, 1);
    for (std::int64_t done = 0; done < budget;) {
      const Day day = dayOf(year_, month_, static_cast<int>(1 + done * days / budget));
      if (day != day_) {
        writer_->closeDay();
        day_ = day;
      }
      done += writeSomething(budget - done);
      reportProgress();
    }
    if (settled()) writeDelivery();
    writer_->closeDay();
  }

  // The lines still to come, less the openings that later years may need, spread over the months left.
  std::int64_t linesOfMonth() {
    const std::int64_t written = writer_->lines();
    if (year_ == lastSampleYear && month_ == monthsInYear) return options_.rows - written;
    const std::int64_t yearsLeft = lastSampleYear - year_;
    const std::int64_t openings = yearsLeft * static_cast<std::int64_t>(places_.size());
    const std::int64_t monthsLeft = yearsLeft * monthsInYear + monthsInYear - month_ + 1;
    return (options_.rows - written - openings) / monthsLeft * random_.between(90, 110) / 100;
  }

  void reportProgress() {
    constexpr std::int64_t step = 4096;
    if (!progress_ || writer_->lines() < nextReport_) return;
    progress_(writer_->lines(), options_.rows);
    nextReport_ = writer_->lines() + step;
  }

  // --- Vouchers -----------------------------------------------------------------------------------------------------

  // Writes one voucher of at most `room` lines; gives how many lines it has.
  std::int64_t writeSomething(std::int64_t room) {
    const auto index = random_.below(static_cast<std::int64_t>(places_.size()));
    Place& place = places_[static_cast<std::size_t>(index)];
    const std::int64_t dice = random_.below(1000);
    std::int64_t written = 0;
    if (dice < 40) {
      if (room >= 2) written = writeTransfer(place);
    } else if (dice < 55) {
      if (room >= 2) written = writeWriteBack(place.balance);
    } else if (dice < 65) {
      if (room >= 2) written = writeDirectShipment(place.balance);
    } else if (dice < 80) {
      written = writeCountDifference(place.balance);
    } else if (dice < 95) {
      written = writeReceiptAdjustment(place.balance);
    } else if (dice < 110) {
      written = writeIssueAdjustment(place.balance);
    } else if (dice < 114) {
      written = writeDifference(place.balance);
    }
    return written != 0 ? written : writeOrdinary(place.balance);
  }

  std::int64_t writeOrdinary(StockBalance& balance) {
    const std::int64_t target = itemOf(balance).targetStock;
    const bool receive = balance.quantity() < target / 4 || (balance.quantity() < target * 2 && random_.percent(45));
    if (receive) {
      writeReceipt(pickKind(receiptKinds(itemOf(balance).category)), balance, someQuantity(balance, 25, 100));
    } else {
      const std::int64_t wanted = random_.percent(5) ? balance.quantity() : someQuantity(balance, 5, 33);
      Line line =
          issueLine(pickKind(issueKinds(itemOf(balance).category)), balance, std::min(wanted, balance.quantity()));
      line.splitForIssue = random_.percent(70);
      writer_->writeLine(line);
      balance.take(line.movement);
    }
    return 1;
  }

  int writeReceipt(const VoucherKind& kind, StockBalance& balance, std::int64_t quantity) {
    if (balance.empty()) openBatch(balance, day_);
    Line line = newLine(kind, balance, true, day_);
    const std::int64_t amount = amountFor(balance, quantity);
    line.movement = balance.plannedReceipt(quantity, amount, itemOf(balance).parts, random_);
    line.post = posted(line);
    balance.add(line.movement);
    return writer_->writeLine(line);
  }

  Line issueLine(const VoucherKind& kind, const StockBalance& balance, std::int64_t quantity) {
    Line line = newLine(kind, balance, false, day_);
    line.movement = balance.plannedIssue(quantity);
    line.post = posted(line);
    return line;
  }

  std::int64_t writeTransfer(Place& from) {
    StockBalance& balance = from.balance;
    if (balance.quantity() == 0) return 0;
    if (options_.valuation == Valuation::inventory) {
      const Category category = itemOf(balance).category;
      if (secondWarehouse(category) < 0) return 0;
      writer_->writeLine(issueLine(transferOut, balance, balance.quantity()));
      const bool atHome = balance.warehouse == mainWarehouse(category);
      balance.warehouse = atHome ? secondWarehouse(category) : mainWarehouse(category);
      writeTransferIn(balance, balance.all());
      return 2;
    }
    if (from.counterpart < 0) return 0;
    StockBalance& other = places_[static_cast<std::size_t>(from.counterpart)].balance;
    if (!other.empty() && other.batch != balance.batch) return 0;
    const Line out = issueLine(transferOut, balance, std::min(someQuantity(balance, 5, 33), balance.quantity()));
    writer_->writeLine(out);
    balance.take(out.movement);
    other.batch = balance.batch;
    other.add(out.movement);
    writeTransferIn(other, out.movement);
    return 2;
  }

  void writeTransferIn(const StockBalance& balance, const Movement& movement) {
    Line line = newLine(transferIn, balance, true, day_);
    line.movement = movement;
    line.post = posted(line);
    writer_->writeLine(line);
  }

  // An estimated receipt is written back in red and entered again in blue when its invoice comes.
  std::int64_t writeWriteBack(StockBalance& balance) {
    if (receiptKinds(itemOf(balance).category).data() != purchases || balance.quantity() == 0) return 0;
    const std::int64_t quantity = std::min(someQuantity(balance, 5, 33), balance.quantity());
    Line red = newLine(redWriteBack, balance, true, day_);
    const Movement back = balance.plannedIssue(quantity);
    red.movement = negated(back);
    red.post = posted(red);
    const int redNumber = writer_->writeLine(red);
    balance.take(back);

    Line blue = newLine(blueWriteBack, balance, true, day_);
    blue.behind = redNumber;
    blue.vendor = red.vendor;
    blue.secondFlavour = random_.percent(50);
    const std::int64_t amount = amountFor(balance, quantity);
    blue.movement = balance.plannedReceipt(quantity, amount, itemOf(balance).parts, random_);
    blue.post = posted(blue);
    writer_->writeLine(blue);
    balance.add(blue.movement);
    return 2;
  }

  // From the vendor to the customer, past the warehouse: in and out at the same cost.
  std::int64_t writeDirectShipment(const StockBalance& balance) {
    if (itemOf(balance).category == Category::consumable) return 0;
    const std::int64_t quantity = someQuantity(balance, 5, 33);
    const std::int64_t amount = amountFor(balance, quantity);
    Line in = newLine(directPurchase, balance, true, day_);
    in.direct = true;
    in.movement = balance.plannedReceipt(quantity, amount, itemOf(balance).parts, random_);
    in.post = posted(in);
    writer_->writeLine(in);
    Line out = newLine(directSale, balance, false, day_);
    out.direct = true;
    out.movement = in.movement;
    out.post = posted(out);
    writer_->writeLine(out);
    return 2;
  }

  std::int64_t writeCountDifference(StockBalance& balance) {
    if (balance.quantity() == 0) return 0;
    const std::int64_t quantity = std::min(someQuantity(balance, 1, 2), balance.quantity());
    if (random_.percent(50)) {
      writeReceipt(countSurplus, balance, quantity);
    } else {
      const Line line = issueLine(countShortage, balance, quantity);
      writer_->writeLine(line);
      balance.take(line.movement);
    }
    return 1;
  }

  // Half a percent to two percent of a balance's worth; 0 when it is worth too little for that.
  std::int64_t someValue(const StockBalance& balance) { return share(balance.amount(), random_.between(5, 20), 1000); }

  std::int64_t writeReceiptAdjustment(StockBalance& balance) {
    const std::int64_t value = someValue(balance);
    if (value == 0) return 0;
    const Movement change = balance.plannedRevaluation(value);
    Line line = newLine(receiptAdjustment, balance, true, day_);
    const bool up = random_.percent(50);
    line.movement = up ? change : negated(change);
    line.post = posted(line);
    writer_->writeLine(line);
    balance.add(line.movement);
    return 1;
  }

  std::int64_t writeIssueAdjustment(StockBalance& balance) {
    const std::int64_t value = someValue(balance);
    if (value == 0) return 0;
    Movement change = balance.plannedRevaluation(value);
    const bool betweenParts = change.parts.size() >= 2 && random_.percent(40);
    if (betweenParts) {
      // From one cost item to another; the line itself moves nothing.
      const std::int64_t moved = change.parts.front().amount;
      if (moved == 0) return 0;
      change.amount = 0;
      for (PartFigures& part : change.parts)
        part = {};
      change.parts.front().amount = moved;
      change.parts.back().amount = -moved;
    }
    Line line = newLine(betweenParts ? costItemAdjustment : issueAdjustment, balance, false, day_);
    line.movement = std::move(change);
    line.post = posted(line);
    writer_->writeLine(line);
    balance.take(line.movement);
    return 1;
  }

  // Lines without amount: a cost difference with a receipt adjustment, a receipt adjustment of nothing at all, a
  // difference carried over.
  std::int64_t writeDifference(const StockBalance& balance) {
    const std::int64_t which = random_.below(3);
    Line line = which == 2 ? newLine(differenceCarryOver, balance, false, day_)
                           : newLine(receiptAdjustment, balance, true, day_);
    line.hasFigures = which == 1;
    if (which == 0) line.debitDifference = random_.between(100, 9'999);
    if (which == 2) line.creditDifference = random_.between(100, 9'999);
    writer_->writeLine(line);
    return 1;
  }

  // Goods delivered in the month and not yet settled, in a ledger of their own.
  void writeDelivery() {
    const Place& place = random_.pick(places_);
    day_ = dayOf(year_, month_, daysInMonth(year_, month_));
    Line line = newLine(delivery, place.balance, false, day_);
    line.movement.quantity = someQuantity(place.balance, 5, 33);
    line.movement.amount = amountFor(place.balance, line.movement.quantity);
    writer_->writeDelivery(line);
  }

  // --- Figures and fields -------------------------------------------------------------------------------------------

  // Between two percentages of the target stock, at least one unit.
  std::int64_t someQuantity(const StockBalance& balance, int least, int most) {
    const InventoryItem& item = itemOf(balance);
    constexpr std::int64_t unit = 100;
    const std::int64_t low = item.targetStock * least / 100;
    const std::int64_t high = item.targetStock * most / 100;
    std::int64_t quantity = std::max(random_.between(low, high), unit);
    if (item.wholeUnits) quantity = quantity / unit * unit;
    return quantity;
  }

  // At a price that moves about the inventory's own.
  std::int64_t amountFor(const StockBalance& balance, std::int64_t quantity) {
    constexpr std::int64_t hundredths = 100;
    const std::int64_t price = itemOf(balance).unitPrice * random_.between(920, 1080) / 1000;
    return (price * quantity + hundredths / 2) / hundredths;
  }

  // Lines of settled months are posted; a few wait, as in every ledger. What carries no amount is never posted.
  bool posted(const Line& line) { return settled() && line.movement.amount != 0 && !random_.percent(4); }

  void openBatch(StockBalance& balance, Day day) {
    if (!itemOf(balance).batches) return;
    const std::chrono::year_month_day date(day);
    balance.batch = "B" +
                    periodText(static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month()))) +
                    "-" + std::to_string(balance.slot + 1);
  }

  static std::span<const VoucherKind> receiptKinds(Category category) {
    const bool made = category == Category::semiFinished || category == Category::finished;
    return made ? std::span<const VoucherKind>(completions) : std::span<const VoucherKind>(purchases);
  }

  static std::span<const VoucherKind> issueKinds(Category category) {
    switch (category) {
      case Category::finished:
        return sales;
      case Category::consumable:
        return officeUse;
      case Category::rawMaterial:
      case Category::purchasedPart:
      case Category::semiFinished:
      case Category::packaging:
        break;
    }
    return consumption;
  }

  const VoucherKind& pickKind(std::span<const VoucherKind> kinds) {
    std::int64_t dice = random_.below(100);
    for (const VoucherKind& kind : kinds) {
      dice -= kind.weight;
      if (dice < 0) return kind;
    }
    return kinds.back();
  }

  Line newLine(const VoucherKind& kind, const StockBalance& balance, bool receipt, Day keepDay) {
    Line line;
    line.year = year_;
    line.month = month_;
    line.keepDay = keepDay;
    line.voucherDay = keepDay;
    line.voucherType = kind.type;
    line.voucherCode = std::string(kind.type) + "-" + periodText(year_, month_) + "-" + padded(writer_->lines() + 1, 7);
    line.businessType = textOrNull(kind.businessType);
    line.receipt = receipt;
    line.place = &balance;
    line.receiptIssueType = textOrNull(kind.receiptIssueType);
    line.contraAccount = textOrNull(kind.contraAccount);
    line.maker = random_.pick(users()).code;
    line.accountant = users().front().name;
    if (month_ == 0) return line;

    // A voucher is written up to three days before it is kept, within its month.
    const auto dayNumber = (keepDay - dayOf(year_, month_, 1)).count();
    line.voucherDay = keepDay - std::chrono::days(random_.below(std::min<std::int64_t>(dayNumber, 3) + 1));
    if (kind.type == "01" || kind.type == "70") line.secondFlavour = random_.percent(30);
    fillParty(line, kind);
    fillOrder(line, kind);
    fillProject(line);
    if (random_.percent(30)) line.definedFields = static_cast<int>(random_.below(8));
    if (random_.percent(5)) line.demand = "XQ" + periodText(year_, month_) + padded(random_.below(1000), 3);
    return line;
  }

  void fillParty(Line& line, const VoucherKind& kind) {
    line.person = random_.pick(persons()).code;
    switch (kind.party) {
      case Party::none:
        line.accountingDepartment = "05";
        break;
      case Party::vendor:
        line.vendor = random_.pick(vendors()).code;
        line.accountingDepartment = "03";
        break;
      case Party::customer:
        line.customer = random_.pick(customers()).code;
        line.accountingDepartment = "04";
        break;
      case Party::workshop:
        // The workshops are cost centres by work centre, so that their lines always name one.
        line.workCentre = &random_.pick(workCentres());
        line.accountingDepartment = line.workCentre->department;
        if (!line.receipt) line.parentInventory = random_.pick(company_.items).code;
        break;
      case Party::office: {
        static constexpr std::string_view offices[] = {"01", "02", "09", "10", "11", "12"};
        line.accountingDepartment = random_.pick(offices);
        break;
      }
    }
  }

  void fillOrder(Line& line, const VoucherKind& kind) {
    static constexpr std::string_view prefixes[] = {"", "PO", "IM", "OM", "MO", "SO", "EX"};
    line.orderKind = kind.order;
    line.orderLine = static_cast<int>(random_.between(1, 9));
    if (kind.order == none) return;
    line.order = std::string(prefixes[static_cast<int>(kind.order)]) + periodText(year_, month_) +
                 padded(random_.between(1, 300), 4);
    if (kind.order == sale && random_.percent(20)) {
      line.contract = "HT" + std::to_string(year_) + padded(random_.between(1, 60), 3);
    }
  }

  // One line in ten is for a project: an engineering project, a research topic, another inventory, or an expense
  // project that is not kept item by item.
  void fillProject(Line& line) {
    if (!random_.percent(10)) return;
    const auto take = [&](std::string_view projectClass, std::string_view name, const NamedCode& project) {
      line.projectClass = projectClass;
      line.projectItemClassName = name;
      line.projectCode = project.code;
      line.projectName = project.name;
    };
    switch (random_.below(4)) {
      case 0:
        take("00", "工程项目", random_.pick(projects()));
        break;
      case 1:
        take("01", "研发课题", random_.pick(researchTopics()));
        break;
      case 2: {
        const InventoryItem& item = random_.pick(company_.items);
        take("ch", "存货核算", {item.code, item.name});
        break;
      }
      default:
        take("98", "费用项目", {"F01", "展会费用"});
        break;
    }
  }

  tsql::Connection& connection_;
  const SampleOptions& options_;
  const Progress& progress_;
  Random random_;
  Company company_;
  LedgerWriter* writer_ = nullptr;
  std::vector<Place> places_;
  bool costItemsStarted_ = false;
  int year_ = 0;
  int month_ = 0;  // 0 while openings are written
  Day day_;
  std::int64_t nextReport_ = 0;
};

void check(bool condition, const Message& message) {
  if (!condition) throw AccountError(message);
}

}  // namespace

void checkOptions(const SampleOptions& options) {
  check(options.years >= 1 && options.years <= maximumSampleYears,
        messages::sampleYears(maximumSampleYears, options.years));
  const std::int64_t fewest = minimumSampleRowsAYear * options.years;
  constexpr std::int64_t most = 1'000'000'000;
  check(options.rows >= fewest && options.rows <= most,
        messages::sampleRows(options.years, fewest, most, options.rows));
  check(options.costItemStartMonth >= 1 && options.costItemStartMonth <= monthsInYear,
        messages::sampleCostItemMonth(options.costItemStartMonth));
  check(options.startMonth >= 1 && options.startMonth <= options.costItemStartMonth,
        messages::sampleStartMonth(options.costItemStartMonth, options.startMonth));
}

void writeSample(tsql::Connection& connection, const SampleOptions& options, const Progress& progress) {
  checkOptions(options);
  Generator(connection, options, progress).run();
}

}  // namespace quillon::account
