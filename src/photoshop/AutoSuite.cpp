#include "photoshop/AutoSuite.h"

#include <array>

const SPBasicSuite* sSPBasic = nullptr;

constinit AutoSuite<PSActionDescriptorProcs> sPSActionDescriptor(kPSActionDescriptorSuite,
                                                                 kPSActionDescriptorSuiteVersion);
constinit AutoSuite<PSActionControlProcs> sPSActionControl(kPSActionControlSuite,
                                                           kPSActionControlSuiteVersion);
constinit AutoSuite<PSActionReferenceProcs> sPSActionReference(kPSActionReferenceSuite,
                                                               kPSActionReferenceSuiteVersion);
constinit AutoSuite<PSActionListProcs> sPSActionList(kPSActionListSuite, kPSActionListSuiteVersion);
constinit AutoSuite<PSAliasProcs> sPSAlias(kPSAliasSuite, kPSAliasSuiteVersion);

namespace {

constexpr std::array<AutoSuiteBase*, 5> kAllSuites = {
    &sPSActionDescriptor, &sPSActionControl, &sPSActionReference, &sPSActionList, &sPSAlias};

}  // namespace

SPErr AutoSuiteBase::AcquireSuite(bool throwOnError) {
  if (mSuite) return 0;
  const void* suite = nullptr;
  mError = sSPBasic ? sSPBasic->AcquireSuite(mName, mVersion, &suite) : kSPBadParameterError;
  if (mError == 0 && !suite) mError = kSPSuiteNotFoundError;
  if (mError == 0) {
    mSuite = suite;
  } else if (throwOnError) {
    throw static_cast<unsigned int>(mError);
  }
  return mError;
}

void AutoSuiteBase::ReleaseSuite() {
  if (!mSuite) return;
  mSuite = nullptr;
  if (sSPBasic) sSPBasic->ReleaseSuite(mName, mVersion);
}

void PIUSuitesRelease() {
  for (AutoSuiteBase* suite : kAllSuites) suite->ReleaseSuite();
}
