#include "automation/class_factory.h"

#include <gtest/gtest.h>

#include "automation/class_lookup.h"
#include "automation/dispatch_object.h"
#include "frame/automation_error.h"
#include "tests/automation/com_scope.h"

namespace quillon::automation {
namespace {

class Stand : public DispatchObject<Stand> {
 public:
  static std::span<const Member> members() {
    static constexpr Member rows[] = {{L"Name", 1, readable, 0, 0, &Stand::name}};
    return rows;
  }

 private:
  Variant name(Call& /*call*/) { return "stand-in"; }
};

const NamedClass unregistered = {L"QuillonTest.NeverRegistered",
                                 {0x5d0f1f2e, 0x7c11, 0x4b0e, {0x9a, 0x11, 0x30, 0x52, 0x9e, 0x6f, 0x10, 0x02}}};

TEST(ClassFactory, RefusesAggregation) {
  const ComPtr<ClassFactory> factory = makeObject<ClassFactory>([] { return makeObject<Stand>(); });
  void* object = &object;
  EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
}

TEST(ClassFactory, GivesTheInterfaceThatIsAskedFor) {
  const ComPtr<ClassFactory> factory = makeObject<ClassFactory>([] { return makeObject<Stand>(); });
  ComPtr<IDispatch> object;
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(object.out())), S_OK);
  EXPECT_TRUE(object);
  void* none = &none;
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IPersist, &none), E_NOINTERFACE);
  EXPECT_EQ(none, nullptr);
}

TEST(ClassFactory, AMakerThatThrowsFailsTheCreation) {
  const ComPtr<ClassFactory> factory =
      makeObject<ClassFactory>([]() -> ComPtr<IUnknown> { throw AutomationError(hresult::fail, "maker", "no"); });
  void* object = &object;
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, &object), E_FAIL);
  EXPECT_EQ(object, nullptr);
}

TEST(ClassFactory, CountsItsLocks) {
  const ComPtr<ClassFactory> factory = makeObject<ClassFactory>([] { return makeObject<Stand>(); });
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(ClassFactory::locks(), 1);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  EXPECT_EQ(ClassFactory::locks(), 0);
}

TEST(ClassLookup, AStandInIsFoundForAProgIdThatIsNotRegistered) {
  const test::ComScope apartment;
  {
    const InProcessClass standIn(unregistered.standIn, [] { return makeObject<Stand>(); });
    EXPECT_EQ(createObject(unregistered).text(L"Name"), "stand-in");
  }
  EXPECT_FALSE(tryCreateObject(unregistered));
}

TEST(ClassLookup, AClassThatIsNotThereIsNamed) {
  const test::ComScope apartment;
  try {
    createObject(unregistered);
    FAIL() << "nothing was thrown";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), REGDB_E_CLASSNOTREG);
    EXPECT_TRUE(error.description().starts_with("QuillonTest.NeverRegistered is not registered"))
        << error.description();
  }
}

// ADO's own ProgIDs are registered everywhere; a class of this process comes before the machine's.
TEST(ClassLookup, AClassOfThisProcessComesBeforeTheMachines) {
  const test::ComScope apartment;
  const NamedClass connection = {L"ADODB.Connection", unregistered.standIn};
  CLSID registered{};
  ASSERT_EQ(CLSIDFromProgID(connection.progId, &registered), S_OK);
  EXPECT_EQ(classIdOf(connection), registered);
  const InProcessClass standIn(registered, [] { return makeObject<Stand>(); });
  EXPECT_EQ(createObject(connection).text(L"Name"), "stand-in");
}

}  // namespace
}  // namespace quillon::automation
