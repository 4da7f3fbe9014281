/// Slow, obvious models of the operations on network locations.

#ifndef KVT_TESTS_URL_MODELS_H
#define KVT_TESTS_URL_MODELS_H

#include "KVTString.h"

/// What an operation gives: its bool, and the text it stores.
struct ModelText {
  bool throws;
  bool found;
  KVTString text;
};

bool ModelHasProtocol(const KVTString& location);
ModelText ModelProtocol(const KVTString& location);
ModelText ModelUrl(const KVTString& location);

#endif  // KVT_TESTS_URL_MODELS_H
