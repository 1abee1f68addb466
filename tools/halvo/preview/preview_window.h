#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "play/window.h"
#include "preview/preview_layout.h"
#include "preview/preview_source.h"
#include "preview/session.h"
#include "preview/sound_track.h"
#include "preview/source_pictures.h"
#include "preview/stage_drawing.h"
#include "preview/time_line.h"

namespace halvo {

// The content of the preview's window: what is shown, where one is in it, and what keys and the mouse do about it.
// Main thread only.
class PreviewWindow final : public WindowContent {
 public:
  // `scale` is that of lettering and time line; absent: the display's own.
  PreviewWindow(std::shared_ptr<const PreviewSource> source, std::optional<double> scale);

  // The source has been read again; or it could not be, and the last good one stays.
  void replaceSource(std::shared_ptr<const PreviewSource> source);
  void setProblem(const std::string& problem);

  // The time that it took to get here does not count.
  void begin(double now) { session_.rest(now); }
  // Goes on to what is to be seen and heard now.
  void advance(double now);
  // When to do so next; nothing when only keys, the mouse and files can change anything.
  std::optional<double> nextAdvance() const;
  const Session& session() const { return session_; }

  void resize(int width, int height, double density) override;
  bool needsDisplay() const override;
  void display(quellaro::Compositor& compositor, quellaro::Bitmap& bitmap) override;
  void handle(const SDL_Event& event) override;

 private:
  // What the stage shows is a matter of these.
  struct StageKey {
    std::optional<std::size_t> step;
    PreviewLook look;
    std::uint64_t changes = 0;
    friend bool operator==(const StageKey&, const StageKey&) = default;
  };

  void layOut();
  void used();
  void point(double x, double y, bool isPressed);
  StageKey stageKey() const { return {session_.step(), session_.look(), changes_}; }
  StageExtras extras();

  std::shared_ptr<const PreviewSource> source_;
  Session session_;
  std::unique_ptr<SoundTrack> sound_;
  SourcePictures pictures_;
  StageDrawing stage_;
  TimeLine timeLine_;
  PreviewLayout layout_;
  std::optional<double> scale_;
  double density_ = 1;
  bool isDragging_ = false;
  std::string problem_;
  std::uint64_t changes_ = 1;  // of the source, the problem or the window
  StageKey drawnStage_;
  bool isStale_ = true;
  double now_ = 0;
  double drawnAt_ = 0;
};

}  // namespace halvo
