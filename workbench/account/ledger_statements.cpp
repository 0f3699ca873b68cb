#include "workbench/account/ledger_statements.h"

#include <utility>

namespace quillon::account::checks {
namespace {

std::string inYears(const std::optional<YearRange>& years, std::string_view column) {
  return years ? " Where " + between(column, years->first, years->last) : std::string();
}

// Opening differences and direct shipments never were in stock.
constexpr std::string_view inStock =
    "base.cVouType <> N'33' And IsNull(base.cBusType, N'') Not In (N'直运销售', N'直运采购')";

// `figures` are the side's own quantity and amount, and nothing for those of the other one.
std::string sideOf(const BalanceSide& side, const Lot& lot, std::string_view figures) {
  std::string sql = "Select " + side.year + " As iYear, base.cInvCode As cInvCode, " + side.place + " As cPlace, ";
  for (std::size_t i = 0; i < lot.names.size(); ++i)
    sql += lot.expressions[i] + " As " + lot.names[i] + ", ";
  return sql.append(figures).append(" From ").append(side.table) +
         " base Left Join Inventory inv On inv.cInvCode = base.cInvCode Where " + std::string(inStock) + side.condition;
}

constexpr std::string_view figuresOfOne =
    "IsNull(base.iAInQuantity, 0) - IsNull(base.iAOutQuantity, 0) As quantity, "
    "IsNull(base.iAInPrice, 0) - IsNull(base.iAOutPrice, 0) As amount, 0 As otherQuantity, 0 As otherAmount";
constexpr std::string_view figuresOfOther =
    "0 As quantity, 0 As amount, IsNull(base.iAInQuantity, 0) - IsNull(base.iAOutQuantity, 0) As otherQuantity, "
    "IsNull(base.iAInPrice, 0) - IsNull(base.iAOutPrice, 0) As otherAmount";

}  // namespace

std::string listed(std::span<const std::string> parts) {
  std::string text;
  for (const std::string& part : parts)
    text.append(text.empty() ? "" : ", ").append(part);
  return text;
}

std::string quotedText(std::string_view text) {
  std::string result = "N'";
  for (const char c : text)
    result.append(c == '\'' ? 2 : 1, c);
  return result + "'";
}

std::string between(std::string_view column, int first, int last) {
  return std::string(column) + " Between " + std::to_string(first) + " And " + std::to_string(last);
}

std::string rowsOf(const Source& source, std::string_view amount, std::string_view condition,
                   const std::optional<std::int64_t>& rows) {
  return "Select " + (rows ? "Top " + std::to_string(*rows) + " " : std::string()) + source.columns + ", " +
         std::string(amount) + ", " + source.own + " From " + source.table + source.details + " Where " +
         std::string(condition) + " Order By " + source.order;
}

// Grouped by the line's number alone, so that an index gives the groups in
// order; the maximum of a line's own figure is that figure.
Source linesWithParts(const LineTables& tables, const std::optional<YearRange>& years) {
  const std::string lines(tables.lines);
  return {
      .table =
          "(Select base.AutoID, Max(base.iYear) As iYear, Max(base.iMonth) As iMonth, Max(base.cInvCode) As cInvCode, "
          "Max(base.cVouType) As cVouType, "
          "Max(IsNull(base.iAInPrice, 0)) As inAmount, Max(IsNull(base.iAOutPrice, 0)) As outAmount, "
          "Max(IsNull(base.iAInQuantity, 0)) As inQuantity, Max(IsNull(base.iAOutQuantity, 0)) As outQuantity, "
          "Count(part.AutoID) As parts, Sum(IsNull(part.iItemInPrice, 0)) As partsIn, "
          "Sum(IsNull(part.iItemOutPrice, 0)) As partsOut "
          "From " +
          lines + " base " + std::string(tables.join) + " " + std::string(tables.parts) + " part On part." +
          std::string(tables.partLine) + " = base.AutoID" + inYears(years, "base.iYear") +
          " Group By base.AutoID) line",
      .details = " Inner Join " + lines + " base On base.AutoID = line.AutoID",
      .columns = "line.AutoID, line.iYear, line.iMonth, base.dKeepDate, base.cVouCode, line.cInvCode",
      .own = "line.inAmount, line.partsIn, line.outAmount, line.partsOut, line.inQuantity + line.outQuantity",
      .order = "line.AutoID"};
}

Source partsWithMasters(const LineTables& tables, const std::optional<YearRange>& years) {
  return {.table = "(Select part.AutoID, part." + std::string(tables.partLine) +
                   " As line, part.iYear, part.iMonth, part.iItemID, part.iItemDetailID, item.iFxID As knownItem, "
                   "detail.iFxDID As knownDetail, detail.iFxID As itemOfDetail, base.AutoID As knownLine, "
                   "base.dKeepDate, base.cVouCode, base.cInvCode, "
                   "IsNull(part.iItemInPrice, 0) + IsNull(part.iItemOutPrice, 0) As amount From " +
                   std::string(tables.parts) +
                   " part Left Join Ca_FxDef item On item.iFxID = part.iItemID "
                   "Left Join Ca_FxMapExpDID detail On detail.iFxDID = part.iItemDetailID Left Join " +
                   std::string(tables.lines) + " base On base.AutoID = part." + std::string(tables.partLine) +
                   inYears(years, "part.iYear") + ") part",
          .details = "",
          .columns = "part.line, part.iYear, part.iMonth, part.dKeepDate, part.cVouCode, part.cInvCode",
          .own = quotedText(tables.parts) +
                 ", part.iItemID, part.knownItem, part.iItemDetailID, part.knownDetail, "
                 "part.itemOfDetail, " +
                 quotedText(tables.lines),
          .order = "part.AutoID"};
}

std::string balanceColumns(std::string_view year, std::string_view month) {
  return "Null, " + std::string(year) + ", " + std::string(month) + ", Null, Null, balance.cInvCode";
}

Source balances(const BalanceSide& one, const BalanceSide& other, const Lot& lot, std::string columns) {
  std::string key = ", each.cInvCode, each.cPlace", own = ", balance.cPlace";
  for (const std::string& name : lot.names) {
    key += ", each." + name;
    own += ", balance." + name;
  }
  return {.table = "(Select each.iYear" + key +
                   ", Sum(each.quantity) As quantity, Sum(each.amount) As amount, Sum(each.otherQuantity) As "
                   "otherQuantity, Sum(each.otherAmount) As otherAmount From (" +
                   sideOf(one, lot, figuresOfOne) + " Union All " + sideOf(other, lot, figuresOfOther) +
                   ") each Group By each.iYear" + key + ") balance",
          .details = "",
          .columns = std::move(columns),
          .own = "balance.quantity, balance.amount, balance.otherQuantity, balance.otherAmount, balance.iYear" + own,
          .order = "balance.iYear, balance.cInvCode" + own};
}

}  // namespace quillon::account::checks
