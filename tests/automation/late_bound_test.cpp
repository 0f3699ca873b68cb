#include "automation/late_bound.h"

#include <gtest/gtest.h>

#include "automation/dispatch_object.h"
#include "automation/errors.h"
#include "frame/automation_error.h"

namespace quillon::automation {
namespace {

// Has a value, but cannot give it.
class Wary : public DispatchObject<Wary> {
 public:
  static std::span<const Member> members() {
    static constexpr Member rows[] = {{L"Value", DISPID_VALUE, readable, 0, 0, &Wary::value}};
    return rows;
  }

 private:
  Variant value(Call& /*call*/) { throw AutomationError(E_ACCESSDENIED, "Wary", "The value is not to be had."); }
};

// Answers as the objects of Basic do: a failure is described in EXCEPINFO, at once or when it is asked for.
class Callee : public DispatchObject<Callee> {
 public:
  static std::span<const Member> members() {
    static constexpr Member rows[] = {
        {L"Item", DISPID_VALUE, readable, 1, 1, &Callee::item},
        {L"Name", 1, readable | writable, 0, 0, &Callee::name},
        {L"Nothing", 2, readable, 0, 0, &Callee::nothing},
        {L"Self", 3, readable, 0, 0, &Callee::self},
        {L"Count", 4, callable, 1, 1, &Callee::count},
        {L"Owner", 5, DISPATCH_PROPERTYPUTREF, 0, 0, &Callee::owner},
        {L"PlainOwner", 6, DISPATCH_PROPERTYPUT, 0, 0, &Callee::owner},
        {L"Wary", 7, readable, 0, 0, &Callee::wary},
        {L"Empty", 8, readable, 0, 0, &Callee::empty},
        {L"Null", 9, readable, 0, 0, &Callee::null},
    };
    return rows;
  }

  enum class Failure { none, number, deferred, code, empty };
  Failure failure = Failure::none;
  IDispatch* ownerGiven = nullptr;

  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* info, UINT* badArgument) override {
    switch (failure) {
      case Failure::none:
        return DispatchObject::Invoke(id, reserved, locale, kind, parameters, result, info, badArgument);
      case Failure::number:
        info->wCode = 91;
        info->bstrSource = makeBstr("Callee");
        info->bstrDescription = makeBstr("Object variable not set");
        return DISP_E_EXCEPTION;
      case Failure::deferred:
        info->scode = E_ACCESSDENIED;
        info->pfnDeferredFillIn = &fillIn;
        return DISP_E_EXCEPTION;
      case Failure::code:
        return E_NOTIMPL;
      case Failure::empty:
        return DISP_E_EXCEPTION;
    }
    return E_UNEXPECTED;
  }

 private:
  static HRESULT STDAPICALLTYPE fillIn(EXCEPINFO* info) {
    info->bstrSource = makeBstr("Late");
    info->bstrDescription = makeBstr("Filled in when asked for");
    return S_OK;
  }

  Variant item(Call& call) {
    if (call.text(0) == "none") return Variant(static_cast<IDispatch*>(nullptr));
    return makeObject<Callee>();
  }
  Variant name(Call& call) {
    if (!call.assigns()) return name_;
    name_ = toText(call.assigned());
    return {};
  }
  Variant nothing(Call& /*call*/) { return Variant(static_cast<IDispatch*>(nullptr)); }
  Variant self(Call& /*call*/) { return this; }
  Variant empty(Call& /*call*/) { return {}; }
  Variant null(Call& /*call*/) { return Variant::null(); }
  Variant wary(Call& /*call*/) { return makeObject<Wary>(); }
  Variant count(Call& call) {
    call.writeBack(0, Variant(3));
    return {};
  }

  Variant owner(Call& call) {
    ownerGiven = toObject(call.assigned()).get();
    return {};
  }

  std::string name_ = "first";
};

class LateBoundTest : public testing::Test {
 protected:
  // The error that `action` ends with.
  template <class Action>
  AutomationError errorOf(Action action) {
    try {
      action();
    } catch (const AutomationError& error) {
      return error;
    }
    return {0, "nothing", "was thrown"};
  }
  void TearDown() override {
    object_ = {};
    callee_.reset();
    EXPECT_EQ(LiveCount::value(), 0);
  }

  ComPtr<Callee> callee_ = makeObject<Callee>();
  LateBound object_{callee_, "Callee.Object"};
};

TEST_F(LateBoundTest, ReadsAndWritesByName) {
  EXPECT_EQ(object_.text(L"NAME"), "first");
  object_.put(L"Name", "second");
  EXPECT_EQ(object_.text(L"Name"), "second");
  EXPECT_EQ(object_.object(L"Self", "Self").text(L"Name"), "second");
  EXPECT_EQ(object_.item("any", "Item").text(L"Name"), "first");
}

TEST_F(LateBoundTest, AResultComesBackThroughAReference) {
  Variant count;
  object_.call(L"Count", {Variant::reference(count)});
  EXPECT_EQ(toInteger(count), 3);
}

TEST_F(LateBoundTest, AnObjectIsAssignedAsSetDoesOrPlainly) {
  for (const wchar_t* member : {L"Owner", L"PlainOwner"}) {
    callee_->ownerGiven = nullptr;
    object_.putObject(member, callee_);
    EXPECT_EQ(callee_->ownerGiven, callee_.get());
  }
  const AutomationError error = errorOf([&] { object_.putObject(L"Count", callee_); });
  EXPECT_EQ(error.code(), DISP_E_MEMBERNOTFOUND) << "a function takes no assignment";
  EXPECT_EQ(errorOf([&] { object_.putObject(L"Missing", callee_); }).code(), DISP_E_UNKNOWNNAME);
}

TEST_F(LateBoundTest, AMemberIsLookedForWithoutBeingCalled) {
  callee_->failure = Callee::Failure::code;
  EXPECT_TRUE(object_.offers(L"name"));
  EXPECT_FALSE(object_.offers(L"Missing"));
  EXPECT_EQ(static_cast<std::uint32_t>(errorOf([] { static_cast<void>(LateBound().offers(L"Name")); }).code()),
            0x800A005BU);
}

TEST_F(LateBoundTest, AnObjectMayBeLacking) {
  EXPECT_EQ(object_.objectIfAny(L"Self", "It").name(), "It");
  EXPECT_FALSE(object_.objectIfAny(L"Missing", "It"));
  EXPECT_FALSE(object_.objectIfAny(L"Nothing", "It"));
  EXPECT_FALSE(object_.objectIfAny(L"Empty", "It"));
  EXPECT_FALSE(object_.objectIfAny(L"Null", "It"));
  EXPECT_FALSE(object_.objectIfAny(L"Owner", "It")) << "a member that can only be assigned";
  // What is there, but no object, and a member that fails, are errors.
  const AutomationError error = errorOf([&] { object_.objectIfAny(L"Name", "It"); });
  EXPECT_EQ(error.code(), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(error.description(), "Callee.Object.Name: The text \"first\" cannot be read as an object.");
  callee_->failure = Callee::Failure::number;
  EXPECT_EQ(errorOf([&] { object_.objectIfAny(L"Self", "It"); }).description(), "Object variable not set");
  EXPECT_EQ(errorOf([] { static_cast<void>(LateBound().objectIfAny(L"Self", "It")); }).code(), hresult::objectNotSet);
}

TEST_F(LateBoundTest, AMissingMemberIsNamed) {
  const AutomationError error = errorOf([&] { object_.get(L"Missing"); });
  EXPECT_EQ(error.code(), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(error.source(), ownSource);
  EXPECT_TRUE(error.description().starts_with("Callee.Object.Missing: ")) << error.description();
}

TEST_F(LateBoundTest, AnErrorNumberOfBasicBecomesItsCode) {
  callee_->failure = Callee::Failure::number;
  const AutomationError error = errorOf([&] { object_.get(L"Name"); });
  EXPECT_EQ(static_cast<std::uint32_t>(error.code()), 0x800A005BU);
  EXPECT_EQ(error.source(), "Callee");
  EXPECT_EQ(error.description(), "Object variable not set");
}

TEST_F(LateBoundTest, ADescriptionThatIsFilledInLateIsAskedFor) {
  callee_->failure = Callee::Failure::deferred;
  const AutomationError error = errorOf([&] { object_.call(L"Count", {1}); });
  EXPECT_EQ(error.code(), E_ACCESSDENIED);
  EXPECT_EQ(error.source(), "Late");
  EXPECT_EQ(error.description(), "Filled in when asked for");
}

TEST_F(LateBoundTest, ABareCodeIsDescribedByTheMember) {
  callee_->failure = Callee::Failure::code;
  const AutomationError error = errorOf([&] { object_.put(L"Name", "x"); });
  EXPECT_EQ(error.code(), E_NOTIMPL);
  EXPECT_TRUE(error.description().starts_with("Callee.Object.Name: ")) << error.description();
}

TEST_F(LateBoundTest, AnExceptionWithoutACodeIsAFailureAllTheSame) {
  callee_->failure = Callee::Failure::empty;
  EXPECT_EQ(errorOf([&] { object_.get(L"Name"); }).code(), DISP_E_EXCEPTION);
}

TEST_F(LateBoundTest, NothingIsNoObject) {
  const AutomationError error = errorOf([&] { object_.object(L"Nothing", "Its object"); });
  EXPECT_EQ(static_cast<std::uint32_t>(error.code()), 0x800A005BU);
  EXPECT_EQ(static_cast<std::uint32_t>(errorOf([&] { object_.item("none", "Item"); }).code()), 0x800A005BU);
  EXPECT_EQ(static_cast<std::uint32_t>(errorOf([] { LateBound().get(L"Name"); }).code()), 0x800A005BU);
}

TEST_F(LateBoundTest, AResultOfTheWrongKindNamesTheMember) {
  const AutomationError error = errorOf([&] { object_.integer(L"Name"); });
  EXPECT_EQ(error.code(), DISP_E_TYPEMISMATCH);
  EXPECT_TRUE(error.description().starts_with("Callee.Object.Name: ")) << error.description();
}

TEST_F(LateBoundTest, AnErrorOfTheDefaultMemberOfAResultIsPassedOn) {
  const auto expectItsError = [](const AutomationError& error) {
    EXPECT_EQ(error.code(), E_ACCESSDENIED);
    EXPECT_EQ(error.source(), "Wary");
    EXPECT_EQ(error.description(), "The value is not to be had.");
  };
  expectItsError(errorOf([&] { object_.text(L"Wary"); }));
  expectItsError(errorOf([&] { object_.integer(L"Wary"); }));
  expectItsError(errorOf([&] { object_.flag(L"Wary"); }));
}

}  // namespace
}  // namespace quillon::automation
