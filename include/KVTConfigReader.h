/// @file
/// Reader of configuration files with sections:
///
///     # a comment; one that begins with a semicolon does as well
///     [share]
///     host = backup.example.com
///     host = backup2.example.com
///
/// A reader belongs to one thread while it reads; afterwards several threads
/// can look at it at once.

#ifndef KVTCONFIGREADER_H
#define KVTCONFIGREADER_H

#include <istream>
#include <map>
#include <vector>

#include "KVTExport.h"
#include "KVTString.h"

/// One section as it stands in the file.
class KVT_EXPORT KVTConfigSection {
 public:
  ~KVTConfigSection();

  /// The lines, ordered by key: unit by unit as unsigned numbers, a key before
  /// those it is the beginning of.  A key given twice is here twice, in the
  /// order of the file.
  std::multimap<KVTString, KVTString> mEntries;

  /// The text between the brackets, as it stands there.
  KVTString mName;
};

/// Reads a whole file at construction and hands it over with GetConfiguration;
/// there is no look-up.  Nothing is ever reported: a file that cannot be opened
/// is an empty configuration.
class KVT_EXPORT KVTConfigReader {
 public:
  /// Reads the file at `path`; no section at all when it cannot be read.
  KVTConfigReader(const KVTString& path);

  /// Reads `in` as ReadConfiguration does.
  KVTConfigReader(std::istream& in);

  /// Appends what `in` holds from its position to its end, until reading fails.
  ///
  /// Lines end with a line feed, which the last one may lack; a carriage return
  /// before it is part of the line.  The first byte alone says what a line is,
  /// blanks count:
  ///
  /// - no byte at all: skipped;
  /// - `#` or `;`: a comment, skipped; anywhere else they are ordinary text;
  /// - `[`: a header.  The name is what follows up to the first `]`, or to the
  ///   end of the line, untrimmed; the rest is ignored.  Each header begins a
  ///   section of its own, even under a name that came before;
  /// - anything else: an entry of the last section, dropped when there is none
  ///   yet.  The key is what precedes the first `=`, the value what follows it;
  ///   without `=` the whole line is both.  Both lose blanks, tabs and carriage
  ///   returns at their ends.  Case is kept.
  ///
  /// Callers rely on a line of blanks being an entry with an empty key and an
  /// empty value; in a file with carriage returns each blank line is one.
  ///
  /// The parts of a line are read as UTF-8 up to their first zero byte, and cut
  /// before they are decoded.  There are no quotes, escapes, continued lines or
  /// variables.
  ///
  /// Throws std::bad_alloc when memory runs out, and what `in` throws when its
  /// exceptions are enabled; what was read so far stays.  Memory that runs out
  /// inside std::getline, for a line longer than those before, makes `in` bad
  /// instead and so ends the reading.
  void ReadConfiguration(std::istream& in);

  /// Returns the sections in the order of the file: the reader's own vector,
  /// not a copy.  Valid as long as the reader; changes stick.
  std::vector<KVTConfigSection>& GetConfiguration();

  /// Returns `text` without the bytes of `characters` at both ends.  Both are
  /// taken as UTF-8 and compared byte by byte, so a character beyond ASCII in
  /// `characters` can take a part of another one away.  The result stops at the
  /// first zero unit; the object plays no part.
  KVTString TrimWhiteSpace(const KVTString& text, const KVTString& characters);

 private:
  std::vector<KVTConfigSection> mSections;
};

#endif  // KVTCONFIGREADER_H
