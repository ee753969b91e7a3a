#include "photoshop/DescriptorWalk.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>

#include "foundation/PluginLog.h"
#include "photoshop/AutoSuite.h"
#include "photoshop/HostText.h"

namespace PhotoshopFontUtils {

std::unique_ptr<PSFU_FreeZone> sFreeZone;

void PSFU_FreeZone::Add(const char* prefix, long value) {
  std::array<char, 64> text{};
  // NOLINTNEXTLINE(performance-no-int-to-ptr): only its digits are wanted
  const void* address = reinterpret_cast<void*>(static_cast<std::intptr_t>(value));
  std::snprintf(text.data(), text.size(), "%s%p", prefix, address);
  mEntries.emplace_back(text.data());
}

void PSFU_FreeZone::Add(PIActionReference reference) {
  Add("ref", static_cast<long>(reinterpret_cast<std::intptr_t>(reference)));
}

void PSFU_FreeZone::Add(PIActionList list) {
  Add("list", static_cast<long>(reinterpret_cast<std::intptr_t>(list)));
}

void PSFU_FreeZone::Add(PIActionDescriptor descriptor) {
  Add("desc", static_cast<long>(reinterpret_cast<std::intptr_t>(descriptor)));
}

void PSFU_FreeZone::Add(AliasHandle) { mEntries.emplace_back("aliasValue"); }

namespace {

constexpr std::uint32_t kFirstFourCharCode = 0x20202020;  // below: made at run time

class Walk {
 public:
  Walk(std::vector<std::string>& fontNames, std::vector<std::string>& fileReferences, int& count)
      : mFontNames(fontNames), mFileReferences(fileReferences), mCount(count) {
    if (sPSActionControl->StringIDToTypeID("fontPostScriptName", &mFontNameKey) != 0) {
      mFontNameKey = 0;
    }
  }

  void ProcessInfoFromDescriptor(PIActionDescriptor descriptor, int depth);
  void ProcessInfoFromList(PIActionList list, int depth);

 private:
  void ProcessValue(PIActionDescriptor descriptor, DescriptorKeyID key, DescriptorTypeID type,
                    int depth);
  void ProcessText(PIActionDescriptor descriptor, DescriptorKeyID key);
  static std::string NameForLog(DescriptorKeyID key);

  std::vector<std::string>& mFontNames;
  std::vector<std::string>& mFileReferences;
  int& mCount;
  DescriptorTypeID mFontNameKey = 0;
};

std::string Walk::NameForLog(DescriptorKeyID key) {
  if (key < kFirstFourCharCode) {
    std::array<char, 1000> name{};
    if (sPSActionControl->TypeIDToStringID(key, name.data(), name.size() - 1) == 0 && name[0]) {
      return name.data();
    }
  }
  return "'" + FourCharTypeToStdString(key) + "'";
}

void Walk::ProcessInfoFromDescriptor(PIActionDescriptor descriptor, int depth) {
  if (!descriptor || depth > kMaxDescriptorDepth) return;
  std::uint32_t entries = 0;
  if (sPSActionDescriptor->GetCount(descriptor, &entries) != 0) return;
  sFreeZone->Add(descriptor);
  for (std::uint32_t index = 0; index < entries; ++index) {
    DescriptorKeyID key = 0;
    DescriptorTypeID type = 0;
    if (sPSActionDescriptor->GetKey(descriptor, index, &key) != 0) continue;
    if (sPSActionDescriptor->GetType(descriptor, key, &type) != 0) continue;
    OutputFormattedDebugString(" %d: %s  %s  %s", static_cast<int>(index),
                               FourCharTypeToStdString(key).c_str(),
                               FourCharTypeToStdString(type).c_str(), NameForLog(key).c_str());
    ProcessValue(descriptor, key, type, depth);
  }
}

void Walk::ProcessValue(PIActionDescriptor descriptor, DescriptorKeyID key, DescriptorTypeID type,
                        int depth) {
  DescriptorClassID childClass = 0;
  if (type == kTypeGlobalObject || type == kTypeObject) {
    OwnedDescriptor child;
    const auto get =
        type == kTypeObject ? sPSActionDescriptor->GetObject : sPSActionDescriptor->GetGlobalObject;
    if (get(descriptor, key, &childClass, child.Out()) != 0) return;
    ProcessInfoFromDescriptor(child.Get(), depth + 1);
  } else if (type == kTypeValueList) {
    PIActionList list = nullptr;  // stays the host's: it is not freed here
    if (sPSActionDescriptor->GetList(descriptor, key, &list) != 0) return;
    ProcessInfoFromList(list, depth + 1);
  } else if (type == kTypeChar) {
    ProcessText(descriptor, key);
  }
}

void Walk::ProcessText(PIActionDescriptor descriptor, DescriptorKeyID key) {
  std::string text;
  if (ReadDescriptorText(descriptor, key, text) != 0) return;
  if (key == mFontNameKey && mFontNameKey != 0) {
    ++mCount;
    if (std::find(mFontNames.begin(), mFontNames.end(), text) != mFontNames.end()) return;
    mFontNames.push_back(text);
    OutputFormattedDebugString("Added font name '%s'", text.c_str());
  } else if (key == keyFileReference) {
    mFileReferences.push_back(text);
    OutputFormattedDebugString("Added file reference '%s'", text.c_str());
  }
}

// A text in a list has no key, so that it can't be told for a font name: a list only leads on.
void Walk::ProcessInfoFromList(PIActionList list, int depth) {
  if (!list || depth > kMaxDescriptorDepth) return;
  std::uint32_t entries = 0;
  if (sPSActionList->GetCount(list, &entries) != 0) return;
  sFreeZone->Add(list);
  for (std::uint32_t index = 0; index < entries; ++index) {
    DescriptorTypeID type = 0;
    if (sPSActionList->GetType(list, index, &type) != 0) continue;
    DescriptorClassID childClass = 0;
    if (type == kTypeGlobalObject || type == kTypeObject) {
      OwnedDescriptor child;
      const auto get =
          type == kTypeObject ? sPSActionList->GetObject : sPSActionList->GetGlobalObject;
      if (get(list, index, &childClass, child.Out()) != 0) continue;
      ProcessInfoFromDescriptor(child.Get(), depth + 1);
    } else if (type == kTypeValueList) {
      PIActionList inner = nullptr;  // as above
      if (sPSActionList->GetList(list, index, &inner) != 0) continue;
      ProcessInfoFromList(inner, depth + 1);
    }
  }
}

}  // namespace

void ProcessDescriptor(DescriptorEventID, PIActionDescriptor descriptor,
                       std::vector<std::string>& fontNames,
                       std::vector<std::string>& fileReferences, int& count) {
  if (sPSActionDescriptor.AcquireSuite(false) != 0 || sPSActionList.AcquireSuite(false) != 0 ||
      sPSActionReference.AcquireSuite(false) != 0 || sPSActionControl.AcquireSuite(false) != 0) {
    return;
  }
  sFreeZone = std::make_unique<PSFU_FreeZone>();
  struct ZoneEnd {
    ~ZoneEnd() { sFreeZone.reset(); }
  } zoneEnd;
  Walk(fontNames, fileReferences, count).ProcessInfoFromDescriptor(descriptor, 0);
}

}  // namespace PhotoshopFontUtils
