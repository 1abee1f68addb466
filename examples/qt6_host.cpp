// A host with a Qt 6 window: the library's work is driven by a socket notifier and a timer, its view is a widget.
#include <QuellaroHalvo/quellaro_halvo.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QSocketNotifier>
#include <QTimer>
#include <QWidget>
#include <cstdio>

namespace {

// Lets the library work inside Qt's event loop, for as long as it lives.
class HalvoLoop {
 public:
  HalvoLoop() : notifier_(quellaro_halvo_loop_descriptor(), QSocketNotifier::Read) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&notifier_, &QSocketNotifier::activated, [] { quellaro_halvo_loop_drain(); });
    QObject::connect(&timer_, &QTimer::timeout, [] { quellaro_halvo_loop_drain(); });
    // Whatever has run meanwhile may have changed the next deadline.
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &timer_,
                     [this] { rearm(); });
  }

 private:
  void rearm() {
    const int milliseconds = quellaro_halvo_loop_milliseconds_until_next_deadline();
    if (milliseconds < 0)
      timer_.stop();
    else
      timer_.start(milliseconds);
  }

  QSocketNotifier notifier_;
  QTimer timer_;
};

// Shows a view of the library's, as large as the widget.
class HalvoWidget : public QWidget {
 public:
  HalvoWidget() {
    setAttribute(Qt::WA_OpaquePaintEvent);
    const auto needDisplay = [](quellaro_halvo_view*, void* self) { static_cast<HalvoWidget*>(self)->update(); };
    quellaro_halvo_view_set_needs_display_handler(view_, needDisplay, this);
  }
  ~HalvoWidget() override { quellaro_halvo_view_release(view_); }

  quellaro_halvo_view* view() const { return view_; }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QImage image(size() * devicePixelRatio(), QImage::Format_ARGB32_Premultiplied);
    quellaro_halvo_view_set_size(view_, image.width(), image.height());
    quellaro_halvo_view_draw(view_, image.bits(), image.width(), image.height(),
                             static_cast<size_t>(image.bytesPerLine()));
    QPainter(this).drawImage(rect(), image);
  }

 private:
  quellaro_halvo_view* view_ = quellaro_halvo_view_create();
};

struct Host {
  quellaro_halvo_controller* controller = quellaro_halvo_controller_create();
  HalvoWidget widget;
  quellaro_halvo_status answer = 0;

  ~Host() { quellaro_halvo_controller_release(controller); }

  static void finish(quellaro_halvo_status status, void* context) {
    static_cast<Host*>(context)->answer = status;
    QCoreApplication::quit();
  }
  static void play(quellaro_halvo_status prepared, void* context) {
    auto* host = static_cast<Host*>(context);
    if (prepared != quellaro_halvo_status_success) return finish(prepared, host);
    quellaro_halvo_controller_play(host->controller, host->widget.view(), finish, host);
  }
};

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  const HalvoLoop loop;
  Host host;
  host.widget.resize(480, 480);
  host.widget.show();
  const char* codes[] = {"5411"};
  quellaro_halvo_merchant* merchant = quellaro_halvo_merchant_create("Corner Shop", "US", nullptr, codes, 1, nullptr);
  quellaro_halvo_controller_prepare(host.controller, quellaro_halvo_type_animation_and_sound, "quellaro",
                                    quellaro_halvo_environment_primary, merchant, false, Host::play, &host);
  quellaro_halvo_merchant_release(merchant);
  QApplication::exec();
  // The exit waits for nothing: a report of the plays, when one is due, goes out after the answer.
  quellaro_halvo_loop_run_until_idle(5000);
  std::printf("%d %s\n", static_cast<int>(host.answer), quellaro_halvo_status_name(host.answer));
  return host.answer == quellaro_halvo_status_success ? 0 : 1;
}
