#include "tools/documents/AepBuilder.h"

#include "tools/documents/BigEndianWriter.h"
#include "tools/documents/HostText.h"

namespace DocumentBuilders {

std::string BuildAep(const std::vector<std::string>& fonts) {
  BigEndianWriter body;
  body.Text("Egg!").Text("svap").Sized(std::string("\x5D\x04\x0B\x3B", 4));
  body.Text("LIST").Sized("btdk /98 << /0 9 >> /0 << /1 << /0 [ " + CoolTypeFonts(fonts) +
                          "] >> >>");
  body.PadTo(2);
  BigEndianWriter out;
  out.Text("RIFX").Sized(body.Bytes());
  return out.Bytes();
}

}  // namespace DocumentBuilders
