"""The C bridge from Python through ctypes, as a Python host would use it.

Usage: ctypes_test.py <libvornsdk> [cdp-module-library]

Starts the SDK on a temporary data directory (with the cdp module when its library is given),
tracks an event, sets the identity, reads the state and identity JSON through a log sink
written in Python, and tears down. Exits non-zero on the first step that goes wrong.
"""

import ctypes
import json
import sys
import tempfile
import threading
import time
import unittest

VORN_OK = 0
VORN_ERROR_INVALID_ARGUMENT = 1
VORN_ERROR_UNKNOWN_MODULE = 2
VORN_ERROR_INVALID_SETTINGS = 3
VORN_RESULT_SUCCESS = 2
VORN_STATE_READY = 2
VORN_LOG_DEBUG = 0
VORN_LOG_NONE = 4
VORN_CONSENT_OPT_IN = 0

MODULE_CALLBACK = ctypes.CFUNCTYPE(None, ctypes.c_char_p, ctypes.c_int, ctypes.c_void_p)
LOG_SINK = ctypes.CFUNCTYPE(None, ctypes.c_int, ctypes.c_char_p, ctypes.c_char_p,
                            ctypes.c_char_p, ctypes.c_void_p)

LIBRARY_PATH = None
CDP_LIBRARY_PATH = None


def load(path):
    lib = ctypes.CDLL(path)
    # Text results are taken as raw pointers so that they can be handed back to vorn_free.
    for name in ("vorn_state_json", "vorn_identity_json", "vorn_push_tags"):
        getattr(lib, name).restype = ctypes.c_void_p
    lib.vorn_free.argtypes = [ctypes.c_void_p]
    lib.vorn_config_new.restype = ctypes.c_void_p
    lib.vorn_config_free.argtypes = [ctypes.c_void_p]
    lib.vorn_config_add_module.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p,
                                           MODULE_CALLBACK, ctypes.c_void_p]
    lib.vorn_initialize.argtypes = [ctypes.c_void_p]
    lib.vorn_set_logger.argtypes = [ctypes.c_int, LOG_SINK, ctypes.c_void_p]
    lib.vorn_track_event.argtypes = [ctypes.c_char_p, ctypes.c_char_p]
    lib.vorn_identity_set_profile_id.argtypes = [ctypes.c_char_p,
                                                 ctypes.POINTER(ctypes.c_char_p), ctypes.c_size_t]
    lib.vorn_identity_set_profile_attributes.argtypes = [
        ctypes.c_char_p, ctypes.POINTER(ctypes.c_char_p), ctypes.c_size_t]
    return lib


def take_text(lib, pointer):
    """Copies a caller-owned result into Python and frees it; None for NULL."""
    if not pointer:
        return None
    try:
        return ctypes.string_at(pointer).decode("utf-8")
    finally:
        lib.vorn_free(pointer)


def wait_until(condition, timeout=10.0):
    deadline = time.monotonic() + timeout
    while not condition():
        if time.monotonic() >= deadline:
            return condition()
        time.sleep(0.001)
    return True


class BridgeFromPython(unittest.TestCase):
    def test_start_track_identify_read_and_tear_down(self):
        lib = load(LIBRARY_PATH)
        lock = threading.Lock()
        lines = []
        outcomes = []

        # The callbacks must stay referenced while the library may call them.
        @LOG_SINK
        def sink(level, subsystem, category, message, context):
            with lock:
                lines.append((level, subsystem.decode(), category.decode(), message.decode()))

        @MODULE_CALLBACK
        def on_outcome(module, result, context):
            with lock:
                outcomes.append((module.decode(), result))

        self.assertEqual(lib.vorn_set_logger(VORN_LOG_DEBUG, sink, None), VORN_OK)
        with tempfile.TemporaryDirectory(prefix="vorn-ctypes-") as data_dir:
            self.assertEqual(lib.vorn_set_data_directory(data_dir.encode()), VORN_OK)
            config = lib.vorn_config_new()
            try:
                self.assertEqual(lib.vorn_config_add_module(config, b"mail", b"{}",
                                                            MODULE_CALLBACK(), None),
                                 VORN_ERROR_UNKNOWN_MODULE)
                if CDP_LIBRARY_PATH:
                    self.assertEqual(lib.vorn_load_module_library(CDP_LIBRARY_PATH.encode()),
                                     VORN_OK)
                    self.assertEqual(lib.vorn_config_add_module(
                        config, b"cdp", b'{"appId": "py", "colour": "blue"}', on_outcome, None),
                        VORN_ERROR_INVALID_SETTINGS)
                    settings = json.dumps({"appId": "py", "endpoint": "http://127.0.0.1:9",
                                           "flushIntervalSeconds": 3600,
                                           "dataDirectory": data_dir})
                    self.assertEqual(lib.vorn_config_add_module(
                        config, b"cdp", settings.encode(), on_outcome, None), VORN_OK)
                self.assertEqual(lib.vorn_initialize(config), VORN_OK)
            finally:
                lib.vorn_config_free(config)

            if CDP_LIBRARY_PATH:
                self.assertTrue(wait_until(lambda: bool(outcomes)))
                self.assertEqual(outcomes, [("cdp", VORN_RESULT_SUCCESS)])
            self.assertTrue(wait_until(
                lambda: lib.vorn_get_initialization_state() == VORN_STATE_READY))

            self.assertEqual(lib.vorn_track_event(b"python_started",
                                                  b'{"language": "Python"}'), VORN_OK)
            self.assertEqual(lib.vorn_track_event(b"$reserved", None),
                             VORN_ERROR_INVALID_ARGUMENT)
            modules = (ctypes.c_char_p * 1)(b"cdp")
            self.assertEqual(lib.vorn_identity_set_profile_id(b"py-user", modules, 1), VORN_OK)
            self.assertEqual(lib.vorn_identity_set_profile_attributes(b'{"a": 1}', None, 0),
                             VORN_ERROR_INVALID_ARGUMENT)

            state = take_text(lib, lib.vorn_state_json())
            self.assertIn("cdp", state)
            identity = json.loads(take_text(lib, lib.vorn_identity_json()))
            self.assertIsInstance(identity, dict)
            if CDP_LIBRARY_PATH:
                self.assertIn("operational", state)
                self.assertTrue(wait_until(
                    lambda: "py-user" in take_text(lib, lib.vorn_identity_json())))
                self.assertEqual(lib.vorn_cdp_set_consent(VORN_CONSENT_OPT_IN), VORN_OK)
            self.assertIsNone(take_text(lib, lib.vorn_push_tags()))

            self.assertEqual(lib.vorn_teardown(), VORN_OK)
        # The SDK's threads outlive this test; no line may reach Python once it shuts down.
        self.assertEqual(lib.vorn_set_logger(VORN_LOG_NONE, LOG_SINK(), None), VORN_OK)
        with lock:
            self.assertIn((2, "VORNSdk", "vornsdk",
                           'vorn_config_add_module: unknown module "mail"'), lines)


if __name__ == "__main__":
    LIBRARY_PATH = sys.argv[1]
    CDP_LIBRARY_PATH = sys.argv[2] if len(sys.argv) > 2 else None
    unittest.main(argv=sys.argv[:1])
