// The sums that receipt/issue/balance must show, computed in another way: straight from the ledger's lines and their
// cost-item parts, read one by one and added up here.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench::test {

// Quantity in millionths and money in ten-thousandths, as the ledger holds them.
struct Amount {
  std::int64_t quantity = 0;
  std::int64_t money = 0;

  Amount& operator+=(const Amount& other) {
    quantity += other.quantity;
    money += other.money;
    return *this;
  }
  friend Amount operator+(Amount a, const Amount& b) { return a += b; }
  friend Amount operator-(const Amount& a, const Amount& b) { return {a.quantity - b.quantity, a.money - b.money}; }
  friend bool operator==(const Amount&, const Amount&) = default;
  friend void PrintTo(const Amount& amount, std::ostream* out) {
    *out << amount.quantity << "e-6 for " << amount.money << "e-4";
  }
};

// One cost item's share of a ledger line.
struct Part {
  int costItem = 0;
  Amount in;
  Amount out;
};

// A ledger line with what the filters look at. Null texts are empty.
struct Line {
  int id = 0;
  int month = 0;
  bool receipt = false;
  std::string voucherType;
  std::string businessType;
  std::string warehouse;
  std::string department;
  std::string inventory;
  std::string inventoryClass;
  std::string discontinued;  // yyyy-mm-dd, empty when the inventory is in use
  std::string posted;        // yyyy-mm-dd
  std::string documentDate;  // yyyy-mm-dd
  std::string free1;
  std::string batch;
  Amount in;
  Amount out;
  std::vector<Part> parts;
};

// One year of an account, as far as the report reads it.
struct YearOfLedger {
  std::vector<Line> lines;     // ia_subsidiary
  std::vector<Line> openings;  // IA_Subsidiary_QC
  std::map<int, std::string> costItemCodes;
  std::map<int, std::string> costItemClasses;  // the class code of each cost item
  std::map<std::string, int> classGrades;      // grade of each class code
};

YearOfLedger readYear(tsql::Connection& account, int year);

// What is chosen of a year.
struct Choice {
  std::function<bool(const Line&)> matches;
  // From this month on, with the openings of IA_Subsidiary_QC; 0 when cost items start with the year.
  int fromMonth = 0;
  // Movements posted before this date count as opening; empty for none.
  std::string lowerDate;
};

// Opening, receipt, issue, closing.
using StateAmounts = std::array<Amount, 4>;

// By cost-item code; by class code at a grade when `grade` is set: the class above at that grade, or the own class when
// it stands above that grade.
std::map<std::string, StateAmounts> sumsByCostItem(const YearOfLedger& year, const Choice& choice,
                                                   std::optional<int> grade);

// The ledger's own opening, receipts, issues and closing of the lines that are broken down by cost item.
StateAmounts sumsOfLines(const YearOfLedger& year, const Choice& choice);

}  // namespace quillon::workbench::test
