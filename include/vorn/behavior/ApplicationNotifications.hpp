// The notification names the behaviour layer listens to on NotificationCenter::defaultCenter().
//
// The host's platform layer posts them; the library never does, except the screen
// notification, which BehaviorWatcher::viewDidAppear() posts once the screen hook is
// installed. Which host event posts which name:
//
// - kApplicationWillEnterForegroundNotification: iOS, UIApplication's own; Android,
//   ProcessLifecycleOwner ON_START; desktop, the main window is restored or shown.
// - kApplicationDidEnterBackgroundNotification: iOS, UIApplication's own; Android,
//   ProcessLifecycleOwner ON_STOP; desktop, the main window is minimised or hidden.
// - kApplicationDidBecomeActiveNotification: iOS, UIApplication's own; Android,
//   ProcessLifecycleOwner ON_RESUME; desktop, the main window gains focus.
// - kScreenDidAppearNotification: posted by BehaviorWatcher::viewDidAppear(), which the
//   host's UI layer calls when a screen appears (see BehaviorWatcher.hpp).
//
// On iOS the bridge forwards the three UIApplication notifications under the same names. On
// Android, ProcessLifecycleOwner (or an Activity-lifecycle counter) gives one app-wide
// start/stop/resume. The version check runs on every "did become active", so posting it on
// each resume or focus gain is right. The screen notification carries the user info
// {kScreenDidAppearNameKey: the screen's name as a string}; any other user info is ignored.
#pragma once

#include <string_view>

namespace vorn {

inline constexpr std::string_view kApplicationWillEnterForegroundNotification =
    "UIApplicationWillEnterForegroundNotification";
inline constexpr std::string_view kApplicationDidEnterBackgroundNotification =
    "UIApplicationDidEnterBackgroundNotification";
inline constexpr std::string_view kApplicationDidBecomeActiveNotification =
    "UIApplicationDidBecomeActiveNotification";
inline constexpr std::string_view kScreenDidAppearNotification =
    "com.quorvantis.tessarine.VORNSdk_screenDidAppear";
/// The user-info key of kScreenDidAppearNotification holding the screen's name.
inline constexpr std::string_view kScreenDidAppearNameKey = "name";

}  // namespace vorn
