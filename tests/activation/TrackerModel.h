// The reference rules once more, plain and slow, with a font manager that does as it is told: what
// ought to be asked and answered, turned on and off, and held by whom.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

struct TrackerModel {
  using ID = std::uint32_t;
  using IDs = std::vector<ID>;
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

  std::map<ID, Font> fonts;
  std::set<ID> refused, unable;
  std::pair<std::string, int> failure;  // an operation or a call, and its code
  bool isConnected = true, hasBatches = true, isTold = true;
  std::map<ID, Holding> holdings;
  std::map<std::string, IDs> documents;
  std::vector<std::string> calls;
  IDs turnedOff;

  static int CodeOf(const std::function<int()>& step) try {
    return step();
  } catch (const std::exception&) {
    return kThrows;
  }

  int Ask(const std::string& operation, const std::string& arguments = "") {
    calls.push_back(operation + "(" + arguments + ")");
    if (failure.first != operation && failure.first != calls.back()) return 0;
    const int code = failure.second;
    if (operation == "EndActivationChange") failure = {};  // only once: a failed end is told again
    if (code == kThrows) throw std::runtime_error(operation);
    return code;
  }
  int Announce(std::size_t n) { return Ask("SetCountForLongOperations", std::to_string(n)); }
  static std::string List(const IDs& ids) {
    std::string list;
    for (const ID id : ids) list += (list.empty() ? "" : ",") + std::to_string(id);
    return list;
  }
  // A change that fails is ended all the same.
  int Change(const std::function<int()>& change) try {
    return change();
  } catch (const std::runtime_error&) {
    Ask("EndActivationChange"), Announce(1);
    throw;
  }

  int Open(const std::string& document, const std::vector<Match>& matches, const char* part) {
    if (!isConnected) return kGone;
    Ask("BeginOpening", document), Announce(matches.size());
    const int result = Change([&] { return hasBatches ? Activate(document, matches, part) : 0; });
    Ask("EndActivationChange");
    Ask("FinishOpening", document), Announce(1);
    return result;
  }
  // What the batch has is passed over; of one name only the first is turned on, and none where one
  // is on; the others are held all the same. Without a document, its part holds the font.
  int Activate(const std::string& document, const std::vector<Match>& matches, const char* part) {
    IDs batch;
    std::set<std::string> takenNames;
    for (const auto& [id, isActive] : matches) {
      if (std::ranges::count(batch, id) != 0) continue;
      if (takenNames.insert(fonts[id].name).second && !isActive) batch.push_back(id);
      ++holdings.try_emplace(id, Holding{0, isActive}).first->second.references;
      documents[document.empty() ? part : document].push_back(id);
    }
    if (const int code = Ask("ActivateFontsByID", List(batch))) return code;
    for (const ID id : batch) fonts[id].isOn |= !refused.contains(id) && !unable.contains(id);
    if (std::ranges::any_of(batch, [this](ID id) { return refused.contains(id); })) {
      Close(document, true);
    }
    return 0;
  }

  int Close(const std::string& document, bool turnOff) {
    if (!isConnected) return kGone;
    bool allClosed = turnOff;
    int result = 0;
    if (documents.contains(document)) {
      Announce(documents[document].size());
      const IDs ids = documents.extract(document).mapped();
      result = Change([&] {
        const int code = Release(ids, turnOff, allClosed);
        Ask("EndActivationChange");
        return code;
      });
    }
    Ask("FinishClosing", document + (allClosed ? ",all" : ",some")), Announce(1);
    return result;
  }
  // The last reference turns a font off that was not on before the first.
  int Release(const IDs& ids, bool turnOff, bool& allClosed) {
    AskWhoseTheyAre(ids.size());
    IDs batch;
    int result = 0;
    for (const ID id : ids) {
      if (!holdings.contains(id)) continue;
      const bool isLast = holdings[id].references == 1;
      holdings[id].references = std::max(holdings[id].references - 1, 0);
      allClosed &= isLast;
      if (!isLast || !turnOff) continue;
      if (GoesOff(id) && hasBatches) batch.push_back(id);
      const int code = GoesOff(id) && !hasBatches ? TurnOff({id}) : 0;
      if (code != 0) result = code;
      if (code == kGone) return code;  // still in the books
      holdings.erase(id);
    }
    return hasBatches ? TurnOff(batch) : result;
  }
  void AskWhoseTheyAre(std::size_t n) {
    isTold = Ask("GetClientFontActivationStates", std::to_string(n)) == 0;
  }
  // A font of which nothing is told counts as ours.
  bool GoesOff(ID id) {
    return !holdings[id].wasOn && (!hasBatches || !isTold || fonts[id].isOurs);
  }

  int TurnOff(const IDs& ids) {
    int result = hasBatches ? Ask("DeactivateFonts", List(ids)) : 0;
    for (std::size_t i = 0; i < ids.size() && result != kGone; ++i) {
      const int code = hasBatches ? result : Ask("DeactivateFont", List({ids[i]}));
      if (code != 0) result = code;
      if (code == 0) fonts[ids[i]].isOn = false, turnedOff.push_back(ids[i]);
    }
    return result;
  }

  // Who holds a font no longer counts. Documents keep their lists.
  int Quit(bool turnOff) {
    if (!isConnected) return kGone;
    if (holdings.empty()) return 0;
    Announce(holdings.size());
    const auto turnOffAll = [&] {
      AskWhoseTheyAre(holdings.size());
      IDs ours;
      for (const auto& [id, holding] : holdings) {
        if (turnOff && GoesOff(id)) ours.push_back(id);
      }
      return hasBatches || !ours.empty() ? TurnOff(ours) : 0;
    };
    const int result = CodeOf(turnOffAll);
    Ask("EndActivationChange");
    holdings.clear();
    return result;
  }
};
