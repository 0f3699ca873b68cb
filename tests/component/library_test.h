// What the tests of Quillon.dll from outside have in common: the library, the classes and reports that they name, and the
// row of a report that a document is opened for.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "automation/late_bound.h"
#include "tests/component/fake_platform.h"
#include "tests/component/quillon_library.h"

namespace quillon::component::test {

// The classes, as the host platform is built against them.
namespace classes {
inline constexpr CLSID sfcItem = {0xe518f10c, 0xf08e, 0x4684, {0xa4, 0x65, 0x50, 0xe6, 0x80, 0x8d, 0x03, 0x1e}};
inline constexpr CLSID outsumItem = {0xfddec39e, 0xa286, 0x4e4a, {0x96, 0x77, 0x98, 0xf4, 0x68, 0x45, 0xfc, 0xa4}};
inline constexpr CLSID fxDetail = {0xccf4cf6e, 0xf448, 0x4a03, {0xbf, 0x9a, 0x7c, 0xea, 0x24, 0x00, 0x96, 0xaa}};
inline constexpr CLSID fxWt = {0xc16213bb, 0x4741, 0x47cf, {0x9e, 0xac, 0x1f, 0xca, 0xb4, 0x7e, 0x3e, 0x06}};
inline constexpr CLSID sfcFilterControl = {
    0x7ecd1526, 0x372f, 0x43c7, {0xbe, 0x9c, 0x59, 0x23, 0xa0, 0x79, 0x15, 0xca}};
inline constexpr CLSID filterControl = {0xb5857a26, 0x9af9, 0x40af, {0xba, 0x23, 0x3c, 0x32, 0xbc, 0x93, 0xcb, 0x5f}};
inline constexpr CLSID wtFilterControl = {0xca218940, 0x7a13, 0x4cca, {0xb5, 0xbd, 0x73, 0x78, 0x95, 0x93, 0xd6, 0xf5}};
inline constexpr CLSID business = {0xae3cc61b, 0xe0a2, 0x4f0d, {0xa9, 0x60, 0xc8, 0x20, 0x92, 0xc5, 0x03, 0x5e}};
}  // namespace classes

// What the filter object of a report's dialog calls the report. The detail ledger's class is for one report and does not ask.
namespace dialog_of {
inline constexpr const char* outboundSummary = "E55F9D31-F4C3-44D2-BDEB-9F83A208CAEE";
inline constexpr const char* receiptIssueBalance = "CA3BAD03-9D4C-463A-827E-E971D5A36C81";
inline constexpr const char* voucherReport = "3D1986A9-884B-4835-B4AA-DCCBD2E1487C";
}  // namespace dialog_of

// A row of a voucher of this type, number and accounting voucher; "" for one that is not posted.
inline std::map<std::string, automation::Variant> voucherRow(const char* type, const char* number,
                                                             const char* accountingVoucher = "p1") {
  return {{"cVouType", type}, {"cVouCode", number}, {"iPZID", 17}, {"ID", 815}, {"cPZID", accountingVoucher}};
}

class LibraryTest : public testing::Test {
 protected:
  // A new object of a class, called late-bound; errors call it `name`.
  automation::LateBound make(REFCLSID classId, const char* name) const {
    return {library.create<IDispatch>(classId), name};
  }

  QuillonLibrary library;
};

}  // namespace quillon::component::test
