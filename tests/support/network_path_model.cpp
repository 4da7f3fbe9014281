#include "network_path_model.h"

#include <algorithm>

#include "KVTFileUtil.h"

namespace network_path_model {

namespace {

bool IsSeparator(unsigned short unit) { return unit == '/' || unit == '\\'; }

Units Trim(Units text, unsigned short c) {
  while (!text.empty() && text.front() == c) text.erase(0, 1);
  while (!text.empty() && text.back() == c) text.pop_back();
  return text;
}

Units TrimSeparators(const Units& text) { return Trim(Trim(text, '\\'), '/'); }

std::string ToUtf8(const Units& text) {
  return KVTString(text).GetUTF8String();
}

// How many units stand before the first separator.
std::size_t UnitsBeforeSeparator(const Units& text) {
  const auto first = std::find_if(text.begin(), text.end(), IsSeparator);
  return static_cast<std::size_t>(first - text.begin());
}

// The text in front of the first separator, and behind it as many units more as
// the text in front has bytes more than units.
Units FrontWithOverrun(const Units& text) {
  const std::size_t units = UnitsBeforeSeparator(text);
  return text.substr(0, ToUtf8(text.substr(0, units)).size());
}

bool IsAddress(const Units& text) {
  return KVTFileUtil::IsValidIPV4Address(KVTString(text)) ||
         KVTFileUtil::IsValidIPV6Address(KVTString(text));
}

}  // namespace

std::optional<Units> Resolve(const Units& host, const Names& names) {
  if (host.size() <= 2) return Units();
  const Units name = TrimSeparators(host);
  if (IsAddress(name)) return name;
  const auto found = names.find(ToUtf8(name));
  if (found == names.end()) return std::nullopt;
  return Units(found->second.begin(), found->second.end());
}

Pieces Parse(const Units& path, const Names& names) {
  Pieces pieces;
  pieces.result = 1;
  if (path.size() <= 2) return pieces;

  Units rest = path.substr(0, path.find(static_cast<unsigned short>(0)));
  const Units smb = {'s', 'm', 'b', ':'};
  if (rest.substr(0, 4) == smb) rest.erase(0, 4);
  if (rest.size() >= 2 && IsSeparator(rest[0]) && rest[1] == rest[0]) {
    rest.erase(0, 2);
  }
  if (rest.empty() || IsSeparator(rest[0])) return pieces;

  Units host = FrontWithOverrun(rest);
  if (host[0] == '[') host = Trim(Trim(host, '['), ']');
  pieces.hostIp = Resolve(host, names);
  rest.erase(0, UnitsBeforeSeparator(rest));

  // From here on a separator, if anything, stands in front.
  if (rest.size() <= 1) {
    pieces.result = 0;
    return pieces;
  }
  rest.erase(0, 1);
  if (IsSeparator(rest[0])) return pieces;
  pieces.result = 0;
  pieces.shareFolder = TrimSeparators(FrontWithOverrun(rest));
  rest.erase(0, UnitsBeforeSeparator(rest));
  if (rest.size() <= 1) return pieces;
  pieces.remainder = TrimSeparators(rest.substr(1));
  return pieces;
}

}  // namespace network_path_model
