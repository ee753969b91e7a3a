#include "foundation/GFileSystemSpec.h"

#include "foundation/ErrorChecks.h"
#include "foundation/GFileSystem.h"
#include "foundation/GStringUtils.h"

namespace {

// The spec's path is expanded: one slash between components, none at the end.
std::string_view LastComponentOf(std::string_view path) {
  return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

TModuleErrorCode CheckPath(const std::string& strCopy) {
  G_CHECK_CONDITION(!(strCopy.empty() || GFileSystem::OSIsValidFullPath(strCopy)),
                    GFileSystem::kInvalidPath);
  return 0;
}

}  // namespace

GFileSystemSpec::GFileSystemSpec(const std::string& path) {
  std::string expanded = GFileSystem::OSExpandPath(path);
  if (CheckPath(expanded) == 0) mPath = std::move(expanded);
}

const GFileSystemSpec& GFileSystemSpec::GetEmptyFileSpec() {
  static const GFileSystemSpec& empty = *new GFileSystemSpec;
  return empty;
}

std::string GFileSystemSpec::GetLastPathComponent() const {
  return std::string(LastComponentOf(mPath));
}

void GFileSystemSpec::RemoveLastPathComponent() {
  const std::size_t slash = mPath.rfind('/');
  if (slash == std::string::npos) return;
  mPath.resize(slash == 0 ? 1 : slash);
}

void GFileSystemSpec::AppendPathComponent(const std::string& component) {
  if (!IsEmpty()) *this = GFileSystemSpec(mPath + "/" + component);
}

std::string GFileSystemSpec::GetPathExtension() const {
  const std::string_view name = LastComponentOf(mPath);
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string() : std::string(name.substr(dot + 1));
}

void GFileSystemSpec::RemovePathExtension() {
  const std::string_view name = LastComponentOf(mPath);
  const std::size_t dot = name.rfind('.');
  // Without its ending ".profile" would have no name, and "..." would be a way up.
  if (dot == std::string_view::npos || name.find_first_not_of('.') >= dot) return;
  mPath.resize(mPath.size() - (name.size() - dot));
}

std::vector<std::string> GFileSystemSpec::GetPathComponents() const {
  return GStringUtils::OSTokenizeString(mPath, "/");
}

bool GFileSystemSpec::IsSubpath(const GFileSystemSpec& candidate) const {
  return candidate.mPath.size() > mPath.size() &&
         GStringUtils::StringFindNoCase(candidate.mPath, mPath) == 0;
}
