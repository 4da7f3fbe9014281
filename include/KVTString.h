/// @file
/// The 16-bit string that every other class takes and returns, and its free
/// operators.
///
/// Lengths and positions count 16-bit units; char text is UTF-8 and counts
/// bytes; wchar_t text counts 32-bit elements.  Objects are values without a
/// lock: const calls may run on several threads at once, a call that changes an
/// object needs the caller's own lock.
///
/// Every operation may throw std::bad_alloc when memory runs out; the comments
/// name only what else is thrown.  Operations inherited from the base string
/// throw what the standard library throws, in its words.

#ifndef KVTSTRING_H
#define KVTSTRING_H

#include <ios>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "KVTExport.h"

class KVTGUID;

/// A sequence of 16-bit units, UTF-16 by convention and never validated:
/// unpaired surrogates, zero units and noncharacters can all be stored.
///
/// Copying and assigning differ on purpose: the copy constructor stops at the
/// first zero unit, assignment keeps every unit.  There are no move operations,
/// since a move would keep what a copy cuts; a std::vector<KVTString> that
/// grows copies its elements.
class KVT_EXPORT KVTString
    : public std::basic_string<unsigned short, std::char_traits<unsigned short>,
                               std::allocator<unsigned short> > {
 public:
  /// How a `char const*` is read.  Other values may be passed and read nothing.
  enum KVTCharEncodingType : int {
    /// Each byte becomes one unit, sign-extended from 8 to 16 bits.
    KVTCharEncodingNarrow = 0,
    /// The bytes are decoded as UTF-8 (RFC 3629) into UTF-16 units.
    KVTCharEncodingUTF8 = 1
  };

  /// @name Construction, assignment, destruction
  /// @{

  /// Makes an empty string.
  KVTString();

  /// Copies the units before the first zero unit.  Throws std::logic_error
  /// with the text "basic_string::_S_construct null not valid" when `units` is
  /// null.
  KVTString(unsigned short const* units);

  /// Keeps the low 16 bits of each element before the first element that is
  /// zero in all its 32 bits; null gives an empty string.  No surrogate pairs
  /// are formed: an element above 0xFFFF loses its upper bits, and 0x10000
  /// stores a zero unit.
  KVTString(wchar_t const* text);

  /// Reads zero-terminated `text` as `encoding` says; null gives an empty
  /// string, and so does an encoding other than the two of
  /// KVTCharEncodingType.
  ///
  /// UTF-8 decoding never fails and never reports.  Bytes behind a lead byte
  /// are not checked for being continuation bytes, 0x80 to 0xBF lead a
  /// two-byte sequence, a sequence cut off by the end of the text gives
  /// nothing for its lead byte, overlong forms decode to the short value and
  /// three-byte surrogates are stored as they are.
  KVTString(char const* text,
            KVTCharEncodingType encoding = KVTCharEncodingUTF8);

  /// Takes over the whole value, zero units included.
  KVTString(std::basic_string<unsigned short, std::char_traits<unsigned short>,
                              std::allocator<unsigned short> > const& units);

  /// Copies the units before the first zero unit.  Callers rely on the cut;
  /// assignment keeps every unit.
  KVTString(KVTString const& other);

  /// Assigns the whole value of `other`, zero units included.
  KVTString& operator=(KVTString const& other);

  /// Erases nothing: the text stays in memory that was released.
  virtual ~KVTString();

  /// @}
  /// @name Conversions and queries
  /// @{

  /// Returns the value that the search functions give for "not found", the
  /// all-ones 64-bit number.
  static unsigned long GetNPos();

  /// Returns one zero-extended element per unit; a surrogate pair stays two
  /// elements.
  std::wstring GetWstring() const;

  /// Returns the UTF-8 form (RFC 3629).  Nothing is refused: an unpaired
  /// surrogate comes out as three bytes, a zero unit as a zero byte.  Callers
  /// rely on U+07FF taking three bytes as well.  Decoding the result gives the
  /// same units back as long as none of them is zero.
  std::string GetUTF8String() const;

  /// Tells whether a unit at or after `start` (in units) is one of `set`.
  /// Callers rely on `start` being held against the length of `set` too: a
  /// two-unit set never matches from 2 on.
  bool ContainsAny(KVTString const& set, unsigned int start) const;

  /// Tells whether `c` is one of the six bytes 0x08 to 0x0D.
  static bool IsNonVisibleCharacter(unsigned char c);

  /// Returns true when the UTF-8 forms are equal after toupper(3) on each byte
  /// in the current locale.  Case is folded in spite of the name; in the
  /// default locale only ASCII letters fold.
  static bool CompareBasedOnOSCaseSensitivity(KVTString a, KVTString b);

  /// Orders the UTF-8 forms after toupper(3) on each byte in the current
  /// locale: 0 when equal, otherwise the result of memcmp(3) over the shorter
  /// length, otherwise the difference of the byte lengths, clamped to 32 bits.
  static int CompareBasedOnCaseInsensitivity(KVTString a, KVTString b);

  /// Returns a copy of `s` with each byte put through tolower(3) in the
  /// current locale; null when `s` is null or strdup(3) fails.  The caller
  /// releases the copy with free(3).
  static char* ConvertStringLower(char const* s);

  /// Returns a copy of `s` with each byte put through toupper(3) in the
  /// current locale; null when `s` is null or strdup(3) fails.  The caller
  /// releases the copy with free(3).
  static char* ConvertStringUpper(char const* s);

  /// @}
  /// @name Cutting, splitting and joining
  /// @{

  /// Returns at most `count` units from `start` (both in units) on; 0xFFFFFFFF
  /// reads to the end.  An empty string gives an empty string whatever
  /// `start` is; otherwise a `start` above the length throws
  /// std::out_of_range with the text "basic_string::substr".
  KVTString SubString(unsigned int start, unsigned int count);

  /// Splits at the first `separator` into the units before and behind it.
  /// Returns no element at all when the text is empty, holds no separator, or
  /// when the separator is zero or not ASCII.
  static std::vector<KVTString> SplitStringOnce(KVTString text, char separator);

  /// Splits at the last `separator`, otherwise like SplitStringOnce.
  static std::vector<KVTString> SplitStringOnceFromLast(KVTString text,
                                                        char separator);

  /// Appends to `out` the runs of units that are not in `delimiters`.  Returns
  /// false, with `out` untouched, only for an empty `delimiters`.
  ///
  /// Runs are never empty, with one exception: a text without any delimiter,
  /// the empty text included, is appended whole.  Callers rely on one more
  /// oddity: when all delimiters stand before the only run, nothing is
  /// appended (",a" gives nothing, ",a," gives "a").
  bool SubStrings(KVTString const& delimiters,
                  std::vector<KVTString>& out) const;

  /// Returns the fields of the UTF-8 form of `text` between bytes equal to
  /// `separator`, as std::getline reads them: empty fields are kept, none
  /// follows a trailing separator, an empty text has none.
  static std::vector<std::string> GetVectorFromString(KVTString text,
                                                      char separator);

  /// Joins `parts` with `separator` between them; empty parts keep their
  /// separator.
  static KVTString GetStringFromVector(std::vector<KVTString> parts,
                                       KVTString separator);

  /// Appends to `out` every selection of `size` units out of the positions
  /// `start` to `end` (inclusive), in order of position, each unit cut to its
  /// low 8 bits and the whole read as UTF-8.
  ///
  /// `buffer` belongs to the caller, holds at least `size` + 1 bytes and is
  /// written to; its first `index` bytes are taken as chosen already, so a
  /// first call passes 0 for `start` and `index` and the length minus 1 for
  /// `end`.  Positions are not held against the length: an `end` beyond it
  /// reads past the text.
  void ListCombinationsOfString(char* buffer, unsigned int start,
                                unsigned int end, unsigned int index,
                                unsigned int size,
                                std::vector<KVTString>& out) const;

  /// @}
  /// @name Trimming, replacing, case
  /// @{

  /// Returns `text` without its leading blanks, tabs, vertical tabs, carriage
  /// returns and line feeds; `this` plays no part.  Callers rely on a text
  /// that is empty or holds nothing else throwing std::out_of_range with the
  /// text "basic_string::substr".
  KVTString TrimLeadingSpaces(KVTString const& text);

  /// Returns a copy without the runs of `c` at both ends.  `c` is
  /// sign-extended to a unit, so that a byte of 0x80 or above matches only
  /// 0xFF80 to 0xFFFF.
  KVTString TrimChars(char c) const;

  /// Replaces `from` by `to`, starting over from the front after each
  /// replacement, until `from` is gone; returns `*this`.  Text made by one
  /// replacement can match again: "aaa" with "aa" to "a" becomes "a", and a
  /// `to` that contains `from` grows until memory runs out.  Nothing happens
  /// when `from` is empty or equals `to`.  Neither may refer to `*this`.
  KVTString& ReplaceAll(KVTString const& from, KVTString const& to);

  /// Returns `text` with each run of blanks (0x20) cut to one blank.
  static KVTString ReplaceAllSpacesWithOneSpace(KVTString text);

  /// Returns true when `a` is the blank 0x20 and `b` equals `a`.
  static bool SpaceComparer(char a, char b);

  /// Removes from `text` every byte for which IsNonVisibleCharacter holds.
  static void RemoveInVisibleCharacters(KVTString& text);

  /// Returns a copy without the ASCII vowels of either case.  Each unit that
  /// stays is cut to its low 8 bits and the whole is read as UTF-8, so text
  /// beyond ASCII does not survive.  Callers rely on the units being counted in
  /// a signed 32-bit number: 0x80000000 of them give an empty text.
  KVTString RemoveVowels() const;

  /// Returns a copy with each byte of the UTF-8 form put through tolower(3) in
  /// the current locale.  The copy stops at the first zero unit.
  KVTString ConvertStringLower();

  /// Returns a copy with each byte of the UTF-8 form put through toupper(3) in
  /// the current locale.  The copy stops at the first zero unit.
  KVTString ConvertStringUpper();

  /// @}
  /// @name Character classes
  /// @{

  /// Tells whether one of the 32 ASCII punctuation characters occurs.
  bool ContainsSpecialCharacters() const;

  /// Tells whether the text is not empty and holds none of \/:?%*<">|
  bool IsPermissableFileName() const;

  /// Returns the ten characters that IsPermissableFileName refuses, one string
  /// each, in this order: / \ : * ? > " < | %
  static std::vector<KVTString> GetNotAllowedCharactersForFileName();

  /// Tells whether the text up to its first zero unit is not empty and all
  /// ASCII digits.
  bool ContainsOnlyDigits() const;

  /// Tells whether the text up to its first zero unit is not empty and all
  /// ASCII letters; each unit goes through toupper(3) first.
  bool ContainsOnlyAlphabets() const;

  /// @}
  /// @name Numbers as text
  /// @{

  /// Reads a 32-bit unsigned number in the base that `manipulator` sets
  /// (std::dec, std::hex or std::oct), as `std::wistream >> unsigned int` does
  /// in the global locale: leading white space is skipped, what follows the
  /// number is ignored, "-1" gives 0xFFFFFFFF, a number too large gives
  /// 0xFFFFFFFF, a text without a number gives 0.
  unsigned int GetIntValue(std::ios_base& (*manipulator)(std::ios_base&)) const;

  /// Reads a floating-point number as `std::wistream >> double` does in the
  /// global locale; 0.0 when there is none.
  double GetDoubleValue() const;

  /// Appends `value` as sprintf(3) formats it with `format`, which must consume
  /// exactly one `int`.  Always returns 0.  A result of more than 99 bytes
  /// aborts the process.
  int AppendNumber(int value, KVTString const& format);

  /// Appends `value` in decimal.  Always returns 0.
  int AppendNumber(int value);

  /// Appends `value` in decimal.  Always returns 0.
  int AppendUNumber(unsigned int value);

  /// Returns `value` in decimal.
  static KVTString ConvertIntToString(long long value);

  /// Returns `value` in lower-case hexadecimal without prefix or padding; a
  /// negative value shows its 64-bit two's complement.
  static KVTString ConvertIntToHexString(long long value);

  /// @}

  /// Reads the form 00112233-4455-6677-8899-aabbccddeeff.  Gives the all-zero
  /// value, as for a text of zeros, when the text is not 36 units long, has not
  /// five parts, or the last two have more than 16 bytes together.
  ///
  /// More lenient than KVTFileUtil::isGUIDValid: the lengths of the parts are
  /// not looked at otherwise.  Each two characters of the last two parts are
  /// read as a hexadecimal `std::istream >> unsigned int` does, behind what the
  /// reads before have left over: blanks, a sign and "0x" may stand in front of
  /// digits, and from a character that cannot be read on, all bytes are zero,
  /// but for a digit in front of it in its pair.
  static KVTGUID GetGUID(KVTString text);
};

/// @name Comparison and concatenation with narrow and wide text
/// `char const*` is decoded as UTF-8 and `wchar_t const*` narrowed, as the
/// constructors do; null stands for the empty text.
/// @{

/// Tells whether both texts have the same units; case counts.
KVT_EXPORT bool operator==(wchar_t const* a, KVTString const& b);
/// @copydoc operator==(wchar_t const*, KVTString const&)
KVT_EXPORT bool operator==(KVTString const& a, wchar_t const* b);
/// @copydoc operator==(wchar_t const*, KVTString const&)
KVT_EXPORT bool operator==(char const* a, KVTString const& b);
/// @copydoc operator==(wchar_t const*, KVTString const&)
KVT_EXPORT bool operator==(KVTString const& a, char const* b);

/// Appends `b` to `a` and returns `a`.
KVT_EXPORT KVTString& operator+=(KVTString& a, char const* b);

/// Returns `a` followed by `b`.
KVT_EXPORT KVTString operator+(char const* a, KVTString const& b);
/// @copydoc operator+(char const*, KVTString const&)
KVT_EXPORT KVTString operator+(KVTString const& a, char const* b);
/// @copydoc operator+(char const*, KVTString const&)
KVT_EXPORT KVTString operator+(wchar_t const* a, KVTString const& b);
/// @copydoc operator+(char const*, KVTString const&)
KVT_EXPORT KVTString operator+(KVTString const& a, wchar_t const* b);

/// @}

/// Writes the UTF-8 form up to its first zero byte and returns `out`.
KVT_EXPORT std::basic_ostream<char, std::char_traits<char> >& operator<<(
    std::basic_ostream<char, std::char_traits<char> >& out,
    KVTString const& text);

#endif  // KVTSTRING_H
