#include "vorn/identity/DataMergePolicyHandler.hpp"

namespace vorn {

DataMergePolicyHandler& DataMergePolicyHandler::shared() {
  static DataMergePolicyHandler* const instance = new DataMergePolicyHandler;
  return *instance;
}

}  // namespace vorn
