// The host's suites, acquired when they are first used and all released at the end of every entry
// call. Nobody keeps a suite's pointer over calls: one asks the suite's object each time.
//
// Errors: a suite that can't be acquired at the moment of use throws the host's error as an
// unsigned int, which is caught at the entry point and at the borders of handlers.
//
// Threads: [main-thread].
#pragma once

#include <utility>

#include "sdk/HostActions.h"
#include "sdk/HostBasic.h"

// The host's basic suite, out of the message of the latest entry call; lent by the host.
extern const SPBasicSuite* sSPBasic;

class AutoSuiteBase {
 public:
  constexpr AutoSuiteBase(const char* name, int32_t version) : mName(name), mVersion(version) {}
  AutoSuiteBase(const AutoSuiteBase&) = delete;
  AutoSuiteBase& operator=(const AutoSuiteBase&) = delete;

  // 0, or the host's error ("Parm" without a basic suite), which is thrown if asked for.
  SPErr AcquireSuite(bool throwOnError);
  void ReleaseSuite();
  // Of the last acquisition.
  SPErr Error() const { return mError; }

 protected:
  const void* mSuite = nullptr;  // null until acquired

 private:
  const char* mName;
  int32_t mVersion;
  SPErr mError = 0;
};

template <typename T>
class AutoSuite : public AutoSuiteBase {
 public:
  using AutoSuiteBase::AutoSuiteBase;

  // Acquires when needed; throws.
  const T* operator->() {
    if (!mSuite) AcquireSuite(true);
    return static_cast<const T*>(mSuite);
  }
};

extern AutoSuite<PSActionDescriptorProcs> sPSActionDescriptor;
extern AutoSuite<PSActionControlProcs> sPSActionControl;
extern AutoSuite<PSActionReferenceProcs> sPSActionReference;
extern AutoSuite<PSActionListProcs> sPSActionList;
extern AutoSuite<PSAliasProcs> sPSAlias;

// Releases every suite that is held.
void PIUSuitesRelease();

// Owns an object of the host and frees it with its suite.
template <typename Handle, typename Procs, AutoSuite<Procs>& suite,
          SPErr (*Procs::*release)(Handle)>
class HostObject {
 public:
  HostObject() = default;
  explicit HostObject(Handle handle) : mHandle(handle) {}
  HostObject(HostObject&& other) noexcept : mHandle(std::exchange(other.mHandle, nullptr)) {}
  HostObject& operator=(HostObject&& other) noexcept {
    std::swap(mHandle, other.mHandle);
    return *this;
  }
  ~HostObject() {
    if (mHandle && suite.AcquireSuite(false) == 0) (suite.operator->()->*release)(mHandle);
  }

  Handle Get() const { return mHandle; }
  // For an out parameter; the object is empty.
  Handle* Out() { return &mHandle; }
  explicit operator bool() const { return mHandle != nullptr; }

 private:
  Handle mHandle = nullptr;
};

using OwnedDescriptor = HostObject<PIActionDescriptor, PSActionDescriptorProcs, sPSActionDescriptor,
                                   &PSActionDescriptorProcs::Free>;
using OwnedReference = HostObject<PIActionReference, PSActionReferenceProcs, sPSActionReference,
                                  &PSActionReferenceProcs::Free>;
using OwnedList =
    HostObject<PIActionList, PSActionListProcs, sPSActionList, &PSActionListProcs::Free>;
using OwnedAlias = HostObject<AliasHandle, PSAliasProcs, sPSAlias, &PSAliasProcs::DisposeAlias>;
