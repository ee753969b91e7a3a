// Owners of GLib's things.
#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

namespace Nodrix {

template <auto kRelease>
struct GRelease {
  template <typename T>
  void operator()(T* thing) const {
    kRelease(thing);
  }
};

template <typename T>
using GObjectOwner = std::unique_ptr<T, GRelease<g_object_unref>>;
using VariantOwner = std::unique_ptr<GVariant, GRelease<g_variant_unref>>;
using ContextOwner = std::unique_ptr<GMainContext, GRelease<g_main_context_unref>>;
using LoopOwner = std::unique_ptr<GMainLoop, GRelease<g_main_loop_unref>>;
using StringOwner = std::unique_ptr<gchar, GRelease<g_free>>;

// An out argument that frees the error.
class ErrorOwner {
 public:
  ErrorOwner() = default;
  ~ErrorOwner() { g_clear_error(&mError); }
  ErrorOwner(const ErrorOwner&) = delete;
  ErrorOwner& operator=(const ErrorOwner&) = delete;
  GError** Out() { return &mError; }
  const GError* Get() const { return mError; }
  explicit operator bool() const { return mError != nullptr; }
  std::string Text() const { return mError != nullptr ? mError->message : ""; }

 private:
  GError* mError = nullptr;
};

// A byte string ("ay") of a message, without the zero that ends it.
inline std::string BytesOf(GVariant* value) {
  gsize length = 0;
  const void* bytes = g_variant_get_fixed_array(value, &length, 1);
  std::string text(static_cast<const char*>(bytes), length);
  if (const auto zero = text.find('\0'); zero != std::string::npos) text.resize(zero);
  return text;
}

// Text of any bytes as the UTF-8 that a message must hold.
inline std::string ValidText(const std::string& text) {
  const StringOwner valid(g_utf8_make_valid(text.c_str(), static_cast<gssize>(text.size())));
  return valid.get();
}

}  // namespace Nodrix
