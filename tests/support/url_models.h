/// Slow, obvious models of the operations on network locations.

#ifndef KVT_TESTS_URL_MODELS_H
#define KVT_TESTS_URL_MODELS_H

#include <string>

#include "KVTString.h"

/// What an operation gives: its bool, the text it stores, and what it writes to
/// standard output.
struct ModelText {
  bool throws;
  bool found;
  KVTString text;
  std::string printed;
};

bool ModelHasProtocol(const KVTString& location);
ModelText ModelProtocol(const KVTString& location);
ModelText ModelUrl(const KVTString& location);

#endif  // KVT_TESTS_URL_MODELS_H
