#include "foundation/GScopedLock.h"

TModuleErrorCode GLockStrategy::Unlock(GLockable& lockable) { return lockable.Unlock(); }

TModuleErrorCode GBlockingLockStrategy::Lock(GLockable& lockable) { return lockable.Lock(); }
