#include "empty_string.h"

KVTString mEmptyString("", KVTString::KVTCharEncodingUTF8);
