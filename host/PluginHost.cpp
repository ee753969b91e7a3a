#include "host/PluginHost.h"

#include "host/PluginHostSuites.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"

namespace {

constexpr std::int32_t kNoID = 0;

PIActionDescriptorData DescriptorOf(const HostDocument& document) {
  PIActionDescriptorData descriptor;
  descriptor.Put(keyNull, ActionItem{PIAliasData{document.path}});
  descriptor.Put(keyDocumentID, ActionItem{document.id});
  return descriptor;
}

}  // namespace

PluginHost::PluginHost(Options options)
    : mOptions(std::move(options)), mWindows(mOptions.showWindow) {
  PluginHostSuites::sHost = this;
}

PluginHost::~PluginHost() {
  if (PluginHostSuites::sHost == this) PluginHostSuites::sHost = nullptr;
}

bool PluginHost::LoadPlugin(const std::string& path, std::string& error) {
  mBundle = Platform::Current().GetBundles().Open(path);
  if (!mBundle) {
    error = path + " is no plug-in bundle, or somebody else could have changed it";
    return false;
  }
  void* symbol = mBundle->LookUpSymbol(kAutoPluginMainSymbol);
  if (symbol == nullptr) {
    error = path + " can't be loaded, or has no entry point " kAutoPluginMainSymbol;
    return false;
  }
  mEntry = reinterpret_cast<AutoPluginMainProc>(symbol);
  return true;
}

SPErr PluginHost::Call(const char* caller, const char* selector, PIActionDescriptor parameters) {
  if (mEntry == nullptr) return kSPBadParameterError;
  SPMessageData message = {};
  message.globals = mGlobals;
  message.basic = &PluginHostSuites::Basic();
  message.actionParameters = parameters;
  const SPErr result = mEntry(caller, selector, &message);
  mGlobals = message.globals;
  return result;
}

std::int32_t PluginHost::OpenDocument(const std::string& path) {
  HostDocument* existing = mDocuments.FindByPath(path);
  const bool isNew = existing == nullptr;
  const std::int32_t id = isNew ? mDocuments.Add(path).id : existing->id;
  mDocuments.BringToFront(id);
  if (isNew) OrderMissingFontsWindow(path);
  // A plug-in may have closed the document from within the window.
  if (const HostDocument* document = mDocuments.Find(id))
    Deliver(eventOpen, DescriptorOf(*document));
  return id;
}

void PluginHost::OrderMissingFontsWindow(const std::string& path) {
  if (!mOptions.findMissingFonts) return;
  const std::vector<std::string> missing = mOptions.findMissingFonts(path);
  if (missing.empty()) return;
  HostWindow window;
  window.title = "Missing Fonts";
  for (const std::string& name : missing) window.text += (window.text.empty() ? "" : ", ") + name;
  window.subviews = {kHostSubviewText, kHostSubviewOther, kHostSubviewButton, kHostSubviewButton};
  mWindows.Order(window);
}

std::int32_t PluginHost::NewDocument() {
  const HostDocument& document = mDocuments.Add({});
  PIActionDescriptorData descriptor;
  descriptor.Put(keyNew,
                 ActionItem{ActionObject{classDocument,
                                         std::make_shared<const PIActionDescriptorData>(), false}});
  const std::int32_t id = document.id;
  Deliver(eventMake, descriptor);
  return id;
}

bool PluginHost::CloseDocument(std::int32_t id) {
  if (!mDocuments.Remove(id)) return false;
  PIActionDescriptorData descriptor;
  descriptor.Put(keyDocumentID, ActionItem{id});
  Deliver(eventClose, descriptor);
  return true;
}

bool PluginHost::SaveDocument(std::int32_t id, const std::string& newPath) {
  if (!mDocuments.BringToFront(id)) return false;
  PIActionDescriptorData descriptor;
  descriptor.Put(keyDocumentID, ActionItem{id});
  Deliver(eventSave, descriptor);
  HostDocument* document = mDocuments.Find(id);
  if (document == nullptr) return false;
  const std::string path = newPath.empty() ? document->path : newPath;
  if (path.empty()) return false;
  const bool written = !mOptions.writeDocument || mOptions.writeDocument(*document, path);
  if (written) {
    document->path = path;
    document->dirty = false;
  }
  Deliver(eventSave, descriptor);
  return written;
}

void PluginHost::Deliver(DescriptorEventID event, PIActionDescriptorData descriptor,
                         std::int32_t options) {
  // A notifier may add or remove notifiers.
  const std::vector<Notifier> notifiers = mNotifiers;
  for (const Notifier& notifier : notifiers) {
    if (notifier.event == event) notifier.procedure(event, &descriptor, options, notifier.userData);
  }
}

SPErr PluginHost::Get(PIActionDescriptor* out, const PIActionReferenceData& reference) {
  using Form = PIActionReferenceData::Form;
  if (reference.steps.size() != 2 || reference.steps[0].form != Form::eProperty) {
    return kPSNoSuchElementError;
  }
  const DescriptorKeyID key = reference.steps[0].value;
  const auto& owner = reference.steps[1];
  auto result = std::make_unique<PIActionDescriptorData>();
  const auto& documents = mDocuments.Documents();
  if (owner.type == classApplication) {
    if (key != keyNumberOfDocuments) return kPSItemMissingError;
    result->Put(key, ActionItem{static_cast<std::int32_t>(documents.size())});
    *out = result.release();
    return 0;
  }
  const HostDocument* document = nullptr;
  if (owner.type == classDocument && owner.form == Form::eEnumerated) {
    document = mDocuments.Current();
  } else if (owner.type == classDocument && owner.form == Form::eIdentifier) {
    document = mDocuments.Find(static_cast<std::int32_t>(owner.value));
  } else if (owner.type == classDocument && owner.form == Form::eIndex && owner.value >= 1 &&
             owner.value <= documents.size()) {
    document = &documents[owner.value - 1];
  }
  if (document == nullptr) return kPSNoSuchElementError;
  if (key == keyDocumentID) {
    result->Put(key, ActionItem{document->id});
  } else if (key == keyFileReference) {
    result->Put(key, ActionItem{PIAliasData{document->path}});
  } else if (key == keyIsDirty) {
    result->Put(key, ActionItem{document->dirty});
  } else {
    return kPSItemMissingError;
  }
  *out = result.release();
  return 0;
}

SPErr PluginHost::Play(DescriptorEventID event, const PIActionDescriptorData* descriptor) {
  const ActionItem* target = descriptor ? descriptor->Find(keyNull) : nullptr;
  switch (event) {
    case eventOpen: {
      const auto* alias = target ? std::get_if<PIAliasData>(&target->value) : nullptr;
      return alias && OpenDocument(alias->path) != kNoID ? 0 : kPSEventFailedError;
    }
    case eventClose: {
      const HostDocument* document = mDocuments.Current();
      return document && CloseDocument(document->id) ? 0 : kPSEventFailedError;
    }
    case eventSelect: {
      const auto* reference = target ? std::get_if<PIActionReferenceData>(&target->value) : nullptr;
      const bool found =
          reference && reference->steps.size() == 1 &&
          mDocuments.BringToFront(static_cast<std::int32_t>(reference->steps[0].value));
      return found ? 0 : kPSEventFailedError;
    }
    default:
      return kPSEventFailedError;
  }
}
