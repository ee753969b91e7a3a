// The reference rules once more, plain and slow, with a font manager that does as it is told: what
// ought to be asked, answered, turned on and off, and counted.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

struct TrackerModel {
  using ID = std::uint32_t;
  struct Font {
    std::string name;
    bool isOn = false;
    bool isOurs = true;  // not taken over by the user
  };
  struct Match {
    ID id;
    bool isActive;  // as its record says, which may be out of date
  };
  struct Holding {
    int references = 0;
    bool wasOn = false;
  };
  static constexpr int kGone = 1000;
  static constexpr int kThrows = -9999;

  // The world.
  std::map<ID, Font> fonts;
  std::set<ID> refused, unable;
  std::pair<std::string, int> failure;  // an operation or a call, and its code
  bool isConnected = true, hasBatches = true;
  // The books.
  std::map<ID, Holding> holdings;
  std::map<std::string, std::vector<ID>> documents;
  // What came of the last step.
  std::vector<std::string> calls;
  std::vector<ID> turnedOff;

  int Ask(const std::string& operation, const std::string& arguments = "") {
    calls.push_back(operation + "(" + arguments + ")");
    if (failure.first != operation && failure.first != calls.back()) return 0;
    if (failure.second == kThrows) throw std::runtime_error(operation);
    return failure.second;
  }
  void Announce(std::size_t count) { Ask("SetCountForLongOperations", std::to_string(count)); }
  static std::string List(const std::vector<ID>& ids) {
    std::string list;
    for (const ID id : ids) list += (list.empty() ? "" : ",") + std::to_string(id);
    return list;
  }

  // A font that a batch holds already is passed over; of one name only the first is turned on, and
  // none where one is on; all the others are held, asked for or not. A match of no document in
  // particular is held by its sub-documents.
  int Activate(const std::string& document, const std::vector<Match>& matches,
               const std::vector<std::string>& subDocuments) {
    std::vector<ID> batch;
    std::set<std::string> takenNames;
    for (const auto& [id, isActive] : matches) {
      if (std::ranges::count(batch, id) != 0) continue;
      if (takenNames.insert(fonts[id].name).second && !isActive) batch.push_back(id);
      for (const std::string& holder : document.empty() ? subDocuments : std::vector{document}) {
        holdings.try_emplace(id, Holding{0, isActive}).first->second.references += 1;
        documents[holder].push_back(id);
      }
    }
    if (const int code = Ask("ActivateFontsByID", List(batch))) return code;
    for (const ID id : batch) fonts[id].isOn |= !refused.contains(id) && !unable.contains(id);
    if (std::ranges::any_of(batch, [this](ID id) { return refused.contains(id); })) {
      Close(document, true);
    }
    return 0;
  }

  int Open(const std::string& document, const std::vector<Match>& matches,
           const std::vector<std::string>& subDocuments) {
    if (!isConnected) return kGone;
    Ask("BeginOpening", document);
    Announce(matches.size());
    int result = 0;
    try {
      if (hasBatches) result = Activate(document, matches, subDocuments);
    } catch (const std::runtime_error&) {
      Ask("EndActivationChange"), Announce(1);
      throw;
    }
    Ask("EndActivationChange"), Ask("FinishOpening", document), Announce(1);
    return result;
  }

  int TurnOff(const std::vector<ID>& ids) {
    const int code = Ask(hasBatches ? "DeactivateFonts" : "DeactivateFont", List(ids));
    for (const ID id : ids) {
      if (code == 0) turnedOff.push_back(id), fonts[id].isOn = false;
    }
    return code;
  }
  bool MustGoOff(ID id) { return !holdings[id].wasOn && (!hasBatches || fonts[id].isOurs); }

  // The last reference turns a font off that was not on before the first. One by one, a font
  // manager that has gone ends the walk with the font still in the books.
  int Release(const std::vector<ID>& ids, bool turnOff, bool& allClosed) {
    Ask("GetClientFontActivationStates", std::to_string(ids.size()));
    std::vector<ID> batch;
    int result = 0;
    for (const ID id : ids) {
      if (!holdings.contains(id)) continue;
      const bool isLast = holdings[id].references == 1;
      holdings[id].references = std::max(holdings[id].references - 1, 0);
      allClosed &= isLast;
      if (!isLast || !turnOff) continue;
      if (MustGoOff(id) && hasBatches) batch.push_back(id);
      if (MustGoOff(id) && !hasBatches) {
        if (const int code = TurnOff({id})) result = code;
        if (result == kGone) return result;
      }
      holdings.erase(id);
    }
    return hasBatches ? TurnOff(batch) : result;
  }

  int Close(const std::string& document, bool turnOff) {
    if (!isConnected) return kGone;
    bool allClosed = turnOff;
    int result = 0;
    if (const auto found = documents.extract(document)) {
      Announce(found.mapped().size());
      try {
        result = Release(found.mapped(), turnOff, allClosed);
      } catch (const std::runtime_error&) {
        Ask("EndActivationChange"), Announce(1);
        throw;
      }
      Ask("EndActivationChange");
    }
    Ask("FinishClosing", document + (allClosed ? ",all" : ",some")), Announce(1);
    return result;
  }

  // Who holds a font no longer counts; documents keep their lists.
  int Quit(bool turnOff) {
    if (!isConnected) return kGone;
    if (holdings.empty()) return 0;
    Announce(holdings.size());
    Ask("GetClientFontActivationStates", std::to_string(holdings.size()));
    std::vector<ID> ours;
    for (const auto& [id, holding] : holdings) {
      if (turnOff && MustGoOff(id)) ours.push_back(id);
    }
    int result = hasBatches ? TurnOff(ours) : 0;
    for (std::size_t i = 0; i < ours.size() && !hasBatches && result != kGone; ++i) {
      if (const int code = TurnOff({ours[i]})) result = code;
    }
    Ask("EndActivationChange");
    holdings.clear();
    return result;
  }
};
