#include "KVTStream.h"

KVTStreamUtil* KVTStreamUtil::mUtil = nullptr;

KVTStreamUtil::KVTStreamUtil() {}

KVTStreamUtil* KVTStreamUtil::GetInstance() {
  if (mUtil == nullptr) mUtil = new KVTStreamUtil;
  return mUtil;
}
