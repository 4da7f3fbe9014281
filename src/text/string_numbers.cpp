#include <sstream>

#include "KVTString.h"

namespace {

template <class Number>
Number ExtractNumber(const KVTString& text,
                     std::ios_base& (*manipulator)(std::ios_base&)) {
  Number number = 0;
  std::wistringstream in(text.GetWstring(), std::ios_base::in);
  manipulator(in);
  in >> number;
  return number;
}

KVTString FormatNumber(long long value,
                       std::ios_base& (*manipulator)(std::ios_base&)) {
  std::ostringstream out;
  out << manipulator << value;
  return KVTString(out.str().c_str(), KVTString::KVTCharEncodingUTF8);
}

}  // namespace

unsigned int KVTString::GetIntValue(
    std::ios_base& (*manipulator)(std::ios_base&)) const {
  return ExtractNumber<unsigned int>(*this, manipulator);
}

double KVTString::GetDoubleValue() const {
  return ExtractNumber<double>(*this, std::dec);
}

int KVTString::AppendNumber(int value, const KVTString& format) {
  constexpr std::size_t kBufferSize = 100;
  constexpr int kCheckFormat = 1;
  char buffer[kBufferSize];
  // Aborts the process where the text does not fit.
  __builtin___sprintf_chk(buffer, kCheckFormat, kBufferSize,
                          format.GetUTF8String().c_str(), value);
  append(KVTString(buffer, KVTCharEncodingUTF8));
  return 0;
}

int KVTString::AppendNumber(int value) {
  return AppendNumber(value, KVTString("%d", KVTCharEncodingUTF8));
}

int KVTString::AppendUNumber(unsigned int value) {
  return AppendNumber(static_cast<int>(value),
                      KVTString("%u", KVTCharEncodingUTF8));
}

KVTString KVTString::ConvertIntToString(long long value) {
  return FormatNumber(value, std::dec);
}

KVTString KVTString::ConvertIntToHexString(long long value) {
  return FormatNumber(value, std::hex);
}
