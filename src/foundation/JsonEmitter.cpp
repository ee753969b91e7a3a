#include "foundation/JsonEmitter.h"

#include <yajl/yajl_gen.h>
#include <yajl/yajl_tree.h>

#include <cmath>
#include <cstring>
#include <exception>
#include <new>

#include "foundation/GString.h"
#include "foundation/JsonParser.h"
#include "foundation/JsonTree.h"

namespace restful_mapper::Json {

void Emitter::GeneratorDeleter::operator()(yajl_gen_t* generator) const {
  yajl_gen_free(generator);
}

Emitter::Emitter() : mGenerator(yajl_gen_alloc(nullptr)) {
  if (mGenerator == nullptr) throw std::bad_alloc();
  yajl_gen_config(mGenerator.get(), yajl_gen_validate_utf8, 1);
}

bool Emitter::Keep(int status) {
  mHasFailed = mHasFailed || status != yajl_gen_status_ok;
  return !mHasFailed;
}

// yajl's own check takes halves of surrogate pairs and characters in too many bytes.
bool Emitter::EmitText(const char* text, std::size_t length) {
  if (!GString::IsValidUtf8({text, length})) return Keep(yajl_gen_invalid_string);
  return !mHasFailed && Keep(yajl_gen_string(mGenerator.get(),
                                             reinterpret_cast<const unsigned char*>(text), length));
}

bool Emitter::EmitNumber(const char* text, std::size_t length) {
  return !mHasFailed && Keep(yajl_gen_number(mGenerator.get(), text, length));
}

bool Emitter::emit(const std::string& value) { return EmitText(value.data(), value.size()); }

bool Emitter::emit(std::int64_t value) {
  return !mHasFailed && Keep(yajl_gen_integer(mGenerator.get(), value));
}

// Not by yajl_gen_double, which writes the decimal point of the process's locale.
bool Emitter::emit(double value) {
  if (!std::isfinite(value)) return Keep(yajl_gen_invalid_number);
  const std::string text = NumberText(value);
  return EmitNumber(text.data(), text.size());
}

bool Emitter::emit(bool value) {
  return !mHasFailed && Keep(yajl_gen_bool(mGenerator.get(), value ? 1 : 0));
}

bool Emitter::emit_map_open() { return !mHasFailed && Keep(yajl_gen_map_open(mGenerator.get())); }
bool Emitter::emit_map_close() { return !mHasFailed && Keep(yajl_gen_map_close(mGenerator.get())); }
bool Emitter::emit_array_open() {
  return !mHasFailed && Keep(yajl_gen_array_open(mGenerator.get()));
}
bool Emitter::emit_array_close() {
  return !mHasFailed && Keep(yajl_gen_array_close(mGenerator.get()));
}
bool Emitter::emit_null() { return !mHasFailed && Keep(yajl_gen_null(mGenerator.get())); }

bool Emitter::emit_json(const std::string& json) {
  if (mHasFailed) return false;
  try {
    Parser parser;
    parser.load(json);
    return emit_tree(parser.root().tree());
  } catch (const std::exception&) {
    mHasFailed = true;
    return false;
  }
}

bool Emitter::EmitArray(const yajl_val_s& value) {
  if (!emit_array_open()) return false;
  for (std::size_t i = 0; i < value.u.array.len; ++i) {
    if (!emit_tree(value.u.array.values[i])) return false;
  }
  return emit_array_close();
}

bool Emitter::EmitMap(const yajl_val_s& value) {
  if (!emit_map_open()) return false;
  for (std::size_t i = 0; i < value.u.object.len; ++i) {
    const char* key = value.u.object.keys[i];
    if (!EmitText(key, std::strlen(key)) || !emit_tree(value.u.object.values[i])) return false;
  }
  return emit_map_close();
}

bool Emitter::emit_tree(const yajl_val_s* value) {
  if (value == nullptr) return emit_null();
  switch (value->type) {
    case yajl_t_string:
      return EmitText(value->u.string, std::strlen(value->u.string));
    case yajl_t_number:
      return EmitNumber(value->u.number.r, std::strlen(value->u.number.r));
    case yajl_t_object:
      return EmitMap(*value);
    case yajl_t_array:
      return EmitArray(*value);
    case yajl_t_true:
    case yajl_t_false:
      return emit(value->type == yajl_t_true);
    default:
      return emit_null();
  }
}

void Emitter::reset() {
  yajl_gen_reset(mGenerator.get(), nullptr);
  yajl_gen_clear(mGenerator.get());
  mHasFailed = false;
}

const std::string& Emitter::dump() {
  const unsigned char* text = nullptr;
  std::size_t length = 0;
  mDump.clear();
  if (yajl_gen_get_buf(mGenerator.get(), &text, &length) == yajl_gen_status_ok) {
    mDump.assign(reinterpret_cast<const char*>(text), length);
  }
  return mDump;
}

}  // namespace restful_mapper::Json
