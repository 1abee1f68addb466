// A host in C, without a window or a loop of its own: prepares the built-in cue, plays it once, tells what came of it.
//
//   headless_host              plays on the machine's sound server
//   headless_host --simulated  plays on nothing: the sound takes its time, and nobody hears it
//
// Exit status: 0 when the cue has played, 1 when not, 2 for unusable arguments.
#include <QuellaroHalvo/quellaro_halvo.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

enum { side = 480 };

struct host {
  quellaro_halvo_controller* controller;
  quellaro_halvo_view* view;
  quellaro_halvo_status answer;
  int pictures;
  uint32_t pixels[side * side];
};

// A host with a window would show the pixels now; this one counts.
static void draw(quellaro_halvo_view* view, void* context) {
  struct host* host = context;
  quellaro_halvo_view_draw(view, host->pixels, side, side, side * sizeof host->pixels[0]);
  ++host->pictures;
}

static void finish(quellaro_halvo_status played, void* context) {
  struct host* host = context;
  host->answer = played;
  quellaro_halvo_loop_stop();
}

static void play(quellaro_halvo_status prepared, void* context) {
  struct host* host = context;
  if (prepared == quellaro_halvo_status_success)
    quellaro_halvo_controller_play(host->controller, host->view, finish, host);
  else
    finish(prepared, host);
}

int main(int argc, char** argv) {
  static struct host host;
  static const quellaro_halvo_rectangle frame = {0, 0, side, side};
  const char* codes[] = {"5411"};
  quellaro_halvo_merchant* merchant;

  if (argc == 2 && strcmp(argv[1], "--simulated") == 0) {
    quellaro_halvo_use_simulated_devices(1.0, true);
  } else if (argc != 1) {
    fprintf(stderr, "usage: %s [--simulated]\n", argv[0]);
    return 2;
  }
  host.view = quellaro_halvo_view_create_with_frame(frame);
  host.controller = quellaro_halvo_controller_create();
  merchant = quellaro_halvo_merchant_create("Corner Shop", "US", "San Francisco", codes, 1, NULL);
  quellaro_halvo_view_set_needs_display_handler(host.view, draw, &host);
  if (quellaro_halvo_controller_prepare(host.controller, quellaro_halvo_type_animation_and_sound, "quellaro",
                                        quellaro_halvo_environment_primary, merchant, false, play,
                                        &host) == quellaro_halvo_result_ok)
    quellaro_halvo_loop_run();
  // The exit waits for nothing: a report of the plays, when one is due, goes out after the answer.
  quellaro_halvo_loop_run_until_idle(5000);
  printf("%d %s, %d pictures\n", (int)host.answer, quellaro_halvo_status_name(host.answer), host.pictures);

  quellaro_halvo_merchant_release(merchant);
  quellaro_halvo_controller_release(host.controller);
  quellaro_halvo_view_release(host.view);
  return host.answer == quellaro_halvo_status_success ? 0 : 1;
}
