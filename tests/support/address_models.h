/// Slow, obvious models of the address tests, on narrow text.

#ifndef KVT_TESTS_ADDRESS_MODELS_H
#define KVT_TESTS_ADDRESS_MODELS_H

#include <string>
#include <vector>

/// The pieces between the delimiters; always one more than there are
/// delimiters.
std::vector<std::string> SplitAtEach(const std::string& text, char delimiter);

bool ModelIPV4Block(const std::string& block);
bool ModelIPV4Address(const std::string& text);
bool ModelHostName(const std::string& text);
int ModelAddressType(const std::string& text);
std::string ModelMask(const std::string& text);

#endif  // KVT_TESTS_ADDRESS_MODELS_H
