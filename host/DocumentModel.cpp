#include "host/DocumentModel.h"

#include <algorithm>

HostDocument& DocumentModel::Add(const std::string& path) {
  mCurrent = mNextID++;
  return mDocuments.emplace_back(HostDocument{mCurrent, path, false});
}

bool DocumentModel::Remove(std::int32_t id) {
  const auto removed = std::erase_if(mDocuments, [id](const auto& doc) { return doc.id == id; });
  if (removed == 0) return false;
  if (mCurrent == id) mCurrent = mDocuments.empty() ? 0 : mDocuments.back().id;
  return true;
}

bool DocumentModel::BringToFront(std::int32_t id) {
  if (Find(id) == nullptr) return false;
  mCurrent = id;
  return true;
}

HostDocument* DocumentModel::Find(std::int32_t id) {
  const auto found = std::find_if(mDocuments.begin(), mDocuments.end(),
                                  [id](const auto& document) { return document.id == id; });
  return found == mDocuments.end() ? nullptr : &*found;
}

HostDocument* DocumentModel::FindByPath(const std::string& path) {
  const auto found = std::find_if(mDocuments.begin(), mDocuments.end(),
                                  [&path](const auto& document) { return document.path == path; });
  return found == mDocuments.end() ? nullptr : &*found;
}
