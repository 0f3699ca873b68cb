#include "automation/dispatch_object.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "automation/text.h"
#include "frame/automation_error.h"

namespace quillon::automation {
namespace {

class Sample : public DispatchObject<Sample> {
 public:
  static std::span<const Member> members() {
    static constexpr Member rows[] = {
        {L"Value", DISPID_VALUE, readable | writable, 0, 1, &Sample::value},
        {L"Add", 1, callable, 2, 3, &Sample::add},
        {L"Fail", 2, callable, 0, 0, &Sample::fail},
        {L"Break", 3, callable, 0, 0, &Sample::breakDown},
        {L"Answer", 4, callable, 1, 1, &Sample::answer},
    };
    return rows;
  }

 private:
  Variant value(Call& call) {
    if (!call.assigns()) return value_;
    value_ = call.assigned();
    return {};
  }
  Variant add(Call& call) { return call.integer(0) + call.integer(1) + (call.given(2) ? call.integer(2) : 0); }
  Variant fail(Call& /*call*/) { throw AutomationError(hresult::invalidArgument, "Sample", "It does not like that."); }
  Variant breakDown(Call& /*call*/) { throw std::runtime_error("a rope"); }
  Variant answer(Call& call) {
    call.writeBack(0, Variant(42));
    return {};
  }

  Variant value_;
};

class DispatchObjectTest : public testing::Test {
 protected:
  HRESULT invoke(DISPID id, WORD kind, std::vector<VARIANT> reversed, Variant* result = nullptr) {
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    DISPID assigned = DISPID_PROPERTYPUT;
    if (kind & writable) {
      parameters.rgdispidNamedArgs = &assigned;
      parameters.cNamedArgs = 1;
    }
    badArgument_ = 99;
    return sample_->Invoke(id, IID_NULL, 0, kind, &parameters, result ? result->out() : nullptr, &info_, &badArgument_);
  }
  void TearDown() override {
    SysFreeString(info_.bstrSource);
    SysFreeString(info_.bstrDescription);
  }

  ComPtr<Sample> sample_ = makeObject<Sample>();
  EXCEPINFO info_{};
  UINT badArgument_ = 99;
};

TEST_F(DispatchObjectTest, NamesAreFoundInAnyLetterCase) {
  wchar_t known[] = L"aDD";
  wchar_t unknown[] = L"Subtract";
  LPOLESTR name = known;
  DISPID id = 0;
  EXPECT_EQ(sample_->GetIDsOfNames(IID_NULL, &name, 1, 0, &id), S_OK);
  EXPECT_EQ(id, 1);
  name = unknown;
  EXPECT_EQ(sample_->GetIDsOfNames(IID_NULL, &name, 1, 0, &id), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(id, DISPID_UNKNOWN);
}

TEST_F(DispatchObjectTest, ArgumentsComeInTheirNaturalOrderAndMayBeLeftOut) {
  Variant result;
  EXPECT_EQ(invoke(1, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {Variant(5), Variant("3")}, &result), S_OK);
  EXPECT_EQ(toInteger(result), 8);
  EXPECT_EQ(invoke(1, DISPATCH_METHOD, {Variant::missing(), Variant(5), Variant(3)}, &result), S_OK);
  EXPECT_EQ(toInteger(result), 8);
  EXPECT_EQ(invoke(1, DISPATCH_METHOD, {Variant(2), Variant(1), Variant(3)}, &result), S_OK);
  EXPECT_EQ(toInteger(result), 6);
}

TEST_F(DispatchObjectTest, WrongCallsAreToldApart) {
  EXPECT_EQ(invoke(1, DISPATCH_METHOD, {Variant(1)}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(invoke(1, DISPATCH_METHOD, {Variant(1), Variant(1), Variant(1), Variant(1)}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(invoke(77, DISPATCH_METHOD, {}), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(invoke(1, DISPATCH_PROPERTYPUT, {Variant(1)}), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(invoke(1, DISPATCH_METHOD, {Variant(1), Variant::missing()}), DISP_E_PARAMNOTOPTIONAL);
  EXPECT_EQ(badArgument_, 1U);
}

TEST_F(DispatchObjectTest, AMismatchNamesTheArgumentsPosition) {
  const Variant word("no number");
  EXPECT_EQ(invoke(1, DISPATCH_METHOD, {word, Variant(1)}), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(badArgument_, 0U);
  EXPECT_EQ(invoke(1, DISPATCH_METHOD, {Variant(1), word}), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(badArgument_, 1U);
}

TEST_F(DispatchObjectTest, AssignmentsByValueAndOfObjects) {
  const Variant text("kept");
  EXPECT_EQ(invoke(DISPID_VALUE, DISPATCH_PROPERTYPUT, {text}), S_OK);
  Variant result;
  EXPECT_EQ(invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, {}, &result), S_OK);
  EXPECT_EQ(toText(result), "kept");
  EXPECT_EQ(invoke(DISPID_VALUE, DISPATCH_PROPERTYPUTREF, {Variant(static_cast<IDispatch*>(nullptr))}), S_OK);
}

TEST_F(DispatchObjectTest, AFailureReachesTheCallerWithItsOwnWords) {
  EXPECT_EQ(invoke(2, DISPATCH_METHOD, {}), DISP_E_EXCEPTION);
  EXPECT_EQ(info_.scode, E_INVALIDARG);
  EXPECT_EQ(toUtf8(info_.bstrSource), "Sample");
  EXPECT_EQ(toUtf8(info_.bstrDescription), "It does not like that.");
}

TEST_F(DispatchObjectTest, WhatElseIsThrownIsUnexpectedAndKeepsItsText) {
  EXPECT_EQ(invoke(3, DISPATCH_METHOD, {}), DISP_E_EXCEPTION);
  EXPECT_EQ(info_.scode, E_UNEXPECTED);
  EXPECT_EQ(toUtf8(info_.bstrDescription), "Internal error: a rope");
}

TEST_F(DispatchObjectTest, AResultGoesIntoTheCallersVariable) {
  Variant variable;
  EXPECT_EQ(invoke(4, DISPATCH_METHOD, {Variant::reference(variable)}), S_OK);
  EXPECT_EQ(toInteger(variable), 42);
}

}  // namespace
}  // namespace quillon::automation
