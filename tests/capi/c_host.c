/* A C application using the SDK through vorn.h only, as a host with nothing but the C ABI
 * would: it starts the SDK on a fresh data directory (with the cdp module when a library path
 * is given), tracks an event, sets the identity, reads the state and identity JSON, logs
 * through a C sink and tears down. Exits 0 when every step did what it should, else 1 after
 * saying which step failed.
 *
 * Usage: c_host [cdp-module-library] */
#define _XOPEN_SOURCE 700

#include <ftw.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "vorn/vorn.h"

/* What the callbacks heard; they run on the SDK's threads. */
static pthread_mutex_t heard_lock = PTHREAD_MUTEX_INITIALIZER;
static int sink_lines = 0;      /* guarded by heard_lock */
static int cdp_outcome = -1;    /* guarded by heard_lock */
static int start_context = 0;   /* the callbacks' context; its address is what they check */
static int context_matched = 1; /* guarded by heard_lock */

static void sink(vorn_log_level level, const char* subsystem, const char* category,
                 const char* message, void* context) {
  (void)level;
  (void)subsystem;
  (void)category;
  (void)message;
  pthread_mutex_lock(&heard_lock);
  ++sink_lines;
  if (context != &start_context)
    context_matched = 0;
  pthread_mutex_unlock(&heard_lock);
}

static void on_outcome(const char* module, vorn_result result, void* context) {
  pthread_mutex_lock(&heard_lock);
  if (strcmp(module, "cdp") == 0)
    cdp_outcome = (int)result;
  if (context != &start_context)
    context_matched = 0;
  pthread_mutex_unlock(&heard_lock);
}

static int outcome_heard(void) {
  int heard;
  pthread_mutex_lock(&heard_lock);
  heard = cdp_outcome >= 0;
  pthread_mutex_unlock(&heard_lock);
  return heard;
}

static int is_ready(void) {
  return vorn_get_initialization_state() == VORN_STATE_READY;
}

static const char* identity_needle = NULL;

static int identity_has_needle(void) {
  char* identity = vorn_identity_json();
  int found = identity != NULL && strstr(identity, identity_needle) != NULL;
  vorn_free(identity);
  return found;
}

/* Polls `condition` every millisecond for up to ten seconds. */
static int wait_until(int (*condition)(void)) {
  struct timespec start, now, pause = {0, 1000000};
  clock_gettime(CLOCK_MONOTONIC, &start);
  for (;;) {
    if (condition())
      return 1;
    clock_gettime(CLOCK_MONOTONIC, &now);
    if (now.tv_sec - start.tv_sec >= 10)
      return condition();
    nanosleep(&pause, NULL);
  }
}

static int remove_entry(const char* path, const struct stat* info, int flag, struct FTW* ftw) {
  (void)info;
  (void)flag;
  (void)ftw;
  return remove(path);
}

#define CHECK(condition)                                                       \
  do {                                                                         \
    if (!(condition)) {                                                        \
      fprintf(stderr, "c_host: failed: %s (line %d)\n", #condition, __LINE__); \
      failed = 1;                                                              \
      goto done;                                                               \
    }                                                                          \
  } while (0)

int main(int argc, char** argv) {
  const char* cdp_library = argc > 1 && argv[1][0] != '\0' ? argv[1] : NULL;
  char data_dir[] = "/tmp/vorn-c-host-XXXXXX";
  char settings[512];
  const char* cdp_only[] = {"cdp"};
  vorn_config* config = NULL;
  char* state = NULL;
  int sink_heard = 0;
  int outcome = -1;
  int failed = 0;

  if (mkdtemp(data_dir) == NULL) {
    perror("c_host: mkdtemp");
    return 1;
  }
  CHECK(vorn_set_logger(VORN_LOG_DEBUG, sink, &start_context) == VORN_OK);
  CHECK(vorn_get_log_level() == VORN_LOG_DEBUG);
  CHECK(vorn_set_data_directory(data_dir) == VORN_OK);

  config = vorn_config_new();
  CHECK(config != NULL);
  CHECK(vorn_config_add_module(config, "mail", "{}", NULL, NULL) == VORN_ERROR_UNKNOWN_MODULE);
  if (cdp_library != NULL) {
    CHECK(vorn_load_module_library(cdp_library) == VORN_OK);
    CHECK(vorn_config_add_module(config, "cdp", "{\"appId\": 1}", NULL, NULL) ==
          VORN_ERROR_INVALID_SETTINGS);
    snprintf(settings, sizeof settings,
             "{\"appId\": \"c-host\", \"endpoint\": \"http://127.0.0.1:9\", "
             "\"flushIntervalSeconds\": 3600, \"dataDirectory\": \"%s\"}",
             data_dir);
    CHECK(vorn_config_add_module(config, "cdp", settings, on_outcome, &start_context) == VORN_OK);
  }
  CHECK(vorn_initialize(config) == VORN_OK);
  if (cdp_library != NULL) {
    CHECK(wait_until(outcome_heard));
    pthread_mutex_lock(&heard_lock);
    outcome = cdp_outcome;
    pthread_mutex_unlock(&heard_lock);
    CHECK(outcome == VORN_RESULT_SUCCESS);
  }
  CHECK(wait_until(is_ready));

  CHECK(vorn_track_event("c_host_started", "{\"language\": \"C\", \"steps\": 9}") == VORN_OK);
  CHECK(vorn_track_event("", NULL) == VORN_ERROR_INVALID_ARGUMENT);
  CHECK(vorn_identity_set_profile_id("c-host-user", cdp_only, 1) == VORN_OK);
  CHECK(vorn_identity_set_profile_attributes("{\"plan\": \"gold\"}", NULL, 0) == VORN_OK);

  state = vorn_state_json();
  CHECK(state != NULL);
  CHECK(strstr(state, "cdp") != NULL);
  if (cdp_library != NULL) {
    vorn_consent consent = VORN_CONSENT_NONE;
    CHECK(strstr(state, "operational") != NULL);
    identity_needle = "c-host-user";
    CHECK(wait_until(identity_has_needle));
    CHECK(vorn_cdp_set_consent(VORN_CONSENT_OPT_IN) == VORN_OK);
    CHECK(vorn_cdp_get_consent(&consent) == VORN_OK);
    CHECK(consent == VORN_CONSENT_OPT_IN);
  }

  CHECK(vorn_teardown() == VORN_OK);
  pthread_mutex_lock(&heard_lock);
  sink_heard = sink_lines > 0 && context_matched;
  pthread_mutex_unlock(&heard_lock);
  CHECK(sink_heard);

done:
  vorn_free(state);
  vorn_config_free(config);
  nftw(data_dir, remove_entry, 16, FTW_DEPTH | FTW_PHYS);
  if (!failed)
    printf("c_host: ok (%s)\n", cdp_library != NULL ? "with the cdp module" : "no modules");
  return failed;
}
