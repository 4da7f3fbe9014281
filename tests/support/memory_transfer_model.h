/// The memory transport beside a model of its rules.

#ifndef KVT_TESTS_MEMORY_TRANSFER_MODEL_H
#define KVT_TESTS_MEMORY_TRANSFER_MODEL_H

#include <cstddef>
#include <cstdint>
#include <string>

/// Reads `data` as operations, does them to a KVTMemoryTransferBytes and to a
/// slow, obvious model, and compares after each: results, position, size,
/// state, every byte of the block and behind it, the target of reads, what was
/// asked of the allocator and given back to it.  Overruns and releases through
/// inner pointers, which the rules bring about, are followed in watched arrays;
/// what would divide by zero is left out.
///
/// Returns an empty text, or what differed and the operations up to there.
/// Needs the program to have kvt_test_hooks.
std::string CompareMemoryTransfer(const std::uint8_t* data, std::size_t size);

#endif  // KVT_TESTS_MEMORY_TRANSFER_MODEL_H
