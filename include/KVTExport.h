/// @file
/// The macro that marks what the shared library exports.

#ifndef KVTEXPORT_H
#define KVTEXPORT_H

/// Gives a class, function or datum default visibility; everything else in the
/// library is hidden.
#define KVT_EXPORT __attribute__((visibility("default")))

#endif  // KVTEXPORT_H
