// Writes JSON text, with no blanks and no line breaks, through yajl's generator, which validates
// UTF-8. Every emit gives false when the generator refuses: text that is no UTF-8, a number that
// JSON does not have, a value where a key must stand, more than kMaxDepth open arrays and maps, a
// second value behind a whole one. The dump then ends there: nothing is written any more before
// reset.
//
// One emitter belongs to one thread at a time.
#pragma once

#include <concepts>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

struct yajl_gen_t;
struct yajl_val_s;

namespace restful_mapper::Json {

class Emitter {
 public:
  // Throws std::bad_alloc without memory.
  Emitter();

  // A value, or in a map a key (texts only) and then its value. Zero bytes are escaped.
  bool emit(const std::string& value);
  bool emit(const char* value) { return emit(std::string(value)); }
  bool emit(std::int64_t value);
  bool emit(double value);
  bool emit(bool value);
  template <std::integral Integer>
  requires(std::is_signed_v<Integer> ||
           sizeof(Integer) < sizeof(std::int64_t)) bool emit(Integer value) {
    return emit(static_cast<std::int64_t>(value));
  }
  template <typename T>
  bool emit(const std::vector<T>& values) {
    bool isDone = emit_array_open();
    for (const auto& value : values) isDone = isDone && emit(value);
    return isDone && emit_array_close();
  }
  template <typename T>
  bool emit(const std::map<std::string, T>& values) {
    bool isDone = emit_map_open();
    for (const auto& [key, value] : values) isDone = isDone && emit(key, value);
    return isDone && emit_map_close();
  }
  // A map's field.
  template <typename T>
  bool emit(const std::string& key, const T& value) {
    return emit(key) && emit(value);
  }

  bool emit_map_open();
  bool emit_map_open(const std::string& key) { return emit(key) && emit_map_open(); }
  bool emit_map_close();
  bool emit_array_open();
  bool emit_array_open(const std::string& key) { return emit(key) && emit_array_open(); }
  bool emit_array_close();
  bool emit_null();
  bool emit_null(const std::string& key) { return emit(key) && emit_null(); }
  // A JSON text as a value: parsed first, so that a bad one is refused.
  bool emit_json(const std::string& json);
  bool emit_json(const std::string& key, const std::string& json) {
    return emit(key) && emit_json(json);
  }
  // All of a tree; numbers as they stood when they were parsed. A null pointer is a null.
  bool emit_tree(const yajl_val_s* value);

  // Begins anew.
  void reset();
  // The text so far; lent until the next call.
  const std::string& dump();

 private:
  struct GeneratorDeleter {
    void operator()(yajl_gen_t* generator) const;
  };

  // Keeps the first refusal. `status` is yajl_gen_status.
  bool Keep(int status);
  bool EmitArray(const yajl_val_s& value);
  bool EmitMap(const yajl_val_s& value);
  bool EmitText(const char* text, std::size_t length);
  bool EmitNumber(const char* text, std::size_t length);

  std::unique_ptr<yajl_gen_t, GeneratorDeleter> mGenerator;
  std::string mDump;
  bool mHasFailed = false;
};

}  // namespace restful_mapper::Json
