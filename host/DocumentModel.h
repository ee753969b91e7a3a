// The open documents of the host: in the order in which they were opened, one of them in front.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct HostDocument {
  std::int32_t id = 0;  // never used twice
  std::string path;     // empty for an untitled document
  bool dirty = false;
};

class DocumentModel {
 public:
  // The new document comes to the front.
  HostDocument& Add(const std::string& path);
  // False if there is no such document. The one opened last comes to the front.
  bool Remove(std::int32_t id);
  bool BringToFront(std::int32_t id);

  // Null if there is none. Lent until the list changes.
  HostDocument* Find(std::int32_t id);
  HostDocument* FindByPath(const std::string& path);
  HostDocument* Current() { return Find(mCurrent); }
  const std::vector<HostDocument>& Documents() const { return mDocuments; }

 private:
  std::vector<HostDocument> mDocuments;
  std::int32_t mCurrent = 0;
  // IDs start above small indices, so that one can't be taken for the other.
  std::int32_t mNextID = 101;
};
