#include "foundation/ErrorChecks.h"
#include "foundation/GFile.h"
#include "foundation/GFileSystem.h"
#include "foundation/PluginLog.h"
#include "propertylist/XCFUtils.h"
#include "propertylist/XmlForm.h"

namespace XCFUtils {

static_assert(kMaxFileBytes == PropertyList::kMaxXmlBytes);

namespace {

bool WriteBytes(std::span<const unsigned char> bytes, std::string_view path) {
  const GFileSystemSpec spec{std::string(path)};
  return !spec.IsEmpty() && bytes.size() <= kMaxFileBytes &&
         GFileSystem::OSReplaceFile(spec, bytes) == 0;
}

std::span<const unsigned char> BytesOf(const std::string& text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

}  // namespace

TModuleErrorCode GetFileLengthAndRewind(GFile& file, unsigned long long& length) {
  G_CHECK_CALL(file.GetFileSize(length));
  G_CHECK_CALL(file.SetFilePosition(GFile::eFromStart, 0));
  return 0;
}

std::optional<Data> XCFCreateCFDataRefFromPath(std::string_view path) {
  const GFileSystemSpec spec{std::string(path)};
  GFile file;
  unsigned long long length = 0;
  if (spec.IsEmpty() || file.Open(spec, GFile::eRead | GFile::eBinary) != 0 ||
      GetFileLengthAndRewind(file, length) != 0 || length == 0 || length > kMaxFileBytes) {
    return std::nullopt;
  }
  Data data(static_cast<std::size_t>(length));
  std::size_t count = 0;
  if (file.ReadSome(reinterpret_cast<char*>(data.data()), data.size(), count) != 0 ||
      count != data.size()) {
    return std::nullopt;
  }
  return data;
}

std::optional<Value> XCFCreateCFPropertyListFromPath(std::string_view path) {
  const std::optional<Data> data = XCFCreateCFDataRefFromPath(path);
  if (!data) return std::nullopt;
  std::optional<Value> list =
      PropertyList::ReadXml({reinterpret_cast<const char*>(data->data()), data->size()});
  if (!list) {
    OutputFormattedDebugString("%s holds no property list", std::string(path).c_str());
  }
  return list;
}

bool XCFWriteCFPropertyListToXMLFile(const Value& list, std::string_view path) {
  if (path.empty()) return false;
  const std::optional<std::string> xml = PropertyList::WriteXml(list);
  return xml && WriteBytes(BytesOf(*xml), path);
}

bool XCFWriteCFDataRefToXMLFile(const Data& data, std::string_view path) {
  return WriteBytes(data, path);
}

}  // namespace XCFUtils
