// ReplaceAll beside the plain way to the same result: replace the first match
// and search again from the front.  The rate counts the text's bytes.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "KVTString.h"

namespace {

struct Case {
  std::string line;  // repeated to the length wanted
  std::string from;
  std::string to;
};

const Case& Path() {
  static const Case path = {"\\\\host\\share\\reports\\2026", "\\", "/"};
  return path;
}

// Blanks in runs: what one replacement leaves matches again.
const Case& Blanks() {
  static const Case blanks = {"a        b  c    ", "  ", " "};
  return blanks;
}

const Case& Absent() {
  static const Case absent = {"/srv/share/reports/2026", "\\", "/"};
  return absent;
}

KVTString Decoded(const std::string& text) {
  return KVTString(text.c_str(), KVTString::KVTCharEncodingUTF8);
}

KVTString TextOf(const Case& c, std::int64_t length) {
  std::string text;
  while (text.size() < static_cast<std::size_t>(length)) text += c.line;
  text.resize(static_cast<std::size_t>(length));
  return Decoded(text);
}

void StartOver(KVTString& text, const KVTString& from, const KVTString& to) {
  while (true) {
    const std::size_t position = text.find(from);
    if (position == KVTString::GetNPos()) return;
    text.replace(position, from.size(), to);
  }
}

using Replace = void (*)(KVTString&, const KVTString&, const KVTString&);

void Measure(benchmark::State& state, const Case& c, Replace replace) {
  const KVTString text = TextOf(c, state.range(0));
  const KVTString from = Decoded(c.from);
  const KVTString to = Decoded(c.to);
  KVTString expected(text);
  StartOver(expected, from, to);
  KVTString result(text);
  replace(result, from, to);
  if (result != expected) {
    state.SkipWithError("wrong result");
    return;
  }
  for (auto _ : state) {
    result = text;
    replace(result, from, to);
    benchmark::DoNotOptimize(result.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(
      state.iterations() * text.size() * sizeof(text[0])));
}

void ReplaceAll(benchmark::State& state, const Case& (*source)()) {
  Measure(state, source(),
          [](KVTString& text, const KVTString& from, const KVTString& to) {
            text.ReplaceAll(from, to);
          });
}

void StartingOver(benchmark::State& state, const Case& (*source)()) {
  Measure(state, source(), StartOver);
}

// A path, a message, a file.
BENCHMARK_CAPTURE(ReplaceAll, path, Path)->Arg(64)->Arg(1024)->Arg(32768);
BENCHMARK_CAPTURE(StartingOver, path, Path)->Arg(64)->Arg(1024)->Arg(32768);
BENCHMARK_CAPTURE(ReplaceAll, blanks, Blanks)->Arg(64)->Arg(1024)->Arg(32768);
BENCHMARK_CAPTURE(StartingOver, blanks, Blanks)->Arg(64)->Arg(1024)->Arg(32768);
BENCHMARK_CAPTURE(ReplaceAll, absent, Absent)->Arg(64)->Arg(1024)->Arg(32768);
BENCHMARK_CAPTURE(StartingOver, absent, Absent)->Arg(64)->Arg(1024)->Arg(32768);

}  // namespace
