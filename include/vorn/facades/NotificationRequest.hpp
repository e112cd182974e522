// NotificationRequest: the notification the host's notification centre delivered, as the
// push module reads it: the request's identifier, the visible texts and the payload the
// push server sent (userInfo).
//
// The push facade only passes requests through. A plain value type; thread-safe as any
// const object.
#pragma once

#include <string>

#include "vorn/base/Value.hpp"

namespace vorn {

struct NotificationRequest {
  std::string identifier;
  std::string title;
  std::string subtitle;
  std::string body;
  Dictionary userInfo;

  bool operator==(const NotificationRequest&) const = default;
};

}  // namespace vorn
