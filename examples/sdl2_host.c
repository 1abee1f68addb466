// A host with an SDL window. SDL's loop waits for events alone, so a thread turns the library's descriptor into one;
// the next deadline bounds the wait.
#include <QuellaroHalvo/quellaro_halvo.h>
#include <SDL.h>
#include <poll.h>
#include <stdio.h>

enum { side = 480 };

struct host {
  quellaro_halvo_controller* controller;
  quellaro_halvo_view* view;
  quellaro_halvo_status answer;
  SDL_Window* window;
  SDL_Renderer* renderer;
  SDL_Texture* texture;
  int halvo_descriptor;
  Uint32 halvo_event;
  SDL_sem* drained;
};

// One event for each time that there is work; the next one when that has been done. Lives as long as the process.
static int watch(void* context) {
  struct host* host = context;
  struct pollfd descriptor = {host->halvo_descriptor, POLLIN, 0};
  while (poll(&descriptor, 1, -1) > 0) {
    SDL_Event event = {.type = host->halvo_event};
    SDL_PushEvent(&event);
    SDL_SemWait(host->drained);
  }
  return 0;
}

// What the renderer puts out has a pixel for each of the screen's, for the window asks for that
// (SDL_WINDOW_ALLOW_HIGHDPI); the window's size, and on some displays its surface, are in larger units.
static void draw(quellaro_halvo_view* view, void* context) {
  struct host* host = context;
  int width = 0, height = 0, texture_width = 0, texture_height = 0, pitch = 0;
  void* pixels = NULL;
  SDL_GetRendererOutputSize(host->renderer, &width, &height);
  if (host->texture != NULL) SDL_QueryTexture(host->texture, NULL, NULL, &texture_width, &texture_height);
  if (width != texture_width || height != texture_height) {
    if (host->texture != NULL) SDL_DestroyTexture(host->texture);
    host->texture =
        SDL_CreateTexture(host->renderer, SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STREAMING, width, height);
    quellaro_halvo_view_set_size(view, width, height);
  }
  if (host->texture == NULL || SDL_LockTexture(host->texture, NULL, &pixels, &pitch) != 0) return;
  quellaro_halvo_view_draw(view, pixels, width, height, (size_t)pitch);
  SDL_UnlockTexture(host->texture);
  SDL_RenderCopy(host->renderer, host->texture, NULL, NULL);
  SDL_RenderPresent(host->renderer);
}

static void finish(quellaro_halvo_status status, void* context) {
  SDL_Event event = {.type = SDL_QUIT};
  ((struct host*)context)->answer = status;
  SDL_PushEvent(&event);
}

static void play(quellaro_halvo_status prepared, void* context) {
  struct host* host = context;
  if (prepared == quellaro_halvo_status_success)
    quellaro_halvo_controller_play(host->controller, host->view, finish, host);
  else
    finish(prepared, host);
}

static void run(struct host* host) {
  for (;;) {
    SDL_Event event;
    const int timeout = quellaro_halvo_loop_milliseconds_until_next_deadline();
    const int has_event = timeout < 0 ? SDL_WaitEvent(&event) : SDL_WaitEventTimeout(&event, timeout);
    if (has_event != 0 && event.type == SDL_QUIT) return;
    if (has_event != 0 && event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_EXPOSED)
      draw(host->view, host);
    quellaro_halvo_loop_drain();
    if (has_event != 0 && event.type == host->halvo_event) SDL_SemPost(host->drained);
  }
}

int main(int argc, char** argv) {
  static struct host host;
  const char* codes[] = {"5411"};
  quellaro_halvo_merchant* merchant = quellaro_halvo_merchant_create("Corner Shop", "US", NULL, codes, 1, NULL);
  (void)argc, (void)argv;
  if (SDL_Init(SDL_INIT_VIDEO) != 0 ||
      !(host.window = SDL_CreateWindow("Cue", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, side, side,
                                       SDL_WINDOW_ALLOW_HIGHDPI)) ||
      !(host.renderer = SDL_CreateRenderer(host.window, -1, 0))) {
    fprintf(stderr, "%s\n", SDL_GetError());
    return 1;
  }
  host.view = quellaro_halvo_view_create();
  host.controller = quellaro_halvo_controller_create();
  // Asked for on this thread, as almost all calls are made.
  host.halvo_descriptor = quellaro_halvo_loop_descriptor();
  host.halvo_event = SDL_RegisterEvents(1);
  host.drained = SDL_CreateSemaphore(0);
  SDL_DetachThread(SDL_CreateThread(watch, "cue", &host));
  quellaro_halvo_view_set_needs_display_handler(host.view, draw, &host);
  if (quellaro_halvo_controller_prepare(host.controller, quellaro_halvo_type_animation_and_sound, "quellaro",
                                        quellaro_halvo_environment_primary, merchant, false, play,
                                        &host) == quellaro_halvo_result_ok)
    run(&host);
  // The exit waits for nothing: a report of the plays, when one is due, goes out after the answer.
  quellaro_halvo_loop_run_until_idle(5000);
  printf("%d %s\n", (int)host.answer, quellaro_halvo_status_name(host.answer));
  quellaro_halvo_merchant_release(merchant);
  quellaro_halvo_controller_release(host.controller);
  quellaro_halvo_view_release(host.view);
  SDL_Quit();
  return host.answer == quellaro_halvo_status_success ? 0 : 1;
}
