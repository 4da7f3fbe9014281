// UTF-8 to 16-bit units and back, beside the standard library's facet and
// iconv(3).  The rate counts UTF-8 bytes in both directions.

#include <benchmark/benchmark.h>
#include <iconv.h>

#include <algorithm>
#include <codecvt>
#include <cstdint>
#include <locale>
#include <stdexcept>
#include <string>

#include "KVTString.h"

namespace {

struct Sample {
  std::string utf8;
  std::u16string units;
};

Sample Repeated(const std::string& utf8, const std::u16string& units) {
  constexpr std::size_t kBytes = 64 * 1024;
  Sample sample;
  while (sample.utf8.size() < kBytes) {
    sample.utf8 += utf8;
    sample.units += units;
  }
  return sample;
}

const Sample& Ascii() {
  static const Sample sample =
      Repeated("/srv/share/reports/2026/summary.txt\n",
               u"/srv/share/reports/2026/summary.txt\n");
  return sample;
}

// One line of ASCII, then letters of two, three and four bytes.
const Sample& Mixed() {
  static const Sample sample = Repeated(
      "Gr\u00F6\u00DFe: 12 \u20AC, \u65E5\u672C\u8A9E \U0001F600 ok\n",
      u"Gr\u00F6\u00DFe: 12 \u20AC, \u65E5\u672C\u8A9E \U0001F600 ok\n");
  return sample;
}

// Greek: nearly all letters of two bytes.
const Sample& Greek() {
  static const Sample sample = Repeated(
      "\u03BA\u03B1\u03BB\u03B7\u03BC\u03AD\u03C1\u03B1 "
      "\u03BA\u03CC\u03C3\u03BC\u03B5 ",
      u"\u03BA\u03B1\u03BB\u03B7\u03BC\u03AD\u03C1\u03B1 "
      u"\u03BA\u03CC\u03C3\u03BC\u03B5 ");
  return sample;
}

using Convert =
    std::wstring_convert<std::codecvt_utf8_utf16<char16_t>, char16_t>;

class Iconv {
 public:
  Iconv(const char* to, const char* from) : mHandle(iconv_open(to, from)) {
    if (mHandle == reinterpret_cast<iconv_t>(-1)) {
      throw std::runtime_error("iconv_open");
    }
  }
  ~Iconv() { iconv_close(mHandle); }
  Iconv(const Iconv&) = delete;
  Iconv& operator=(const Iconv&) = delete;

  template <class To, class From>
  To Run(const From& text, std::size_t longest) {
    To out(longest, 0);
    char* in = const_cast<char*>(reinterpret_cast<const char*>(text.data()));
    std::size_t inLeft = text.size() * sizeof(text[0]);
    char* end = reinterpret_cast<char*>(out.data());
    std::size_t outLeft = out.size() * sizeof(out[0]);
    if (iconv(mHandle, &in, &inLeft, &end, &outLeft) == std::size_t(-1)) {
      throw std::runtime_error("iconv");
    }
    out.resize(out.size() - outLeft / sizeof(out[0]));
    return out;
  }

 private:
  iconv_t mHandle;
};

// Times `work` after its result has been held against `expected`.
template <class Work, class Expected>
void Measure(benchmark::State& state, const Sample& sample,
             const Expected& expected, Work work) {
  const auto result = work();
  if (!std::equal(result.begin(), result.end(), expected.begin(),
                  expected.end())) {
    state.SkipWithError("wrong result");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(work());
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * sample.utf8.size()));
}

using Source = const Sample& (*)();

void Decode(benchmark::State& state, Source source) {
  const Sample& sample = source();
  Measure(state, sample, sample.units, [&sample] {
    return KVTString(sample.utf8.c_str(), KVTString::KVTCharEncodingUTF8);
  });
}

void DecodeByFacet(benchmark::State& state, Source source) {
  const Sample& sample = source();
  Convert convert;
  Measure(state, sample, sample.units,
          [&] { return convert.from_bytes(sample.utf8); });
}

void DecodeByIconv(benchmark::State& state, Source source) {
  const Sample& sample = source();
  Iconv convert("UTF-16LE", "UTF-8");
  Measure(state, sample, sample.units, [&] {
    return convert.Run<std::u16string>(sample.utf8, sample.utf8.size());
  });
}

void Encode(benchmark::State& state, Source source) {
  const Sample& sample = source();
  const KVTString text(sample.utf8.c_str(), KVTString::KVTCharEncodingUTF8);
  Measure(state, sample, sample.utf8, [&text] { return text.GetUTF8String(); });
}

void EncodeByFacet(benchmark::State& state, Source source) {
  const Sample& sample = source();
  Convert convert;
  Measure(state, sample, sample.utf8,
          [&] { return convert.to_bytes(sample.units); });
}

void EncodeByIconv(benchmark::State& state, Source source) {
  const Sample& sample = source();
  Iconv convert("UTF-8", "UTF-16LE");
  Measure(state, sample, sample.utf8, [&] {
    return convert.Run<std::string>(sample.units, 3 * sample.units.size());
  });
}

BENCHMARK_CAPTURE(Decode, ascii, Ascii);
BENCHMARK_CAPTURE(DecodeByFacet, ascii, Ascii);
BENCHMARK_CAPTURE(DecodeByIconv, ascii, Ascii);
BENCHMARK_CAPTURE(Decode, mixed, Mixed);
BENCHMARK_CAPTURE(DecodeByFacet, mixed, Mixed);
BENCHMARK_CAPTURE(DecodeByIconv, mixed, Mixed);
BENCHMARK_CAPTURE(Decode, greek, Greek);
BENCHMARK_CAPTURE(DecodeByFacet, greek, Greek);
BENCHMARK_CAPTURE(DecodeByIconv, greek, Greek);
BENCHMARK_CAPTURE(Encode, ascii, Ascii);
BENCHMARK_CAPTURE(EncodeByFacet, ascii, Ascii);
BENCHMARK_CAPTURE(EncodeByIconv, ascii, Ascii);
BENCHMARK_CAPTURE(Encode, mixed, Mixed);
BENCHMARK_CAPTURE(EncodeByFacet, mixed, Mixed);
BENCHMARK_CAPTURE(EncodeByIconv, mixed, Mixed);
BENCHMARK_CAPTURE(Encode, greek, Greek);
BENCHMARK_CAPTURE(EncodeByFacet, greek, Greek);
BENCHMARK_CAPTURE(EncodeByIconv, greek, Greek);

}  // namespace
