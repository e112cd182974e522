// Random (version 4) UUIDs in their upper-case text form: 36 characters, hexadecimal digits
// in groups of 8, 4, 4, 4 and 12 joined by hyphens, e.g.
// "3F2504E0-4F89-41D3-9A0C-0305E82C3301". Every event gets one as its id.
//
// The random bytes come from OpenSSL's generator, drawn in 4 KiB batches into a per-thread
// pool, so one id costs a few dozen nanoseconds instead of a generator call. A child process
// created by fork() discards the pool it inherited, so parent and child never share ids.
//
// Thread-safe.
#pragma once

#include <string>

#include "vorn/base/Export.hpp"

namespace vorn {

VORN_API std::string makeUuidString();

}  // namespace vorn
