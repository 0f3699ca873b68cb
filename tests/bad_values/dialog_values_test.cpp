// What each dialog makes of bad values: it pastes them into the lookups of other items as they stand and does not stumble
// over any item.
#include <gmock/gmock.h>

#include <array>
#include <memory>
#include <string>

#include "tests/bad_values/run.h"
#include "tests/bad_values/values.h"

namespace quillon::bad_values {
namespace {

using workbench::FilterObject;
using workbench::Report;

struct Lookup {
  const Report* report;
  const char* changed;
  const char* restricted;
  const char* before;
  const char* after;
};
const std::array lookups{
    Lookup{&workbench::reportNamed("sfc-item"), "cInvClass", "cInvCode", "#FN[cInvCCode] Like '", "%'"},
    Lookup{&workbench::reportNamed("outsum-item"), "cInvCCode", "cInvCode", "#FN[cInvCCode] Like '", "%'"},
    Lookup{&workbench::reportNamed("fx-detail"), "cInvCCode", "cInvCode", "#FN[cInvCCode] like N'", "%'"},
    Lookup{&workbench::reportNamed("fx-wt"), "Inventory.cInvCCode", "Inventory.cInvCode", " #FN[cInvCCode]='", "'"},
    Lookup{&workbench::reportNamed("fx-wt"), "Customer.cCCCode", "Customer.cCusCode", " #FN[cCCCode]='", "'"},
    Lookup{&workbench::reportNamed("fx-wt"), "Vendor.cVCCode", "Vendor.cVenCode", " #FN[cVCCode]='", "'"},
};

// A dialog that has been opened, on an account of the tests' own.
class OpenDialog {
 public:
  explicit OpenDialog(const Report& report)
      : platform({.account = account().source(),
                  .messages = [this](std::string_view text, int) { messages.emplace_back(text); }}),
        filter(std::make_shared<FilterObject>(report.registration, workbench::InitialValues::none)),
        runner(workbench::makeDialogRunner(
            platform, report,
            std::make_shared<workbench::FilterDialogObject>(filter, account().login(), account().openSession()))) {
    runner->init();
  }

  static const faults::TinyAccount& account() { return faults::byInventory(); }

  std::vector<std::string> messages;
  workbench::EmbeddedPlatform platform;
  std::shared_ptr<FilterObject> filter;
  std::unique_ptr<workbench::DialogRunner> runner;
};

class DialogValues : public testing::TestWithParam<BadValue> {};

TEST_P(DialogValues, ArePastedIntoLookupsAsTheyStand) {
  for (const Lookup& lookup : lookups) {
    SCOPED_TRACE(lookup.report->registration.name + " " + lookup.changed);
    OpenDialog dialog(*lookup.report);
    dialog.filter->find(lookup.changed)->value = GetParam().text;
    dialog.runner->changed(lookup.changed);
    EXPECT_EQ(dialog.filter->find(lookup.restricted)->lookupCondition, lookup.before + GetParam().text + lookup.after);
    // The item itself keeps what the user gave it.
    EXPECT_EQ(dialog.filter->find(lookup.changed)->value, GetParam().text);
  }
}

TEST_P(DialogValues, DoNoHarmInAnyItem) {
  for (const Report& report : workbench::reports()) {
    SCOPED_TRACE(report.registration.name);
    OpenDialog dialog(report);
    for (const auto& entry : dialog.filter->entries()) {
      SCOPED_TRACE(entry->item.key);
      const std::string before = entry->value;
      entry->value = GetParam().text;
      EXPECT_NO_THROW(dialog.runner->changed(entry->item.key));
      EXPECT_NO_THROW(dialog.runner->viewAfterChange(entry->item.key));
      entry->value = before;
      EXPECT_NO_THROW(dialog.runner->changed(entry->item.key));
    }
    EXPECT_TRUE(dialog.runner->click());
    EXPECT_THAT(dialog.messages, testing::IsEmpty());
    EXPECT_THAT(OpenDialog::account().newTables(), testing::IsEmpty());
  }
}

// On confirmation the ledger's dialog asks the account what its inventory is checked for.
TEST_P(DialogValues, AreLookedUpAsTheyStand) {
  OpenDialog dialog(workbench::reportNamed("fx-detail"));
  dialog.filter->find("cInvCode")->value = GetParam().text;
  std::string denoted;
  if (denotes(GetParam().text, denoted)) {
    EXPECT_TRUE(dialog.runner->click());
    return;
  }
  try {
    dialog.runner->click();
    ADD_FAILURE() << "nothing was refused";
  } catch (const AutomationError& error) {
    EXPECT_THAT(error.description(), testing::AnyOf(testing::HasSubstr("Incorrect syntax near"),
                                                    testing::HasSubstr("Unclosed quotation mark")));
  }
  dialog.filter->find("cInvCode")->value = "no such inventory";
  EXPECT_TRUE(dialog.runner->click());
}

INSTANTIATE_TEST_SUITE_P(Each, DialogValues, testing::ValuesIn(badValues()),
                         [](const auto& value) { return value.param.name; });

}  // namespace
}  // namespace quillon::bad_values
