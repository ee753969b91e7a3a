// Which file does an application of the user get for a font's name?
#pragma once

#include <memory>
#include <string>

class FontProof {
 public:
  // Reads the system's fonts as any application that starts now would. They stay as they were then.
  FontProof();
  ~FontProof();
  FontProof(const FontProof&) = delete;
  FontProof& operator=(const FontProof&) = delete;

  // The file of the font of exactly this PostScript name; empty if there is none.
  std::string FileFor(const std::string& postScriptName) const;

 private:
  struct Config;
  std::unique_ptr<Config> mConfig;
};
