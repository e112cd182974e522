#include "vorn/core/ModuleQueues.hpp"

#include <map>
#include <mutex>

namespace vorn {
namespace {

using QueueMap = std::map<std::string, std::shared_ptr<ModuleQueue>>;

// The registry: a snapshot that readers copy out under the lock and writers replace whole.
struct Registry {
  std::mutex mutex;
  std::shared_ptr<const QueueMap> queues = std::make_shared<const QueueMap>();  // guarded

  std::shared_ptr<const QueueMap> read() {
    std::lock_guard guard(mutex);
    return queues;
  }
};

Registry& registry() {
  static Registry* const instance = new Registry();
  return *instance;
}

std::shared_ptr<ModuleQueue> findOrCreate(ModuleName module) {
  const std::string name = ModuleQueues::queueName(module);
  Registry& reg = registry();
  std::lock_guard guard(reg.mutex);
  if (auto found = reg.queues->find(name); found != reg.queues->end())
    return found->second;
  auto updated = std::make_shared<QueueMap>(*reg.queues);
  auto created = std::make_shared<ModuleQueue>(module);
  updated->emplace(name, created);
  reg.queues = std::move(updated);
  return created;
}

}  // namespace

std::string ModuleQueues::queueName(ModuleName module) {
  return "vornsdk.module." + std::string(rawValue(module)) + ".tasks";
}

void ModuleQueues::addOperation(std::shared_ptr<Operation> operation, ModuleName module) {
  findOrCreate(module)->addOperation(std::move(operation));
}

std::optional<std::size_t> ModuleQueues::pendingOperationCount(ModuleName module) {
  if (auto found = queue(module))
    return found->operationCount();
  return std::nullopt;
}

void ModuleQueues::removeQueue(ModuleName module) {
  auto found = queue(module);
  if (!found)
    return;
  found->cancelAll();
  Registry& reg = registry();
  std::lock_guard guard(reg.mutex);
  auto updated = std::make_shared<QueueMap>(*reg.queues);
  // Only forget the queue that was cancelled; a replacement installed meanwhile stays.
  if (auto it = updated->find(found->name()); it != updated->end() && it->second == found) {
    updated->erase(it);
    reg.queues = std::move(updated);
  }
}

std::shared_ptr<ModuleQueue> ModuleQueues::queue(ModuleName module) {
  const auto snapshot = registry().read();
  const auto found = snapshot->find(queueName(module));
  return found == snapshot->end() ? nullptr : found->second;
}

void ModuleQueues::install(std::shared_ptr<ModuleQueue> queue) {
  if (!queue)
    return;
  Registry& reg = registry();
  std::lock_guard guard(reg.mutex);
  auto updated = std::make_shared<QueueMap>(*reg.queues);
  (*updated)[queue->name()] = std::move(queue);
  reg.queues = std::move(updated);
}

}  // namespace vorn
