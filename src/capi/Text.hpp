// Text crossing the bridge: results handed to the caller (malloc'd, released by vorn_free())
// and module names read from it.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "vorn/base/ModuleName.hpp"
#include "vorn/vorn.h"

namespace vorn::capi {

/// A NUL-terminated malloc'd copy of `text`; throws std::bad_alloc when memory runs out.
char* copyOut(std::string_view text);

/// "cdp" or "push"; no value for NULL or anything else.
std::optional<ModuleName> moduleFrom(const char* name) noexcept;

/// The `count` names of `names`, each checked; refuses (with the log line) a NULL array with a
/// count, a NULL entry or an unknown name.
vorn_status modulesFrom(std::string_view function, const char* const* names, std::size_t count,
                        std::vector<ModuleName>& modules);

}  // namespace vorn::capi
