// The 'name' table of an sfnt font: texts by their number, in the best language for a record.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Nodrix {

class NameTable {
 public:
  enum ID : std::uint16_t {
    eFamily = 1,
    eStyle = 2,
    eVersion = 5,
    ePostScriptName = 6,
    eManufacturer = 8,
    eTypographicFamily = 16,
    eTypographicStyle = 17,
    eInstancePrefix = 25
  };

  NameTable() = default;
  // Takes the table's bytes; a table that is cut short gives the names that are whole.
  explicit NameTable(std::vector<std::uint8_t> table);

  // UTF-8 without control characters and outer blanks, at most 1,024 bytes; empty if there is none.
  // English of the Windows platform first, then Mac Roman, then any other.
  std::string Text(std::uint16_t id) const;

 private:
  std::string Decode(std::size_t record) const;
  std::vector<std::uint8_t> mTable;
};

}  // namespace Nodrix
