#include "component/module_state.h"

#include <atomic>
#include <new>
#include <utility>

namespace quillon::component {

namespace {

struct Slot {
  std::shared_ptr<ModuleState> state;
  ULARGE_INTEGER spyCookie{};
  bool spied = false;
};

DWORD slotIndex = TLS_OUT_OF_INDEXES;
std::atomic<long> slotCount = 0;

Slot* currentSlot() noexcept {
  return static_cast<Slot*>(TlsGetValue(slotIndex));
}

void dropSlot() noexcept {
  const std::unique_ptr<Slot> slot(currentSlot());
  if (!slot) return;
  // First out of sight, then released: what is released may call back into the library.
  TlsSetValue(slotIndex, nullptr);
  if (slot->spied) CoRevokeInitializeSpy(slot->spyCookie);
  slot->state.reset();
  --slotCount;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // a static object that nobody deletes
// Hears when a thread leaves COM. One serves all threads and lives as long as the library, so it counts no references.
class ThreadEnd : public IInitializeSpy {
 public:
  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (id != IID_IUnknown && id != __uuidof(IInitializeSpy)) return E_NOINTERFACE;
    *object = this;
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP PreInitialize(DWORD /*flags*/, DWORD /*references*/) override { return S_OK; }
  STDMETHODIMP PostInitialize(HRESULT code, DWORD /*flags*/, DWORD /*references*/) override { return code; }
  // Before the last one: afterwards the apartment's objects are gone.
  STDMETHODIMP PreUninitialize(DWORD references) override {
    if (references == 1) dropSlot();
    return S_OK;
  }
  STDMETHODIMP PostUninitialize(DWORD /*references*/) override { return S_OK; }
};
#pragma GCC diagnostic pop

ThreadEnd threadEnd;

}  // namespace

std::shared_ptr<ModuleState> threadState() {
  if (const Slot* slot = currentSlot()) return slot->state;
  auto slot = std::make_unique<Slot>();
  slot->state = std::make_shared<ModuleState>();
  if (!TlsSetValue(slotIndex, slot.get())) throw std::bad_alloc();
  // Only a thread that is in COM can be watched; one that is not has nothing in an apartment either.
  slot->spied = SUCCEEDED(CoRegisterInitializeSpy(&threadEnd, &slot->spyCookie));
  ++slotCount;
  return slot.release()->state;
}

bool threadStatesMayGo() noexcept {
  const Slot* slot = currentSlot();
  if (!slot) return slotCount == 0;
  const Module& module = slot->state->module();
  return slotCount == 1 && !module.business && !module.session;
}

bool startThreadStates() noexcept {
  slotIndex = TlsAlloc();
  return slotIndex != TLS_OUT_OF_INDEXES;
}

void forgetThreadState() noexcept {
  if (!currentSlot()) return;
  // Under the loader's lock no object of an apartment may be called, not even to release it.
  TlsSetValue(slotIndex, nullptr);
  --slotCount;
}

void endThreadStates() noexcept {
  // This thread's alone: those of others are in apartments that cannot be entered from here.
  dropSlot();
  TlsFree(std::exchange(slotIndex, TLS_OUT_OF_INDEXES));
}

}  // namespace quillon::component
