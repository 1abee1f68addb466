// Hands every function what it must not get, and looks whether the answer is the documented one. What they do with what
// they may get, cpp_face.cpp and life_of_a_host.cpp tell.
#include <QuellaroHalvo/quellaro_halvo.h>
#include <math.h>
#include <stdio.h>
#include <string.h>

#define NOT_UTF8 "caf\xE9"

static int failures;

static void expect(const char* what, double got, double wanted) {
  if (got == wanted) return;
  fprintf(stderr, "%s: got %g, wanted %g\n", what, got, wanted);
  ++failures;
}
#define ANSWERS(call, wanted) expect(#call, (double)(call), (double)(wanted))
#define RESULT(call, name) ANSWERS(call, quellaro_halvo_result_##name)
#define IS_NULL(call) ANSWERS((call) == NULL, true)
#define TEXT(call, wanted) expect(#call, strcmp(call, wanted), 0)

static void never(quellaro_halvo_status status, void* context) {
  (void)context;
  fprintf(stderr, "a completion came, with %d\n", (int)status);
  ++failures;
}

static const char* const codes[] = {"5411", ""};
static const char* const holed[] = {"5411", NULL};
static const char* const garbled[] = {NOT_UTF8};

static void chooses(void) {
  RESULT(quellaro_halvo_set_bundle_directory(NULL), null_argument);
  RESULT(quellaro_halvo_set_bundle_directory(NOT_UTF8), invalid_text);
  RESULT(quellaro_halvo_set_bundle_directory("/nowhere/at/all"), not_found);
  RESULT(quellaro_halvo_set_library_directory(""), invalid_value);
  RESULT(quellaro_halvo_set_library_directory(NOT_UTF8), invalid_text);
  RESULT(quellaro_halvo_set_library_directory(NULL), ok);
  RESULT(quellaro_halvo_set_application_identifier("../up"), invalid_value);
  RESULT(quellaro_halvo_set_application_identifier(NOT_UTF8), invalid_text);
  RESULT(quellaro_halvo_use_simulated_devices(1.01, true), invalid_value);
  RESULT(quellaro_halvo_use_simulated_devices(NAN, true), invalid_value);
  RESULT(quellaro_halvo_set_sound_name(""), invalid_value);
  RESULT(quellaro_halvo_set_sound_name(NOT_UTF8), invalid_text);
  RESULT(quellaro_halvo_set_sound_name(NULL), ok);
  RESULT(quellaro_halvo_use_real_devices(), ok);
  RESULT(quellaro_halvo_use_simulated_devices(0.5, false), ok);
}

static void names_merchants(void) {
  static const char* (*const texts[])(const quellaro_halvo_merchant*) = {
      quellaro_halvo_merchant_name, quellaro_halvo_merchant_country_code, quellaro_halvo_merchant_city,
      quellaro_halvo_merchant_identifier, quellaro_halvo_merchant_description};
  quellaro_halvo_merchant* shop = quellaro_halvo_merchant_create("My_Shop - 1", "US", "", codes, 2, "");
  size_t i;
  IS_NULL(quellaro_halvo_merchant_create(NULL, "US", NULL, codes, 2, NULL));
  IS_NULL(quellaro_halvo_merchant_create("Shop", NULL, NULL, codes, 2, NULL));
  IS_NULL(quellaro_halvo_merchant_create("Shop", "US", NULL, NULL, 2, NULL));
  IS_NULL(quellaro_halvo_merchant_create("Shop", "US", NULL, codes, 0, NULL));
  IS_NULL(quellaro_halvo_merchant_create("Shop", "US", NULL, holed, 2, NULL));
  IS_NULL(quellaro_halvo_merchant_create("Shop", "US", NULL, garbled, 1, NULL));
  IS_NULL(quellaro_halvo_merchant_create("Shop", "US", NULL, codes, 2, NOT_UTF8));

  for (i = 0; i < sizeof texts / sizeof *texts; ++i) IS_NULL(texts[i](NULL));
  IS_NULL(quellaro_halvo_merchant_category_code(NULL, 0));
  IS_NULL(quellaro_halvo_merchant_category_code(shop, 2));
  TEXT(quellaro_halvo_merchant_category_code(shop, 0), "5411");
  ANSWERS(quellaro_halvo_merchant_category_code_count(shop), 2);
  TEXT(quellaro_halvo_merchant_city(shop), "");
  ANSWERS(quellaro_halvo_merchant_is_equal(shop, NULL), false);
  ANSWERS(quellaro_halvo_merchant_hash(NULL), 0);
  quellaro_halvo_merchant_release(shop);
  quellaro_halvo_merchant_release(NULL);
}

static void lays_out_views(void) {
  static const quellaro_halvo_rectangle unusable[] = {{0, 0, -1, 1}, {0, 0, 1, NAN}, {0, 2e6, 1, 1}};
  static const quellaro_halvo_rectangle frame = {1, 2, 30, 20};
  uint32_t pixels[4] = {0};
  quellaro_halvo_view* view = quellaro_halvo_view_create();
  quellaro_halvo_coder* coder = quellaro_halvo_coder_create();
  size_t i;
  for (i = 0; i < sizeof unusable / sizeof *unusable; ++i) {
    IS_NULL(quellaro_halvo_view_create_with_frame(unusable[i]));
    RESULT(quellaro_halvo_view_set_frame(view, unusable[i]), invalid_value);
  }
  RESULT(quellaro_halvo_view_set_frame(NULL, frame), null_argument);
  RESULT(quellaro_halvo_view_set_size(NULL, 1, 1), null_argument);
  RESULT(quellaro_halvo_view_layout_subviews(NULL), null_argument);
  ANSWERS(quellaro_halvo_view_frame(NULL).width, 0);
  RESULT(quellaro_halvo_view_set_background(NULL, quellaro_halvo_background_white), null_argument);
  RESULT(quellaro_halvo_view_set_background(view, 2), invalid_value);
  ANSWERS(quellaro_halvo_view_background(view), quellaro_halvo_background_black);
  ANSWERS(quellaro_halvo_view_background(NULL), quellaro_halvo_background_black);

  IS_NULL(quellaro_halvo_view_create_with_coder(NULL));
  IS_NULL(quellaro_halvo_view_create_with_coder(coder));
  RESULT(quellaro_halvo_view_encode(NULL, coder), null_argument);
  RESULT(quellaro_halvo_view_encode(view, NULL), null_argument);

  RESULT(quellaro_halvo_view_draw(NULL, pixels, 2, 2, 8), null_argument);
  RESULT(quellaro_halvo_view_draw(view, NULL, 2, 2, 8), null_argument);
  RESULT(quellaro_halvo_view_draw(view, pixels, 0, 2, 8), invalid_value);
  RESULT(quellaro_halvo_view_draw(view, pixels, 2, -2, 8), invalid_value);
  RESULT(quellaro_halvo_view_draw(view, pixels, 2, 32768, 8), invalid_value);
  RESULT(quellaro_halvo_view_draw(view, pixels, 2, 2, 7), invalid_value);
  RESULT(quellaro_halvo_view_draw(view, pixels, 2, 2, 10), invalid_value);
  RESULT(quellaro_halvo_view_draw(view, (char*)pixels + 1, 1, 1, 4), invalid_value);
  RESULT(quellaro_halvo_view_draw(view, pixels, 2, 2, SIZE_MAX / 8 * 4 + 4), invalid_value);
  RESULT(quellaro_halvo_view_draw(view, pixels, 2, 2, SIZE_MAX - 3), invalid_value);
  ANSWERS(quellaro_halvo_view_needs_display(NULL), false);
  RESULT(quellaro_halvo_view_set_needs_display_handler(NULL, NULL, NULL), null_argument);
  quellaro_halvo_coder_release(coder);
  quellaro_halvo_coder_release(NULL);
  quellaro_halvo_view_release(view);
  quellaro_halvo_view_release(NULL);
}

static void controls(void) {
  quellaro_halvo_controller* controller = quellaro_halvo_controller_create();
  quellaro_halvo_merchant* merchant = quellaro_halvo_merchant_create("Shop", "US", NULL, codes, 1, NULL);
  int32_t type;
  RESULT(quellaro_halvo_controller_prepare(NULL, 0, "quellaro", 0, merchant, false, never, NULL), null_argument);
  RESULT(quellaro_halvo_controller_prepare(controller, 0, NULL, 0, merchant, false, never, NULL), null_argument);
  RESULT(quellaro_halvo_controller_prepare(controller, 0, "quellaro", 0, NULL, false, never, NULL), null_argument);
  for (type = -1; type <= 3; type += 4)
    RESULT(quellaro_halvo_controller_prepare(controller, type, "quellaro", 0, merchant, false, never, NULL),
           invalid_value);
  RESULT(quellaro_halvo_controller_prepare(controller, 0, "quellaro", 2, merchant, false, never, NULL), invalid_value);
  RESULT(quellaro_halvo_controller_prepare(controller, 0, NOT_UTF8, 0, merchant, false, never, NULL), invalid_text);
  RESULT(quellaro_halvo_controller_play(NULL, NULL, never, NULL), null_argument);
  IS_NULL(quellaro_halvo_controller_prepared_halvo_cue(NULL));
  RESULT(quellaro_halvo_controller_set_prepared_halvo_cue(NULL, "cue"), null_argument);
  RESULT(quellaro_halvo_controller_set_prepared_halvo_cue(controller, NOT_UTF8), invalid_text);
  RESULT(quellaro_halvo_controller_set_prepared_halvo_cue(controller, "cue"), ok);
  RESULT(quellaro_halvo_controller_set_prepared_halvo_cue(controller, NULL), ok);
  IS_NULL(quellaro_halvo_controller_prepared_halvo_cue(controller));
  IS_NULL(quellaro_halvo_controller_failure_reason(NULL));
  ANSWERS(quellaro_halvo_controller_duration(NULL), -1);
  ANSWERS(quellaro_halvo_controller_last_sound(NULL), quellaro_halvo_sound_none);
  ANSWERS(quellaro_halvo_controller_is_playing(NULL), false);
  RESULT(quellaro_halvo_controller_set_is_playing(NULL, true), null_argument);
  quellaro_halvo_merchant_release(merchant);
  quellaro_halvo_controller_release(controller);
  quellaro_halvo_controller_release(NULL);

  RESULT(quellaro_halvo_set_bundle_directory("/"), too_late);
  RESULT(quellaro_halvo_set_library_directory("/tmp"), too_late);
  RESULT(quellaro_halvo_use_simulated_devices(1, true), too_late);
}

static void asks(void) {
  int32_t result;
  ANSWERS(quellaro_halvo_status_is_valid(911), false);
  TEXT(quellaro_halvo_status_name(INT64_MIN), "unknown");
  ANSWERS(strlen(quellaro_halvo_status_description(INT64_MIN)) > 0, true);
  for (result = -1; result <= quellaro_halvo_result_failed + 1; ++result)
    ANSWERS(strlen(quellaro_halvo_result_description(result)) > 0, true);
  ANSWERS(quellaro_halvo_version_number(), QUELLARO_HALVO_VERSION_NUMBER);
  RESULT(quellaro_halvo_set_log_sink(NULL, 0, NULL), invalid_value);
  ANSWERS(quellaro_halvo_observe_audio_session_deactivated(NULL, NULL), 0);
  quellaro_halvo_stop_observing_audio_session_deactivated(UINT64_MAX);
  ANSWERS(strncmp(quellaro_halvo_build_report(), "QuellaroHalvo 1.", 16), 0);
  ANSWERS(strstr(quellaro_halvo_build_report(), "sound: simulated, volume 0.5\nhaptics: simulated, absent\n") != NULL,
          true);
}

int main(void) {
  chooses();
  names_merchants();
  lays_out_views();
  controls();
  asks();
  ANSWERS(quellaro_halvo_loop_run_until_idle(-1), quellaro_halvo_result_ok);
  ANSWERS(quellaro_halvo_loop_milliseconds_until_next_deadline(), -1);
  return failures == 0 ? 0 : 1;
}
