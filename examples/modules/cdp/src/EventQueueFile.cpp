#include "EventQueueFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

namespace cdp {
namespace {

using vorn::LoggerCategory;

constexpr std::size_t kLengthBytes = 4;

std::string lastError() {
  return std::strerror(errno);
}

void putLength(vorn::Bytes& out, std::size_t length) {
  for (int shift = 24; shift >= 0; shift -= 8)
    out.push_back(static_cast<std::uint8_t>((length >> shift) & 0xff));
}

std::size_t getLength(const std::uint8_t* in) {
  return (std::size_t{in[0]} << 24) | (std::size_t{in[1]} << 16) | (std::size_t{in[2]} << 8) |
         std::size_t{in[3]};
}

void appendRecord(vorn::Bytes& out, const QueuedEvent& event) {
  putLength(out, event.sealed.size());
  out.insert(out.end(), event.sealed.begin(), event.sealed.end());
}

bool makePrivateDirectory(const std::filesystem::path& directory) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error)
    return false;
  return ::chmod(directory.c_str(), 0700) == 0;
}

}  // namespace

EventQueueFile::EventQueueFile(std::filesystem::path path,
                               std::shared_ptr<vorn::EncryptionManager> encryptionManager,
                               std::shared_ptr<vorn::ModuleLogger> logger, bool syncWrites)
    : path_(std::move(path)),
      encryptionManager_(std::move(encryptionManager)),
      logger_(std::move(logger)),
      syncWrites_(syncWrites) {}

EventQueueFile::~EventQueueFile() {
  close();
}

bool EventQueueFile::open(Loaded& loaded) {
  if (!makePrivateDirectory(path_.parent_path())) {
    logger_->e(LoggerCategory::storage,
               "Could not create the events directory " + path_.parent_path().string() + ".");
    return false;
  }
  loaded.events = read(loaded.skipped);
  if (loaded.skipped > 0) {
    std::vector<const QueuedEvent*> kept;
    for (const auto& event : loaded.events)
      kept.push_back(&event);
    return rewrite(kept);
  }
  return openForAppend();
}

std::vector<QueuedEvent> EventQueueFile::read(std::size_t& skipped) const {
  std::ifstream in(path_, std::ios::binary);
  const vorn::Bytes bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  std::vector<QueuedEvent> events;
  std::size_t offset = 0;
  while (offset < bytes.size()) {
    const std::size_t left = bytes.size() - offset;
    const std::size_t length = left < kLengthBytes ? left : getLength(&bytes[offset]);
    if (left < kLengthBytes || length > left - kLengthBytes) {
      logger_->w(LoggerCategory::storage, "Skipped a truncated event record at offset " +
                                              std::to_string(offset) + " (" + std::to_string(left) +
                                              " bytes).");
      ++skipped;
      break;
    }
    if (auto event = unseal(vorn::ByteView(&bytes[offset + kLengthBytes], length))) {
      events.push_back(std::move(*event));
    } else {
      logger_->w(LoggerCategory::storage,
                 "Skipped an unreadable event record at offset " + std::to_string(offset) + ".");
      ++skipped;
    }
    offset += kLengthBytes + length;
  }
  return events;
}

std::optional<QueuedEvent> EventQueueFile::unseal(vorn::ByteView record) const {
  auto text = encryptionManager_->decrypt(record);
  if (!text)
    return std::nullopt;
  const auto json = nlohmann::json::parse(*text, nullptr, false);
  if (!json.is_object() || !json.contains("id") || !json["id"].is_string())
    return std::nullopt;
  return QueuedEvent{json["id"].get<std::string>(), std::move(*text),
                     vorn::Bytes(record.begin(), record.end())};
}

std::optional<QueuedEvent> EventQueueFile::seal(std::string id, std::string json) const {
  auto sealed = encryptionManager_->encrypt(json);
  if (!sealed)
    return std::nullopt;
  return QueuedEvent{std::move(id), std::move(json), std::move(*sealed)};
}

bool EventQueueFile::append(const QueuedEvent& event) {
  if (fd_ < 0)
    return false;
  vorn::Bytes record;
  record.reserve(kLengthBytes + event.sealed.size());
  appendRecord(record, event);
  return writeAll(fd_, record);
}

bool EventQueueFile::rewrite(const std::vector<const QueuedEvent*>& events) {
  vorn::Bytes contents;
  for (const QueuedEvent* event : events)
    appendRecord(contents, *event);
  const std::filesystem::path temporary = path_.string() + ".tmp";
  const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const bool written = fd >= 0 && ::fchmod(fd, 0600) == 0 && writeAll(fd, contents);
  if (fd >= 0)
    ::close(fd);
  if (!written || ::rename(temporary.c_str(), path_.c_str()) != 0) {
    logger_->e(LoggerCategory::storage, "Could not rewrite the events file: " + lastError());
    ::unlink(temporary.c_str());
    return false;
  }
  if (syncWrites_)
    syncDirectory();
  close();
  return openForAppend();
}

void EventQueueFile::syncDirectory() const {
  const int fd = ::open(path_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0)
    return;
  ::fsync(fd);
  ::close(fd);
}

void EventQueueFile::close() {
  if (fd_ >= 0)
    ::close(fd_);
  fd_ = -1;
}

bool EventQueueFile::openForAppend() {
  fd_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (fd_ < 0 || ::fchmod(fd_, 0600) != 0) {
    logger_->e(LoggerCategory::storage, "Could not open the events file: " + lastError());
    close();
    return false;
  }
  return true;
}

bool EventQueueFile::writeAll(int fd, const vorn::Bytes& bytes) const {
  ssize_t written = 0;
  do {
    written = ::write(fd, bytes.data(), bytes.size());
  } while (written < 0 && errno == EINTR);
  const bool complete = written == static_cast<ssize_t>(bytes.size());
  if (!complete) {
    logger_->e(LoggerCategory::storage,
               "Could not write the events file: " + (written < 0 ? lastError() : "short write"));
  }
  return complete && (!syncWrites_ || ::fsync(fd) == 0);
}

}  // namespace cdp
