// Who turned which font on, and the copies that follow from it. The unit is the file: it goes on
// with its first activation, and off, with all its faces, when the last one goes.
//
// One face of a PostScript name is on at a time: a file that goes on turns others off that hold one
// of its names, unless the user turned them on.
//
// Threads: main. The store is locked for the length of an operation.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "agent/Activator.h"
#include "agent/Clients.h"
#include "agent/LibraryStore.h"
#include "agent/library/AgentClient.h"

namespace Nodrix {

// Faces whose state changed, to be told to everybody.
struct ActivationChanges {
  std::vector<std::uint32_t> activated, deactivated, missing;
  std::vector<std::string> problems;  // for the log
};

class ActivationBooks {
 public:
  // All are borrowed.
  ActivationBooks(LibraryStore& store, Activator& activator, const Clients& clients)
      : mStore(store), mActivator(activator), mClients(clients) {}

  // A system font is on as it is. An activation of mode eUser belongs to the user and outlives
  // `client`.
  ActivationOutcome Activate(std::span<const std::uint32_t> fonts, ActivationMode mode,
                             const ClientIdentity& client, ActivationChanges& changes);
  // Gives activations back. A font that another connected client's document uses goes over to that
  // client and stays on.
  void Deactivate(std::span<const std::uint32_t> fonts, ActivationMode mode,
                  const ClientIdentity& client, ActivationChanges& changes);
  // All that this process turned on; the same rule.
  void ReleaseProcess(std::int64_t pid, ActivationChanges& changes);
  // What an earlier process of the same number left.
  void ReleaseFormer(const ClientIdentity& client, ActivationChanges& changes);
  // All automatic activations, whoever may still use them.
  void ReleaseAutomatic(ActivationChanges& changes);
  // Turns all files of a folder off, whoever turned them on.
  void ReleaseFolder(std::int64_t folder, ActivationChanges& changes);
  // Files that have become the system's need no copy any more.
  void ReleaseSystemFiles(ActivationChanges& changes);

  // Brings table, folder and processes in line after a start.
  void Reconcile(ActivationChanges& changes);
  // Living or not, the processes with activations that are not connected.
  std::vector<ClientIdentity> Unconnected();
  std::vector<ActiveFont> Status();

 private:
  struct Face {
    std::uint32_t id = 0;
    std::string name;
    std::int32_t index = 0;
  };
  struct File {
    std::int64_t id = 0;
    std::uint32_t workgroup = 0;
    std::string source, name;
    bool missing = false;
    std::string path;    // of the copy
    bool wasOn = false;  // before this operation
    std::vector<Face> faces;
    std::vector<std::uint32_t> asked;  // the faces that were asked for
    bool failed = false;
    bool shadowed = false;
  };
  using Files = std::vector<File>;

  std::optional<File> FileOfFont(std::uint32_t font);
  std::vector<Face> FacesOf(std::int64_t file);
  std::vector<std::uint32_t> FaceIDs(std::int64_t file);
  std::vector<std::int64_t> FileIDs(Query query);
  Files FilesToTurnOn(std::span<const std::uint32_t> fonts, ActivationOutcome& outcome);
  void InstallCopies(Files& files, ActivationChanges& changes);
  void RefuseDoubles(Files& files, ActivationChanges& changes);
  void LookForThem(Files& files, ActivationChanges& changes);
  void Fail(File& file, std::string problem, ActivationChanges& changes);
  bool MakeRoomFor(File& file, ActivationChanges& changes);
  void Record(Files& files, ActivationMode mode, const ClientIdentity& client,
              ActivationChanges& changes);
  void GiveBack(std::int64_t file, ActivationMode mode, std::int64_t pid,
                ActivationChanges& changes);
  void TurnOff(std::int64_t file, ActivationChanges& changes);
  std::optional<std::string> CopyOf(std::int64_t file);
  bool Insert(std::int64_t file, ActivationMode mode, const ClientIdentity& client,
              const std::string& path);

  LibraryStore& mStore;
  Activator& mActivator;
  const Clients& mClients;
};

}  // namespace Nodrix
