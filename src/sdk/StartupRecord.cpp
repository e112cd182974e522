#include "sdk/StartupRecord.hpp"

#include "vorn/facades/FacadeSources.hpp"

namespace vorn::detail {

StartupRecord::StartupRecord() : identity(IDENTITY::shared()) {
  // The bus and the identity read module statuses before any module starts, and they must
  // read them from the facades that start-up drives.
  installFacadeSources();
}

StartupRecord& startupRecord() {
  static StartupRecord* const instance = new StartupRecord();
  return *instance;
}

}  // namespace vorn::detail
