// Every test-support header of vorn::testing: in-memory and fault-injecting stores, the
// capture log sink, fake feature modules, and the wait, temporary-directory, child-process and
// standard-error helpers.
#pragma once

#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/ChildProcess.hpp"
#include "vorn/testing/FakeCallLog.hpp"
#include "vorn/testing/FakeCdpModule.hpp"
#include "vorn/testing/FakeModule.hpp"
#include "vorn/testing/FakeModuleClass.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"
#include "vorn/testing/FakePendingOperations.hpp"
#include "vorn/testing/FakePushModule.hpp"
#include "vorn/testing/FaultyDefaultsStore.hpp"
#include "vorn/testing/FaultyKeychainStore.hpp"
#include "vorn/testing/ManualClock.hpp"
#include "vorn/testing/PlatformInstall.hpp"
#include "vorn/testing/ScriptedHttpTransport.hpp"
#include "vorn/testing/StandardErrorToFile.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"
#include "vorn/testing/TimeScale.hpp"
#include "vorn/testing/Wait.hpp"
