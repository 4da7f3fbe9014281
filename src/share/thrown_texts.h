/// How the share code passes on what is thrown through it.

#ifndef KVT_SHARE_THROWN_TEXTS_H
#define KVT_SHARE_THROWN_TEXTS_H

#include "KVTString.h"

/// Returns what `body` returns.  A thrown `char*` or `KVTString*` goes on to
/// the caller as a new exception with the same pointer; whatever else `body`
/// throws is dropped and `otherwise` called in its place, inside the handler,
/// for a result of the same type.
template <class Body, class Otherwise>
auto PassOnThrownTexts(Body body, Otherwise otherwise) -> decltype(body()) {
  try {
    return body();
  } catch (char* text) {
    throw text;
  } catch (KVTString* text) {
    throw text;
  } catch (...) {
    return otherwise();
  }
}

#endif  // KVT_SHARE_THROWN_TEXTS_H
