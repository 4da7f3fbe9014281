// The operations on text against slow, obvious models, over every short text.

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "KVTString.h"
#include "random_seed.h"
#include "test_strings.h"

namespace {

std::vector<KVTString> Decoded(const std::vector<std::string>& texts) {
  std::vector<KVTString> decoded;
  for (const std::string& text : texts) decoded.push_back(FromUtf8(text));
  return decoded;
}

bool IsOneOf(char character, const std::string& set) {
  return std::count(set.begin(), set.end(), character) > 0;
}

// --- ReplaceAll

// Replaces the first match and starts over; nothing when that goes on and on.
std::optional<std::string> ReplaceStartingOver(std::string text,
                                               const std::string& from,
                                               const std::string& to) {
  if (from.empty() || from == to) return text;
  for (int step = 0; step < 100; ++step) {
    const std::size_t position = text.find(from, 0);
    if (position == std::string::npos) return text;
    text = text.substr(0, position) + to + text.substr(position + from.size());
  }
  return std::nullopt;
}

TEST(KVTStringReplaceAllModel, GivesTheSameForEveryShortTextOfTwoLetters) {
  const std::vector<std::string> texts = AllTexts("ab", 7);
  const std::vector<std::string> pieces = AllTexts("ab", 3);
  std::size_t compared = 0;
  for (const std::string& from : pieces) {
    for (const std::string& to : pieces) {
      for (const std::string& text : texts) {
        const auto expected = ReplaceStartingOver(text, from, to);
        if (!expected) continue;
        KVTString actual = FromUtf8(text);
        actual.ReplaceAll(FromUtf8(from), FromUtf8(to));
        ASSERT_EQ(actual, FromUtf8(*expected))
            << text << ", " << from << " to " << to;
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 40000u);
}

TEST(KVTStringReplaceAllModel, GivesTheSameForRandomLongerTexts) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  const auto draw = [&random](std::size_t longest) {
    std::string text(random() % (longest + 1), '\0');
    for (char& letter : text) letter = "ab"[random() % 2];
    return text;
  };
  std::size_t compared = 0;
  while (compared < 10000) {
    const std::string text = draw(40);
    const std::string from = draw(5);
    const std::string to = draw(5);
    const auto expected = ReplaceStartingOver(text, from, to);
    if (!expected) continue;
    KVTString actual = FromUtf8(text);
    actual.ReplaceAll(FromUtf8(from), FromUtf8(to));
    ASSERT_EQ(actual, FromUtf8(*expected))
        << text << ", " << from << " to " << to;
    ++compared;
  }
}

// --- SubStrings

std::vector<std::string> ModelTokens(const std::string& text,
                                     const std::string& delimiters) {
  const auto isDelimiter = [&delimiters](char character) {
    return IsOneOf(character, delimiters);
  };
  if (std::none_of(text.begin(), text.end(), isDelimiter)) return {text};
  std::vector<std::string> tokens;
  bool inToken = false;
  for (const char character : text) {
    if (isDelimiter(character)) {
      inToken = false;
      continue;
    }
    if (!inToken) tokens.push_back("");
    tokens.back() += character;
    inToken = true;
  }
  // The only token, which runs to the end, is lost.
  if (tokens.size() == 1 && !isDelimiter(text.back())) tokens.clear();
  return tokens;
}

TEST(KVTStringSubStringsModel, GivesTheSameForEveryShortText) {
  for (const std::string delimiters : {",", ";,", ",;."}) {
    for (const std::string& text : AllTexts("ab,;", 6)) {
      std::vector<KVTString> tokens;
      ASSERT_TRUE(FromUtf8(text).SubStrings(FromUtf8(delimiters), tokens));
      ASSERT_EQ(tokens, Decoded(ModelTokens(text, delimiters)))
          << text << " at " << delimiters;
    }
  }
}

// --- SplitStringOnce, SplitStringOnceFromLast, GetVectorFromString

std::vector<std::string> ModelFields(const std::string& text) {
  std::vector<std::string> fields = {""};
  for (const char character : text) {
    if (character == ',') {
      fields.push_back("");
    } else {
      fields.back() += character;
    }
  }
  return fields;
}

std::string Joined(const std::vector<std::string>& fields, std::size_t first,
                   std::size_t end) {
  std::string text;
  for (std::size_t i = first; i < end; ++i) {
    if (i > first) text += ",";
    text += fields[i];
  }
  return text;
}

TEST(KVTStringSplitModel, GivesTheSameForEveryShortText) {
  for (const std::string& text : AllTexts("ab,", 7)) {
    const std::vector<std::string> fields = ModelFields(text);
    const std::size_t count = fields.size();
    std::vector<std::string> atFirst;
    std::vector<std::string> atLast;
    if (count > 1) {
      atFirst = {fields[0], Joined(fields, 1, count)};
      atLast = {Joined(fields, 0, count - 1), fields[count - 1]};
    }
    ASSERT_EQ(KVTString::SplitStringOnce(FromUtf8(text), ','), Decoded(atFirst))
        << text;
    ASSERT_EQ(KVTString::SplitStringOnceFromLast(FromUtf8(text), ','),
              Decoded(atLast))
        << text;
  }
}

TEST(KVTStringFieldsModel, GivesTheSameForEveryShortTextAndJoinsAgain) {
  for (const std::string& text : AllTexts("ab,", 7)) {
    std::vector<std::string> fields = ModelFields(text);
    ASSERT_EQ(KVTString::GetStringFromVector(Decoded(fields), ","),
              FromUtf8(text));
    if (fields.back().empty()) fields.pop_back();
    ASSERT_EQ(KVTString::GetVectorFromString(FromUtf8(text), ','), fields)
        << text;
  }
}

// --- Trimming

TEST(KVTStringTrimCharsModel, GivesTheSameForEveryShortText) {
  for (const std::string& text : AllTexts("xXa", 7)) {
    std::string expected = text;
    while (!expected.empty() && expected.front() == 'x') expected.erase(0, 1);
    while (!expected.empty() && expected.back() == 'x') expected.pop_back();
    ASSERT_EQ(FromUtf8(text).TrimChars('x'), FromUtf8(expected)) << text;
  }
}

TEST(KVTStringTrimLeadingSpacesModel, GivesTheSameForEveryShortText) {
  KVTString object;
  for (const std::string& text : AllTexts(" \t\v\r\n\fa", 4)) {
    std::string expected = text;
    while (!expected.empty() && IsOneOf(expected.front(), " \t\v\r\n")) {
      expected.erase(0, 1);
    }
    if (expected.empty()) {
      ASSERT_THROW(object.TrimLeadingSpaces(FromUtf8(text)), std::out_of_range);
    } else {
      ASSERT_EQ(object.TrimLeadingSpaces(FromUtf8(text)), FromUtf8(expected));
    }
  }
}

TEST(KVTStringOneSpaceModel, GivesTheSameForEveryShortText) {
  for (const std::string& text : AllTexts(" \ta", 7)) {
    std::string expected;
    for (const char character : text) {
      if (character != ' ' || expected.empty() || expected.back() != ' ') {
        expected += character;
      }
    }
    ASSERT_EQ(KVTString::ReplaceAllSpacesWithOneSpace(FromUtf8(text)),
              FromUtf8(expected));
  }
}

// --- Characters

TEST(KVTStringCharactersModel, GivesTheSameForRandomUnits) {
  const unsigned seed = RandomSeed();
  SCOPED_TRACE(SeedTrace(seed));
  std::mt19937 random(seed);
  for (int round = 0; round < 5000; ++round) {
    const Units text = RandomUnits(random, 8, true);
    const Units set = RandomUnits(random, 8, true);
    const unsigned start = static_cast<unsigned>(random() % 10);
    bool expected = false;
    for (std::size_t i = start; i < text.size() && start < set.size(); ++i) {
      for (const unsigned short unit : set) expected |= unit == text[i];
    }
    ASSERT_EQ(KVTString(text).ContainsAny(KVTString(set), start), expected);

    std::string kept;
    for (const unsigned short unit : text) {
      if (unit == 0) break;
      if (unit >= 0x80 || !IsOneOf(static_cast<char>(unit), "AEIOUaeiou")) {
        kept += static_cast<char>(unit);
      }
    }
    ASSERT_EQ(KVTString(text).RemoveVowels(), FromUtf8(kept.c_str()));
  }
}

}  // namespace
