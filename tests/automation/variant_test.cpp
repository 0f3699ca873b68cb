#include "automation/variant.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "automation/dispatch_object.h"
#include "automation/errors.h"
#include "frame/automation_error.h"

namespace quillon::automation {
namespace {

HResult mismatchOf(const VARIANT& value) {
  try {
    toText(value);
  } catch (const AutomationError& error) {
    return error.code();
  }
  return S_OK;
}

TEST(VariantReading, TextOfEveryKind) {
  EXPECT_EQ(toText(Variant("01\t02")), "01\t02");
  EXPECT_EQ(toText(Variant()), "");
  EXPECT_EQ(toText(Variant::null()), "");
  EXPECT_EQ(toText(Variant(-7)), "-7");
  EXPECT_EQ(toText(Variant(true)), "True");
  EXPECT_EQ(toText(Variant(false)), "False");
  EXPECT_EQ(toText(Variant(1234567.5)), "1234567.5");
  Variant amount;
  amount.vt = VT_CY;
  amount.cyVal.int64 = 12345678900;
  EXPECT_EQ(toText(amount), "1234567.89");
  Variant exact;
  exact.decVal = DECIMAL{};
  exact.vt = VT_DECIMAL;
  exact.decVal.scale = 3;
  exact.decVal.Lo64 = 1234567;
  EXPECT_EQ(toText(exact), "1234.567");
}

TEST(VariantReading, ADateIsIsoText) {
  EXPECT_EQ(toText(Variant::fromDate(45356.0)), "2024-03-05");
  EXPECT_EQ(toText(Variant::fromDate(45356.75)), "2024-03-05 18:00:00");
  EXPECT_EQ(toText(Variant::fromDate(2.0)), "1900-01-01");
}

TEST(VariantMaking, ADateFromIsoText) {
  const Variant leapDay = Variant::fromIsoDate("2024-02-29");
  EXPECT_EQ(leapDay.vt, VT_DATE);
  EXPECT_EQ(leapDay.date, 45351.0);
  EXPECT_EQ(toText(Variant::fromIsoDate("1899-12-31")), "1899-12-31");
  for (const char* text : {"", "2024-2-9", "2024/02/09", "2024-02-0x", "x024-02-09", "2024-02-091", "2024-13-01"}) {
    try {
      Variant::fromIsoDate(text);
      ADD_FAILURE() << text << " was taken";
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.code(), hresult::typeMismatch) << text;
    }
  }
}

TEST(VariantMaking, AnArrayOfTexts) {
  for (const std::vector<std::string>& texts : {std::vector<std::string>{}, {"颜色"}, {"a", ""}}) {
    Variant list = Variant::textArray(texts);
    EXPECT_EQ(list.vt, VT_ARRAY | VT_VARIANT);
    EXPECT_EQ(toTexts(list), texts);
    EXPECT_EQ(toTexts(Variant::reference(list)), texts);
  }
}

TEST(VariantReading, OnlyAListIsReadAsOne) {
  for (const Variant& value : {Variant("text"), Variant(), Variant(1)}) {
    try {
      toTexts(value);
      ADD_FAILURE() << "read automation type " << value.vt;
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.code(), hresult::typeMismatch);
    }
  }
}

TEST(VariantMaking, ATypedReferenceTakesAResult) {
  SHORT number = 1;
  DATE day = 0;
  Variant text("before");
  Variant toNumber = Variant::reference(number);
  Variant toDay = Variant::dateReference(day);
  Variant toText = Variant::reference(text.bstrVal);
  EXPECT_EQ(writeBack(toNumber, Variant("12")), S_OK);
  EXPECT_EQ(writeBack(toDay, Variant::fromDate(45351.0)), S_OK);
  EXPECT_EQ(writeBack(toText, Variant("after")), S_OK);
  EXPECT_EQ(number, 12);
  EXPECT_EQ(day, 45351.0);
  EXPECT_EQ(automation::toText(text), "after");
  EXPECT_EQ(writeBack(toNumber, Variant("2024-02-29")), DISP_E_TYPEMISMATCH);
}

TEST(VariantReading, ADateIsTheSameUnderAnotherLocale) {
  const LCID before = GetThreadLocale();
  SetThreadLocale(MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT));
  const std::string date = toText(Variant::fromDate(45356.0));
  const std::string number = toText(Variant(1.5));
  SetThreadLocale(before);
  EXPECT_EQ(date, "2024-03-05");
  EXPECT_EQ(number, "1.5");
}

TEST(VariantReading, NullIsToldFromEmptyText) {
  EXPECT_EQ(toTextOrNull(Variant::null()), std::nullopt);
  EXPECT_EQ(toTextOrNull(Variant("")), "");
}

TEST(VariantReading, GoesThroughEveryReference) {
  Variant inner("deep");
  Variant middle = Variant::reference(inner);
  EXPECT_EQ(toText(Variant::reference(middle)), "deep");
  LONG number = 42;
  Variant typed;
  typed.vt = VT_I4 | VT_BYREF;
  typed.plVal = &number;
  EXPECT_EQ(toInteger(Variant::reference(typed)), 42);
}

TEST(VariantReading, NumbersAndFlagsFromText) {
  EXPECT_EQ(toInteger(Variant("17")), 17);
  EXPECT_EQ(toInteger(Variant()), 0);
  EXPECT_TRUE(toFlag(Variant("True")));
  EXPECT_TRUE(toFlag(Variant(-1)));
  EXPECT_FALSE(toFlag(Variant("0")));
}

TEST(VariantReading, AMismatchShowsTheValue) {
  const auto told = [](const Variant& value, const auto& read) -> std::string {
    try {
      read(value);
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.source(), ownSource);
      return error.description();
    }
    return "was read";
  };
  const auto asInteger = [](const Variant& value) { toInteger(value); };
  const auto asFlag = [](const Variant& value) { toFlag(value); };
  const auto asObject = [](const Variant& value) { toObject(value); };
  EXPECT_EQ(told("seven", asInteger), "The text \"seven\" cannot be read as a whole number.");
  EXPECT_EQ(told("颜色", asFlag), "The text \"颜色\" cannot be read as a flag.");
  EXPECT_EQ(told(1.5e300, asInteger).substr(0, 14), "The value 1.5E");
  EXPECT_EQ(told(17, asObject), "The value 17 cannot be read as an object.");
  EXPECT_EQ(told(true, asObject), "The value True cannot be read as an object.");
  EXPECT_EQ(told(Variant(), asObject), "An empty value cannot be read as an object.");
  EXPECT_EQ(told(Variant::null(), asInteger), "Null cannot be read as a whole number.");
  EXPECT_EQ(told(Variant::missing(), asFlag), "An argument that is left out cannot be read as a flag.");
  EXPECT_EQ(told(Variant(static_cast<IDispatch*>(nullptr)), asInteger), "Nothing cannot be read as a whole number.");
  const std::vector<std::string> none;
  EXPECT_EQ(told(Variant::textArray(none), asInteger), "An array cannot be read as a whole number.");
  for (const char* text : {"Provider=x;Password=secret", "Driver=y;PWD=secret;Database=z"})
    EXPECT_EQ(told(text, asObject), "A text that holds a password cannot be read as an object.");
  // A long text is cut between two characters.
  EXPECT_EQ(told(Variant(std::string(59, 'x') + "😀" + "yz"), asInteger),
            "The text \"" + std::string(59, 'x') + "...\" cannot be read as a whole number.");
}

TEST(VariantReading, WhatCannotBeReadIsAMismatch) {
  EXPECT_EQ(mismatchOf(Variant::missing()), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(mismatchOf(Variant(static_cast<IDispatch*>(nullptr))), DISP_E_TYPEMISMATCH);
  EXPECT_THROW(toInteger(Variant("seven")), AutomationError);
  EXPECT_THROW(toFlag(Variant("perhaps")), AutomationError);
  EXPECT_THROW(toObject(Variant("no object")), AutomationError);
  Variant nowhere;
  nowhere.vt = VT_BSTR | VT_BYREF;
  nowhere.pbstrVal = nullptr;
  EXPECT_EQ(mismatchOf(nowhere), DISP_E_TYPEMISMATCH);
}

TEST(VariantReading, AReferenceThatLeadsBackToItselfIsAMismatch) {
  Variant itself;
  static_cast<VARIANT&>(itself) = Variant::reference(itself);
  EXPECT_EQ(mismatchOf(itself), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(writeBack(itself, Variant("x")), E_POINTER);
  Variant first;
  Variant second = Variant::reference(first);
  static_cast<VARIANT&>(first) = Variant::reference(second);
  EXPECT_EQ(mismatchOf(Variant::reference(first)), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(writeBack(second, Variant("x")), E_POINTER);
}

class Field : public DispatchObject<Field> {
 public:
  static std::span<const Member> members() {
    static constexpr Member rows[] = {{L"Value", DISPID_VALUE, readable, 0, 0, &Field::value}};
    return rows;
  }

 private:
  Variant value(Call& /*call*/) { return "by default"; }
};

TEST(VariantReading, AnObjectStandsForItsDefaultMember) {
  EXPECT_EQ(toText(Variant(makeObject<Field>())), "by default");
  EXPECT_EQ(LiveCount::value(), 0);
}

TEST(VariantWriting, AVariantTakesTheValueAsItIs) {
  Variant variable(0);
  Variant target = Variant::reference(variable);
  EXPECT_EQ(writeBack(target, Variant(true)), S_OK);
  EXPECT_EQ(variable.vt, VT_BOOL);
  EXPECT_EQ(variable.boolVal, VARIANT_TRUE);
}

TEST(VariantWriting, ATypedVariableKeepsItsType) {
  VARIANT_BOOL flag = VARIANT_FALSE;
  Variant target;
  target.vt = VT_BOOL | VT_BYREF;
  target.pboolVal = &flag;
  EXPECT_EQ(writeBack(target, Variant(-1)), S_OK);
  EXPECT_EQ(flag, VARIANT_TRUE);

  double number = 0;
  target.vt = VT_R8 | VT_BYREF;
  target.pdblVal = &number;
  EXPECT_EQ(writeBack(target, Variant(7)), S_OK);
  EXPECT_EQ(number, 7.0);

  BSTR text = makeBstr("before");
  target.vt = VT_BSTR | VT_BYREF;
  target.pbstrVal = &text;
  EXPECT_EQ(writeBack(target, Variant("cross")), S_OK);
  EXPECT_EQ(toUtf8(text), "cross");
  SysFreeString(text);
  target.vt = VT_EMPTY;
}

TEST(VariantWriting, AReferenceInsideAVariantLeadsToTheVariable) {
  SHORT number = 1;
  Variant typed;
  typed.vt = VT_I2 | VT_BYREF;
  typed.piVal = &number;
  Variant target = Variant::reference(typed);
  EXPECT_EQ(writeBack(target, Variant("12")), S_OK);
  EXPECT_EQ(number, 12);
}

TEST(VariantWriting, AnArrayTakesThePlaceOfTheOneBefore) {
  Variant variable = Variant::textArray(std::vector<std::string>{"old", "er"});
  Variant target;
  target.vt = static_cast<VARTYPE>(variable.vt | VT_BYREF);
  target.pparray = &variable.parray;
  EXPECT_EQ(writeBack(target, Variant::textArray(std::vector<std::string>{"new"})), S_OK);
  EXPECT_EQ(toTexts(variable), std::vector<std::string>{"new"});
  EXPECT_EQ(SafeArrayLock(variable.parray), S_OK);
  EXPECT_EQ(writeBack(target, Variant::textArray({})), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(SafeArrayUnlock(variable.parray), S_OK);
  EXPECT_EQ(toTexts(variable), std::vector<std::string>{"new"});
}

TEST(VariantWriting, AnObjectVariableReleasesWhatItHeld) {
  ComPtr<IDispatch> variable = makeObject<Field>();
  IDispatch* held = variable.release();
  Variant target = Variant::reference(held);
  EXPECT_EQ(writeBack(target, Variant(makeObject<Field>())), S_OK);
  EXPECT_EQ(LiveCount::value(), 1);
  held->Release();
  EXPECT_EQ(LiveCount::value(), 0);
}

TEST(VariantWriting, AValueHasNoVariableBehindIt) {
  Variant target(5);
  EXPECT_EQ(writeBack(target, Variant(6)), S_OK);
  EXPECT_EQ(target.lVal, 5);
}

TEST(VariantWriting, WhatDoesNotFitIsAMismatchAndChangesNothing) {
  LONG number = 3;
  Variant target;
  target.vt = VT_I4 | VT_BYREF;
  target.plVal = &number;
  EXPECT_EQ(writeBack(target, Variant("cross")), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(number, 3);
}

}  // namespace
}  // namespace quillon::automation
