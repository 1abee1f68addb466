// A host with a GTK 4 window: the library's work is a source of the GLib main loop, its view is drawn by a drawing
// area.
#include <QuellaroHalvo/quellaro_halvo.h>
#include <gtk/gtk.h>

struct host {
  quellaro_halvo_controller* controller;
  quellaro_halvo_view* view;
  quellaro_halvo_status answer;
  GtkWidget* area;
  GtkWindow* window;
};

// The source: ready when the descriptor is, or when the library's next timer is due.
struct halvo_source {
  GSource source;
  gpointer descriptor;
};

static gboolean prepare_source(GSource* source, gint* timeout) {
  (void)source;
  *timeout = quellaro_halvo_loop_milliseconds_until_next_deadline();
  return *timeout == 0;
}

static gboolean check_source(GSource* source) {
  return g_source_query_unix_fd(source, ((struct halvo_source*)source)->descriptor) != 0 ||
         quellaro_halvo_loop_milliseconds_until_next_deadline() == 0;
}

static gboolean dispatch_source(GSource* source, GSourceFunc callback, gpointer data) {
  (void)source, (void)callback, (void)data;
  quellaro_halvo_loop_drain();
  return G_SOURCE_CONTINUE;
}

static GSource* attach_source(void) {
  static GSourceFuncs functions = {.prepare = prepare_source, .check = check_source, .dispatch = dispatch_source};
  GSource* source = g_source_new(&functions, sizeof(struct halvo_source));
  ((struct halvo_source*)source)->descriptor = g_source_add_unix_fd(source, quellaro_halvo_loop_descriptor(), G_IO_IN);
  g_source_attach(source, NULL);
  return source;
}

static void need_display(quellaro_halvo_view* view, void* host) {
  (void)view;
  gtk_widget_queue_draw(((struct host*)host)->area);
}

// The view's pixels are cairo's, as many as the screen has: at scale 2 an area of 480 units is 960 pixels wide.
static void draw(GtkDrawingArea* area, cairo_t* cairo, int width, int height, gpointer context) {
  struct host* host = context;
  const int scale = gtk_widget_get_scale_factor(GTK_WIDGET(area));
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width * scale, height * scale);
  quellaro_halvo_view_set_size(host->view, width * scale, height * scale);
  quellaro_halvo_view_draw(host->view, cairo_image_surface_get_data(surface), width * scale, height * scale,
                           (size_t)cairo_image_surface_get_stride(surface));
  cairo_surface_mark_dirty(surface);
  cairo_surface_set_device_scale(surface, scale, scale);
  cairo_set_source_surface(cairo, surface, 0, 0);
  cairo_paint(cairo);
  cairo_surface_destroy(surface);
}

static void finish(quellaro_halvo_status status, void* context) {
  struct host* host = context;
  host->answer = status;
  gtk_window_close(host->window);
}

static void play(quellaro_halvo_status prepared, void* context) {
  struct host* host = context;
  if (prepared == quellaro_halvo_status_success)
    quellaro_halvo_controller_play(host->controller, host->view, finish, host);
  else
    finish(prepared, host);
}

static void activate(GtkApplication* application, gpointer context) {
  struct host* host = context;
  const char* codes[] = {"5411"};
  quellaro_halvo_merchant* merchant = quellaro_halvo_merchant_create("Corner Shop", "US", NULL, codes, 1, NULL);
  host->window = GTK_WINDOW(gtk_application_window_new(application));
  host->area = gtk_drawing_area_new();
  gtk_window_set_default_size(host->window, 480, 480);
  gtk_window_set_child(host->window, host->area);
  gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(host->area), draw, host, NULL);
  quellaro_halvo_view_set_needs_display_handler(host->view, need_display, host);
  gtk_window_present(host->window);
  quellaro_halvo_controller_prepare(host->controller, quellaro_halvo_type_animation_and_sound, "quellaro",
                                    quellaro_halvo_environment_primary, merchant, false, play, host);
  quellaro_halvo_merchant_release(merchant);
}

int main(int argc, char** argv) {
  struct host host = {quellaro_halvo_controller_create(), quellaro_halvo_view_create(), 0, NULL, NULL};
  GtkApplication* application = gtk_application_new(NULL, G_APPLICATION_NON_UNIQUE);
  GSource* source = attach_source();
  g_signal_connect(application, "activate", G_CALLBACK(activate), &host);
  g_application_run(G_APPLICATION(application), argc, argv);
  // The exit waits for nothing: a report of the plays, when one is due, goes out after the answer.
  quellaro_halvo_loop_run_until_idle(5000);
  g_print("%d %s\n", (int)host.answer, quellaro_halvo_status_name(host.answer));
  quellaro_halvo_view_release(host.view);
  quellaro_halvo_controller_release(host.controller);
  g_source_destroy(source);
  g_source_unref(source);
  g_object_unref(application);
  return host.answer == quellaro_halvo_status_success ? 0 : 1;
}
