// Tables of texts, for cases of which a line says all.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

// Rows end at a line feed or ";", columns at "/"; blanks around a text are taken off, and empty
// lines are no rows. A text of blanks is written in quotation marks.
inline std::vector<std::vector<std::string>> ReadTable(std::string_view text) {
  std::vector<std::vector<std::string>> rows;
  const auto take = [](std::string_view& from, const char* ends) {
    const std::string_view part = from.substr(0, from.find_first_of(ends));
    from.remove_prefix(part.size() == from.size() ? part.size() : part.size() + 1);
    return part;
  };
  while (!text.empty()) {
    std::string_view line = take(text, "\n;");
    if (line.find_first_not_of(' ') == std::string_view::npos) continue;
    line.remove_suffix(line.size() - 1 - line.find_last_not_of(' '));
    const bool endsEmpty = line.back() == '/';
    std::vector<std::string>& row = rows.emplace_back();
    while (!line.empty()) {
      std::string_view column = take(line, "/");
      column.remove_prefix(std::min(column.find_first_not_of(' '), column.size()));
      column = column.substr(0, column.find_last_not_of(' ') + 1);
      if (column.size() > 1 && column.front() == '"') column = column.substr(1, column.size() - 2);
      row.emplace_back(column);
    }
    if (endsEmpty) row.emplace_back();
  }
  return rows;
}
