// A host with an epoll loop of its own, for a daemon without a window: the cue is one more descriptor, and one more
// bound on the time that the loop sleeps. A ticking timer stands for the host's own work.
#include <QuellaroHalvo/quellaro_halvo.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <unistd.h>

enum { side = 240 };

struct host {
  quellaro_halvo_controller* controller;
  quellaro_halvo_view* view;
  quellaro_halvo_status answer;
  int pictures;
  int ticks;
  uint32_t pixels[side * side];
};

// A host with a screen would hand it the pixels now; this one counts those that show more than the backdrop.
static void draw(quellaro_halvo_view* view, void* context) {
  struct host* host = context;
  quellaro_halvo_view_draw(view, host->pixels, side, side, side * sizeof host->pixels[0]);
  for (int i = 0; i < side * side; ++i)
    if (host->pixels[i] != host->pixels[0]) {
      ++host->pictures;
      return;
    }
}

static void finish(quellaro_halvo_status status, void* context) { ((struct host*)context)->answer = status; }

static void play(quellaro_halvo_status prepared, void* context) {
  struct host* host = context;
  if (prepared == quellaro_halvo_status_success)
    quellaro_halvo_controller_play(host->controller, host->view, finish, host);
  else
    finish(prepared, host);
}

static int watch(int poll, int descriptor) {
  struct epoll_event event = {.events = EPOLLIN, .data.fd = descriptor};
  return epoll_ctl(poll, EPOLL_CTL_ADD, descriptor, &event);
}

static int run(struct host* host) {
  const struct itimerspec tenth = {{0, 100000000}, {0, 100000000}};
  const int poll = epoll_create1(EPOLL_CLOEXEC);
  const int timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
  if (watch(poll, timer) != 0 || watch(poll, quellaro_halvo_loop_descriptor()) != 0) return -1;
  timerfd_settime(timer, 0, &tenth, NULL);
  while (host->answer == 0) {
    struct epoll_event events[4];
    // Negative, which means for ever to epoll too, when the library has no timer.
    const int count = epoll_wait(poll, events, 4, quellaro_halvo_loop_milliseconds_until_next_deadline());
    for (int i = 0; i < count; ++i) {
      uint64_t expirations;
      if (events[i].data.fd == timer && read(timer, &expirations, sizeof expirations) > 0) ++host->ticks;
    }
    // Cheap when nothing is due, so it need not be known what woke the loop.
    quellaro_halvo_loop_drain();
  }
  close(timer);
  close(poll);
  return 0;
}

int main(void) {
  static struct host host;
  static const quellaro_halvo_rectangle frame = {0, 0, side, side};
  const char* codes[] = {"5411"};
  quellaro_halvo_merchant* merchant = quellaro_halvo_merchant_create("Corner Shop", "US", NULL, codes, 1, NULL);
  host.view = quellaro_halvo_view_create_with_frame(frame);
  host.controller = quellaro_halvo_controller_create();
  quellaro_halvo_view_set_needs_display_handler(host.view, draw, &host);
  if (quellaro_halvo_controller_prepare(host.controller, quellaro_halvo_type_animation_and_sound, "quellaro",
                                        quellaro_halvo_environment_primary, merchant, false, play,
                                        &host) == quellaro_halvo_result_ok &&
      run(&host) != 0)
    perror("epoll");
  // The exit waits for nothing: a report of the plays, when one is due, goes out after the answer.
  quellaro_halvo_loop_run_until_idle(5000);
  printf("%d %s, %d pictures, %d ticks\n", (int)host.answer, quellaro_halvo_status_name(host.answer), host.pictures,
         host.ticks);
  quellaro_halvo_merchant_release(merchant);
  quellaro_halvo_controller_release(host.controller);
  quellaro_halvo_view_release(host.view);
  return host.answer == quellaro_halvo_status_success ? 0 : 1;
}
