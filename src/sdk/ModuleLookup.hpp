// Finding the implementation class of a facade's module and checking that its version lies
// in the facade's range.
#pragma once

#include <optional>

#include "sdk/HeldLines.hpp"
#include "vorn/core/ModuleClass.hpp"
#include "vorn/facades/ModuleFacade.hpp"

namespace vorn::detail {

/// The class registered under the module name's description when its version is accepted;
/// no value otherwise, with the reason kept in `lines`.
std::optional<ModuleClass> findCompatibleClass(const ModuleFacade& facade, HeldLines& lines);

}  // namespace vorn::detail
