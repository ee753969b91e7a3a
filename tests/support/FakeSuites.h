// A host's suites for tests of the shell: a list of documents, descriptors that are really kept,
// notifiers, blocks, and a place for every error that a host can answer with. Nothing of a host's
// behaviour is imitated beyond that: an event that is played is recorded, and the test says what
// comes of it.
//
//   FakeSuites host;
//   host.documents = {{1, "/a.psd"}};
//   host.readErrors[keyFileReference] = 7;     // every read of this property fails
//   auto* opened = host.NewDescriptor();
//   ...
//   host.Deliver(eventOpen, opened);
//
// One at a time.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "sdk/HostActions.h"
#include "sdk/HostBasic.h"

class FakeSuites {
 public:
  struct Document {
    int id = 0;
    std::string path;  // what its alias leads to; empty without a file
    bool dirty = false;
  };
  struct PlayedEvent {
    DescriptorEventID event;
    int32_t options;
    std::string aliasPath;        // of "null"
    DescriptorEnumID saving = 0;  // of "Svng"
    int selected = 0;             // identifier of the reference "null"
  };

  FakeSuites();
  ~FakeSuites();
  FakeSuites(const FakeSuites&) = delete;
  FakeSuites& operator=(const FakeSuites&) = delete;

  // The suites as tables, for what a test builds by hand.
  const SPBasicSuite* Basic() const;
  const PSActionDescriptorProcs& Descriptors() const;
  const PSActionListProcs& Lists() const;
  const PSAliasProcs& Aliases() const;
  DescriptorTypeID TypeID(const std::string& stringID);

  // A message as of an entry call.
  SPMessageData* Message() { return &mMessage; }
  // Lent until the end of this object.
  PIActionDescriptor NewDescriptor();
  // The descriptor of an open event; of a save event; of a make event.
  PIActionDescriptor OpenDescriptor(const std::string& path);
  PIActionDescriptor SaveDescriptor(bool withDocumentID);
  PIActionDescriptor MakeEventDescriptor(DescriptorClassID type);
  // Calls the notifier that is registered for the event, if there is one.
  void Deliver(DescriptorEventID event, PIActionDescriptor descriptor);

  std::vector<Document> documents;  // index 1 is the first
  int currentIndex = 0;             // 0: none
  std::vector<std::string> fontList;

  std::set<std::string> missingSuites;                  // by name
  std::map<DescriptorKeyID, SPErr> readErrors;          // by property
  std::map<DescriptorEventID, std::int16_t> addErrors;  // by event
  std::map<DescriptorEventID, std::int16_t> removeErrors;
  SPErr allocateError = 0;
  SPErr playError = 0;
  std::function<void(const PlayedEvent&)> onPlay;

  std::vector<PlayedEvent> played;
  std::vector<DescriptorEventID> notifiers;  // registered, in order
  std::map<DescriptorEventID, PSEventNotifyProc> handlers;
  std::size_t reads = 0;  // of properties
  int suitesHeld = 0;     // acquired and not released
  int blocksHeld = 0;
  std::size_t ObjectsAlive() const;  // descriptors, lists, references and aliases

 private:
  SPMessageData mMessage{};
  std::vector<PIActionDescriptor> mLent;
};
