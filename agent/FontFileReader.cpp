#include "agent/FontFileReader.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_FONT_FORMATS_H
#include FT_MODULE_H
#include FT_MULTIPLE_MASTERS_H
#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H
#include FT_TYPE1_TABLES_H

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <string_view>

#include "agent/BoundedFontMemory.h"
#include "agent/FontKind.h"
#include "agent/FontStream.h"
#include "agent/NameTable.h"

namespace Nodrix {
namespace {

constexpr long kMaxFaces = 1024;
constexpr FT_UInt kMaxInstances = 1024;
constexpr std::size_t kHeadSize = 64;
// Enough for the biggest name table that its 16-bit offsets can reach.
constexpr FT_ULong kMaxNameTable = 1 << 20;
constexpr std::size_t kMaxTables = 1024;
constexpr FT_UInt kLastReservedName = 255;  // from there on names are the font's own

struct ReleaseFace {
  void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using FaceOwner = std::unique_ptr<FT_FaceRec_, ReleaseFace>;

bool HasTable(FT_Face face, FT_ULong tag) {
  FT_ULong length = 0;
  return FT_Load_Sfnt_Table(face, tag, 0, nullptr, &length) == 0 && length > 0;
}

NameTable NamesOf(FT_Face face) {
  FT_ULong length = 0;
  if (FT_Load_Sfnt_Table(face, TTAG_name, 0, nullptr, &length) != 0 || length == 0) return {};
  length = std::min(length, kMaxNameTable);
  std::vector<std::uint8_t> bytes(length);
  if (FT_Load_Sfnt_Table(face, TTAG_name, 0, bytes.data(), &length) != 0) return {};
  return NameTable(std::move(bytes));
}

std::string FirstOf(std::string first, std::string second, const char* third) {
  if (!first.empty()) return first;
  if (!second.empty()) return second;
  return third != nullptr ? third : "";
}

std::optional<std::string> FoundryOf(FT_Face face, const NameTable& names) {
  if (std::string maker = names.Text(NameTable::eManufacturer); !maker.empty()) return maker;
  const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  if (os2 == nullptr) return std::nullopt;
  std::string vendor;
  for (const FT_Char c : os2->achVendID) {
    if (c > 0x20 && c < 0x7F) vendor += static_cast<char>(c);
  }
  return vendor.empty() ? std::nullopt : std::optional(vendor);
}

std::string VersionOf(FT_Face face, const NameTable& names) {
  if (std::string digits = VersionDigits(names.Text(NameTable::eVersion)); !digits.empty()) {
    return digits;
  }
  const auto* head = static_cast<const TT_Header*>(FT_Get_Sfnt_Table(face, FT_SFNT_HEAD));
  if (head == nullptr) return {};
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", static_cast<double>(head->Font_Revision) / 65536.0);
  return text;
}

void DescribeSfnt(FT_Face face, FaceInfo& info) {
  const NameTable names = NamesOf(face);
  info.family = FirstOf(names.Text(NameTable::eTypographicFamily), names.Text(NameTable::eFamily),
                        face->family_name);
  info.style = FirstOf(names.Text(NameTable::eTypographicStyle), names.Text(NameTable::eStyle),
                       face->style_name);
  info.version = VersionOf(face, names);
  info.foundry = FoundryOf(face, names);
  FaceTraits traits;
  traits.hasCFFOutlines = HasTable(face, TTAG_CFF) || HasTable(face, TTAG_CFF2);
  traits.hasOpenTypeTables =
      HasTable(face, TTAG_GSUB) || HasTable(face, TTAG_GPOS) || HasTable(face, TTAG_DSIG);
  info.kind = FontKind(traits);
}

// Type 1 texts are bytes of an unnamed encoding; what is no ASCII is left out.
std::string PlainText(const char* text) {
  std::string plain;
  for (const char c : std::string_view(text != nullptr ? text : "")) {
    if (c >= 0x20 && c < 0x7F && plain.size() < 1024) plain += c;
  }
  return plain;
}

void DescribeType1(FT_Face face, FaceInfo& info) {
  PS_FontInfoRec fontInfo{};
  if (FT_Get_PS_Font_Info(face, &fontInfo) == 0) {
    info.family = PlainText(fontInfo.family_name);
    info.version = VersionDigits(PlainText(fontInfo.version));
    info.style = PlainText(fontInfo.weight);
  }
  if (info.family.empty()) info.family = PlainText(face->family_name);
  if (face->style_name != nullptr) info.style = PlainText(face->style_name);
  FaceTraits traits;
  traits.isType1 = true;
  traits.hasMasters = FT_HAS_MULTIPLE_MASTERS(face);
  info.kind = FontKind(traits);
}

bool IsLetterOrDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

std::string LettersAndDigits(std::string text) {
  std::erase_if(text, [](char c) { return !IsLetterOrDigit(c); });
  return text;
}

// What PostScript allows in a name; hosts leave the rest out.
std::string AllowedInName(std::string text) {
  std::erase_if(text, [](char c) {
    return c <= 0x20 || c >= 0x7F ||
           std::string_view("()[]{}<>/%").find(c) != std::string_view::npos;
  });
  return text;
}

// FreeType gives no name where the font's own holds what is not allowed, a blank for instance.
std::string NameOf(FT_Face face) {
  if (const char* name = FT_Get_Postscript_Name(face); name != nullptr) return name;
  return FT_IS_SFNT(face) ? AllowedInName(NamesOf(face).Text(NameTable::ePostScriptName))
                          : std::string();
}

// What the names of a font's instances begin with where it names none (Adobe Technical Note 5902).
std::string InstancePrefix(const NameTable& names) {
  for (const auto id :
       {NameTable::eInstancePrefix, NameTable::eTypographicFamily, NameTable::eFamily}) {
    std::string prefix = LettersAndDigits(names.Text(id));
    if (!prefix.empty()) return prefix;
  }
  return {};
}

// FreeType makes no name, and takes none from the font, where the family holds a blank.
std::string InstanceName(FT_Face face, const NameTable& names, const FT_Var_Named_Style& instance,
                         const std::string& prefix, const std::string& style) {
  if (const char* name = FT_Get_Postscript_Name(face); name != nullptr) return name;
  const bool isNamed = instance.psid == NameTable::ePostScriptName ||
                       (instance.psid > kLastReservedName && instance.psid < 0x8000);
  if (isNamed) {
    std::string name = AllowedInName(names.Text(static_cast<std::uint16_t>(instance.psid)));
    if (!name.empty()) return name;
  }
  const std::string suffix = LettersAndDigits(style);
  return prefix.empty() || suffix.empty() ? std::string() : prefix + '-' + suffix;
}

// Named instances take all but their name and style from the default face.
void AddInstances(FT_Library library, FT_Face face, const FaceInfo& defaultFace,
                  FontFileInfo& file) {
  const auto count = static_cast<FT_UInt>(face->style_flags >> 16);
  FT_MM_Var* variation = nullptr;
  if (count == 0 || FT_Get_MM_Var(face, &variation) != 0) return;
  const NameTable names = NamesOf(face);
  const std::string prefix = InstancePrefix(names);
  const FT_UInt last = std::min({count, variation->num_namedstyles, kMaxInstances});
  for (FT_UInt i = 1; i <= last; ++i) {
    if (FT_Set_Named_Instance(face, i) != 0) continue;
    const FT_Var_Named_Style& instance = variation->namedstyle[i - 1];
    const std::string style = names.Text(static_cast<std::uint16_t>(instance.strid));
    const std::string name = InstanceName(face, names, instance, prefix, style);
    if (name.empty()) continue;
    // The instance that is the default face, or one of the same name, is there already.
    if (std::ranges::any_of(file.faces,
                            [&](const FaceInfo& f) { return f.postScriptName == name; }))
      continue;
    FaceInfo info = defaultFace;
    info.postScriptName = name;
    info.faceIndex |= static_cast<std::int32_t>(i << 16);
    if (!style.empty()) info.style = style;
    file.faces.push_back(std::move(info));
  }
  FT_Done_MM_Var(library, variation);
}

// The error of a face that is no usable one; empty when it was added.
std::string AddFace(FT_Library library, FT_Face face, FontFileInfo& file) {
  const char* format = FT_Get_Font_Format(face);
  const bool isType1 = format != nullptr && std::string_view(format) == "Type 1";
  if (!isType1 && !FT_IS_SFNT(face)) return "not a font of a kind that can be used";
  FaceInfo info;
  info.postScriptName = NameOf(face);
  if (isType1) info.postScriptName = PlainText(info.postScriptName.c_str());
  if (info.postScriptName.empty()) return "no PostScript name";
  info.faceIndex = static_cast<std::int32_t>(face->face_index & 0xFFFF);
  isType1 ? DescribeType1(face, info) : DescribeSfnt(face, info);
  if (info.family.empty()) info.family = info.postScriptName;
  file.faces.push_back(info);
  if (!isType1) AddInstances(library, face, info, file);
  return {};
}

std::string Reason(FT_Error failure, const FontStream& stream) {
  if (stream.IsBudgetSpent()) return "takes too long to read";
  // FreeType's own texts may be left out of its build.
  const char* text = FT_Error_String(failure);
  return text != nullptr ? text : "damaged font (" + std::to_string(failure) + ")";
}

void ReadFaces(FT_Library library, FontStream& stream, FontFileInfo& file) {
  FT_Open_Args arguments{};
  arguments.flags = FT_OPEN_STREAM;
  arguments.stream = stream.Stream();
  for (long index = 0, faces = 1; index < faces; ++index) {
    FT_Face opened = nullptr;
    const FT_Error failure = FT_Open_Face(library, &arguments, index, &opened);
    const FaceOwner face(opened);
    if (failure != 0) {
      file.error = Reason(failure, stream);
      if (index == 0) return;
      continue;
    }
    faces = face->num_faces;
    if (faces > kMaxFaces) {
      file.error = "more than 1,024 faces";
      return;
    }
    if (std::string reason = AddFace(library, face.get(), file); !reason.empty()) {
      file.error = std::move(reason);
    }
    if (file.faces.size() > static_cast<std::size_t>(kMaxFaces) + kMaxInstances) {
      file.faces.clear();
      file.error = "more than 1,024 named instances";
      return;
    }
  }
  if (!file.faces.empty()) file.error.clear();
}

}  // namespace

struct FontFileReader::Library {
  BoundedFontMemory memory;
  FT_Library library = nullptr;
  ~Library() {
    if (library != nullptr) FT_Done_Library(library);
  }
};

FontFileReader::FontFileReader() : mLibrary(std::make_unique<Library>()) {
  if (FT_New_Library(mLibrary->memory.Get(), &mLibrary->library) != 0) return;
  FT_Add_Default_Modules(mLibrary->library);
}

FontFileReader::~FontFileReader() = default;

FontFileInfo FontFileReader::Read(const std::string& path) {
  FontFileInfo file;
  file.isFontFile = IsNamedLikeFont(path);
  const auto stream = FontStream::Open(path, file.error);
  if (!stream) return file;
  if (!BeginsLikeFont(stream->Head(kHeadSize))) {
    file.error = stream->Size() == 0 ? "empty file" : "not a font file";
    return file;
  }
  file.isFontFile = true;
  if (mLibrary->library == nullptr) {
    file.error = "out of memory";
    return file;
  }
  mLibrary->memory.SetFileSize(stream->Size());
  ReadFaces(mLibrary->library, *stream, file);
  return file;
}

bool BeginsLikeFont(const std::vector<std::uint8_t>& head) {
  const std::string_view text(reinterpret_cast<const char*>(head.data()), head.size());
  const auto isPostScript = [](std::string_view start) {
    return start.starts_with("%!PS-AdobeFont") || start.starts_with("%!FontType");
  };
  if (text.size() < 12) return false;
  if (text.starts_with("\x80\x01")) return isPostScript(text.substr(6));
  if (text.starts_with("%!")) return isPostScript(text);
  if (text.starts_with("ttcf")) return true;
  // Other files begin with these four bytes too: the number of tables tells them apart.
  if (!text.starts_with(std::string_view("\0\1\0\0", 4)) && !text.starts_with("OTTO") &&
      !text.starts_with("true")) {
    return false;
  }
  const std::size_t tables = static_cast<std::size_t>(head[4] << 8 | head[5]);
  return tables > 0 && tables <= kMaxTables;
}

bool IsNamedLikeFont(const std::string& path) {
  constexpr std::string_view kEndings[] = {".ttf", ".otf", ".ttc", ".otc", ".pfa", ".pfb"};
  if (path.size() < 4) return false;
  std::string ending = path.substr(path.size() - 4);
  std::ranges::transform(ending, ending.begin(), [](unsigned char c) {
    return static_cast<char>(c < 0x80 ? std::tolower(c) : c);
  });
  return std::ranges::find(kEndings, ending) != std::end(kEndings);
}

std::string VersionDigits(const std::string& text) {
  constexpr std::string_view kDigits = "0123456789";
  const auto start = text.find_first_of(kDigits);
  if (start == std::string::npos) return {};
  auto end = std::min(text.find_first_not_of(kDigits, start), text.size());
  // Further groups only where digits follow the point.
  while (end + 1 < text.size() && text[end] == '.' &&
         kDigits.find(text[end + 1]) != std::string_view::npos) {
    end = std::min(text.find_first_not_of(kDigits, end + 1), text.size());
  }
  return text.substr(start, end - start);
}

}  // namespace Nodrix
