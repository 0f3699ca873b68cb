// Automation objects for tests: they write down every call that reaches them, and can let any one of them fail.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "automation/dispatch_object.h"

namespace quillon::component::test {

// What happened, in order, over all objects of one test. A call that is due to fail is written down first.
class Recorder {
 public:
  std::vector<std::string> calls;
  // Which call is to fail, from 1; 0 for none.
  std::size_t failAt = 0;
  // Which call is to be interrupted, from 1; 0 for none. `interruption` runs once, when that call has been written down and
  // before it is answered.
  std::size_t interruptAt = 0;
  std::function<void()> interruption;
  // How many objects were released for the last time on another thread than their own.
  int releasedElsewhere = 0;

  // The failure of a call that is due to fail: none of the codes that this library makes itself.
  static constexpr HRESULT failure = static_cast<HRESULT>(0x80040E14U);

  // Writes a call down. Throws AutomationError {failure, "Fake", "refused: " and the call} when it is due to fail.
  void record(const std::string& call);
};

// An object whose members are set up by the test. A call is written down as "Name.Member", with its arguments in
// brackets or the assigned value behind " = ". Texts are quoted, objects shown as <Name>, references marked with "ref
// ".
class FakeObject : public automation::DispatchBase {
 public:
  using Handler = std::function<automation::Variant(automation::Call&)>;

  // `recorder` must outlive the object.
  FakeObject(Recorder& recorder, std::string name) : recorder_(recorder), name_(std::move(name)) {}
  ~FakeObject() override {
    if (GetCurrentThreadId() != thread_) ++recorder_.releasedElsewhere;
  }

  // A member that answers with what `handler` gives.
  FakeObject& on(const wchar_t* member, Handler handler, DISPID id = DISPID_UNKNOWN);
  // A property that keeps what is written to it.
  FakeObject& property(const wchar_t* member, automation::Variant value = {}, DISPID id = DISPID_UNKNOWN);
  // Takes a member out again.
  FakeObject& without(const wchar_t* member);
  // The value that a property holds now.
  const automation::Variant& value(const std::wstring& member) const { return values_.at(member); }

  const std::string& name() const { return name_; }

  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* info, UINT* badArgument) override;

 private:
  struct Row {
    std::wstring name;
    DISPID id;
    Handler handler;
  };

  std::size_t memberCount() const override { return rows_.size(); }
  MemberInfo member(std::size_t index) const override;
  automation::Variant run(std::size_t index, automation::Call& call) override;

  Recorder& recorder_;
  std::string name_;
  DWORD thread_ = GetCurrentThreadId();
  std::deque<Row> rows_;
  DISPID nextId_ = 1000;
  std::map<std::wstring, automation::Variant> values_;
  const DISPPARAMS* parameters_ = nullptr;
};

// A value as the records show it.
std::string shown(const VARIANT& value);

}  // namespace quillon::component::test
