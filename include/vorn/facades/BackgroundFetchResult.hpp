// BackgroundFetchResult: what a background refresh tells the host when it is done, with the
// integer values host operating systems use for it. Pure and thread-safe.
#pragma once

namespace vorn {

enum class BackgroundFetchResult : int { newData = 0, noData = 1, failed = 2 };

}  // namespace vorn
