/* vorn.h: the C bridge of vornsdk, for hosts that reach the library through a C ABI (Swift,
 * Kotlin through JNI, Dart FFI, Python ctypes) or are written in C.
 *
 * Every function forwards to the C++ operation of the same meaning (VORNSdk, IDENTITY, the
 * CDP and PUSH facades, ModuleRegistry) with the same behaviour, log lines included.
 *
 * Conventions, true of every function below unless its comment says otherwise:
 * - Text is UTF-8 and NUL-terminated. Arguments are borrowed: the library copies what it
 *   keeps and never frees what the caller passes.
 * - A `char*` result is owned by the caller and released with vorn_free(); NULL means the
 *   answer is absent or the call failed (the log says which).
 * - Nothing is thrown across the bridge. A failure is an error line in the SDK's log
 *   (category `vornsdk`) plus a vorn_status other than VORN_OK, or a NULL result.
 * - Thread safety: every function may be called from any thread at any time, except where a
 *   handle's comment restricts it. Callbacks are called on the SDK's own threads, never with
 *   a library lock held, and receive the `context` pointer given with them unchanged; the
 *   library never dereferences or frees a context.
 */
#ifndef VORN_VORN_H
#define VORN_VORN_H

#include <stddef.h>
#include <stdint.h>

#include "vorn/base/Export.hpp"

#ifdef __cplusplus
extern "C" {
#endif

/* Outcome of a bridge call. The raw values are part of the ABI and never change. */
typedef enum vorn_status {
  VORN_OK = 0,
  /* A NULL where a value is needed, text that is not the JSON asked for (JSON nested more
   * than 64 arrays and objects deep counts as such), an out-of-range enumeration value. */
  VORN_ERROR_INVALID_ARGUMENT = 1,
  /* A module name other than "cdp" or "push". */
  VORN_ERROR_UNKNOWN_MODULE = 2,
  /* The module's settings were refused, or no settings parser is registered for it. */
  VORN_ERROR_INVALID_SETTINGS = 3,
  /* A module library could not be loaded. */
  VORN_ERROR_LOAD_FAILED = 4,
  /* The library failed unexpectedly; the log line says how. */
  VORN_ERROR_INTERNAL = 5
} vorn_status;

/* A module start-up's outcome, as the C++ OperationResult. */
typedef enum vorn_result {
  VORN_RESULT_CANCELLED = 0,
  VORN_RESULT_ERROR = 1,
  VORN_RESULT_SUCCESS = 2,
  VORN_RESULT_TIMEOUT = 3
} vorn_result;

/* The SDK's start-up state. */
typedef enum vorn_initialization_state {
  VORN_STATE_NONE = 0,
  VORN_STATE_INITIALIZING = 1,
  VORN_STATE_READY = 2
} vorn_initialization_state;

/* Log levels, lowest first; VORN_LOG_NONE as a threshold silences the logger. */
typedef enum vorn_log_level {
  VORN_LOG_DEBUG = 0,
  VORN_LOG_WARNING = 1,
  VORN_LOG_ERROR = 2,
  VORN_LOG_FAULT = 3,
  VORN_LOG_NONE = 4
} vorn_log_level;

/* The user's consent, as the CDP module keeps it. */
typedef enum vorn_consent {
  VORN_CONSENT_OPT_IN = 0,
  VORN_CONSENT_OPT_OUT = 1,
  VORN_CONSENT_PENDING = 2,
  VORN_CONSENT_NONE = 3
} vorn_consent;

/* Releases a result the library handed to the caller (any `char*` below). NULL is ignored.
 * Takes ownership of `pointer`. Any thread. */
VORN_API void vorn_free(void* pointer);

/* ---- Platform ------------------------------------------------------------------------- */

/* Makes the library keep its stores in `path` (created 0700 when missing) from now on,
 * replacing the platform in use. Call it before vorn_initialize(); without it the library
 * uses VORNSDK_DATA_DIR, $XDG_DATA_HOME/vornsdk or ~/.local/share/vornsdk. `path` is
 * borrowed. Any thread, but meant for start-up: services already running keep their
 * stores. */
VORN_API vorn_status vorn_set_data_directory(const char* path);
/* Makes the library keep everything in memory and send nothing over the network. As
 * vorn_set_data_directory() otherwise. */
VORN_API vorn_status vorn_use_ephemeral_platform(void);

/* ---- Modules and start-up ------------------------------------------------------------- */

/* Hears one module start-up's outcome, on an SDK thread. `module` ("cdp" or "push") is
 * valid during the call only. */
typedef void (*vorn_module_callback)(const char* module, vorn_result result, void* context);

/* A start-up configuration under construction. Owned by the caller (vorn_config_free()).
 * Not thread-safe: use one configuration from one thread at a time. */
typedef struct vorn_config vorn_config;

/* A new empty configuration, owned by the caller; NULL only when memory runs out. Any
 * thread. */
VORN_API vorn_config* vorn_config_new(void);
/* Releases `config` (taking ownership); NULL is ignored. A start-up already scheduled with
 * it is unaffected. Not concurrently with another call on the same configuration. */
VORN_API void vorn_config_free(vorn_config* config);
/* Sets module `module` ("cdp" or "push") with its settings, a JSON object parsed by the
 * parser the module's library registered (load the library first), replacing what was set
 * for that module before. `callback` may be NULL; otherwise it hears the module's outcome
 * of every start-up made with this configuration, after the SDK's own callback, with
 * `context`, which must stay valid that long. On any error the configuration is left as it
 * was. The strings are borrowed. Not concurrently with another call on the same
 * configuration. */
VORN_API vorn_status vorn_config_add_module(vorn_config* config, const char* module,
                                            const char* settings_json,
                                            vorn_module_callback callback, void* context);
/* Schedules a start-up with the modules set in `config` so far and returns at once; the
 * outcomes reach the callbacks later. `config` is borrowed (copied) and stays the caller's.
 * Any thread; start-ups run one after another. */
VORN_API vorn_status vorn_initialize(const vorn_config* config);
/* Loads the module library at `path` (borrowed); it registers its module class and settings
 * parser as it loads. Libraries stay loaded for the life of the process. Any thread. */
VORN_API vorn_status vorn_load_module_library(const char* path);
/* The SDK's start-up state. Any thread. */
VORN_API vorn_initialization_state vorn_get_initialization_state(void);
/* Tears down module `module` (borrowed); the state and the remembered configuration stay.
 * Any thread; returns when the module has finished tearing down. */
VORN_API vorn_status vorn_teardown_module(const char* module);
/* Tears down both modules, as vorn_teardown_module(). */
VORN_API vorn_status vorn_teardown(void);

/* ---- Events, state ---------------------------------------------------------------------- */

/* Tracks a custom event. `attributes_json` is a JSON object or NULL for none; strings,
 * numbers, booleans, null, arrays and objects map onto the event's attribute values. A name
 * the event refuses (empty, "$...") is logged by the event and gives
 * VORN_ERROR_INVALID_ARGUMENT. The strings are borrowed. Any thread. */
VORN_API vorn_status vorn_track_event(const char* name, const char* attributes_json);
/* The state snapshot (written for people; not always valid JSON), owned by the caller
 * (vorn_free()). Any thread. */
VORN_API char* vorn_state_json(void);
/* The identity JSON, owned by the caller (vorn_free()). Any thread. */
VORN_API char* vorn_identity_json(void);

/* ---- Identity: nothing is reported but log lines; the modules hear it later. ---------- */

/* `modules` is an array of `module_count` module names. NULL sends to every subscribed
 * module; otherwise to each named module in order. An unknown name fails the whole call
 * with VORN_ERROR_UNKNOWN_MODULE before anything is sent. Everything is borrowed. Any
 * thread. */
VORN_API vorn_status vorn_identity_set_profile_id(const char* profile_id,
                                                  const char* const* modules, size_t module_count);
/* `attributes_json` is a JSON object whose values are all strings; "" clears a key.
 * `modules` as for vorn_identity_set_profile_id(). Everything is borrowed. Any thread. */
VORN_API vorn_status vorn_identity_set_profile_attributes(const char* attributes_json,
                                                          const char* const* modules,
                                                          size_t module_count);
/* Sets `key` (borrowed) to "" for every subscribed module. Any thread. */
VORN_API vorn_status vorn_identity_clear_profile_attribute(const char* key);

/* ---- Logging ---------------------------------------------------------------------------- */

/* Receives one log line. The strings are valid during the call only. Called on whatever
 * thread logged, possibly on several at once: it must be thread-safe. */
typedef void (*vorn_log_sink)(vorn_log_level level, const char* subsystem, const char* category,
                              const char* message, void* context);

/* Sets the logger's level and sink (NULL: the library's standard-error sink); the category
 * filters stay. The sink and its context must stay usable until another sink has replaced
 * them and the lines already on their way to it have been delivered. Any thread. */
VORN_API vorn_status vorn_set_logger(vorn_log_level level, vorn_log_sink sink, void* context);
/* The logger's level. Any thread. */
VORN_API vorn_log_level vorn_get_log_level(void);

/* ---- CDP: out-parameters are the caller's and written only on VORN_OK. Any thread. ---- */

/* VORN_CONSENT_NONE (and a log line) while the cdp module is not operational. */
VORN_API vorn_status vorn_cdp_get_consent(vorn_consent* consent);
/* Dropped, with a log line, while the cdp module is not operational. */
VORN_API vorn_status vorn_cdp_set_consent(vorn_consent consent);

/* ---- Push: while the push module is not operational each call logs why and answers its
 * default (nothing done, 0, NULL). Boolean results are 0 or 1. Arguments are borrowed;
 * out-parameters are the caller's and written only on VORN_OK; `char*` results are the
 * caller's (vorn_free()). Any thread. -------------------------------------------------- */

/* The device token, `length` bytes (`token` may be NULL when `length` is 0). */
VORN_API vorn_status vorn_push_set_device_token(const uint8_t* token, size_t length);
/* The contact key, or NULL when absent. */
VORN_API char* vorn_push_contact_key(void);
/* `added` tells whether the tag was added. */
VORN_API vorn_status vorn_push_add_tag(const char* tag, int* added);
/* `tags_json` is a JSON array of strings; the result is the JSON array of the tags that were
 * added, NULL when absent. */
VORN_API char* vorn_push_add_tags(const char* tags_json);
/* `removed` tells whether the tag was removed. */
VORN_API vorn_status vorn_push_remove_tag(const char* tag, int* removed);
/* The tags as a JSON array of strings, NULL when absent. */
VORN_API char* vorn_push_tags(void);
VORN_API vorn_status vorn_push_set_enabled(int enabled);
VORN_API vorn_status vorn_push_enabled(int* enabled);

/* The inbox's message counts. */
typedef struct vorn_inbox_counts {
  size_t all;
  size_t unread;
  size_t read;
  size_t deleted;
} vorn_inbox_counts;

VORN_API vorn_status vorn_push_inbox_counts(vorn_inbox_counts* counts);
/* Asks the module to fetch the inbox; `started` tells whether it did. */
VORN_API vorn_status vorn_push_refresh_messages(int* started);
/* `marked` tells whether the message with this id was marked read. */
VORN_API vorn_status vorn_push_mark_message_read(const char* message_id, int* marked);
VORN_API vorn_status vorn_push_mark_all_messages_read(int* marked);

#ifdef __cplusplus
}
#endif

#endif /* VORN_VORN_H */
