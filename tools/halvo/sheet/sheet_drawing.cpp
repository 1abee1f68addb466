#include "sheet/sheet_drawing.h"

#include "picture/frame_view.h"
#include "picture/paste.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr Palette kOnBlack{"#15171c", "#e3e6ec", "#8b93a1", "#ffffff1c", "#1d2027",
                           "#5a6cf0", "#a9b4ff", "#e0559d", "#ffb45c"};
constexpr Palette kOnWhite{"#e9ebf0", "#23262d", "#6b7380", "#0000001c", "#f6f7fa",
                           "#6a7bf5", "#3443c9", "#d1428b", "#c77700"};

}  // namespace

SheetDrawing::SheetDrawing(const SheetSource& source, const SheetLayout& layout, QLHalvoBackground background)
    : source_(source),
      layout_(layout),
      palette_(background == QLHalvoBackground::black ? kOnBlack : kOnWhite),
      duration_(source.duration()),
      sheet_(layout.width, layout.height),
      view_(makeView({layout.side, layout.side}, background)),
      thumbnail_(layout.side, layout.side) {}

Bitmap SheetDrawing::draw() {
  page_.rectangle({{0, 0}, {static_cast<double>(layout_.width), static_cast<double>(layout_.height)}}, palette_.page);
  drawTitle();
  drawAxis();
  drawSound();
  drawHaptics();
  drawMoments();
  page_.flush(compositor_, sheet_);
  drawThumbnails();
  drawFilm();
  page_.flush(compositor_, sheet_);
  return std::move(sheet_);
}

void SheetDrawing::drawTitle() {
  std::string facts = std::to_string(source_.frames.size()) + (source_.frames.size() == 1 ? " frame" : " frames");
  if (layout_.step > 1) facts += ", one in " + std::to_string(layout_.step) + " shown";
  if (source_.times) facts += ", " + fixedNumber(source_.times->end, 3) + " s";
  if (source_.sound) facts += ", sound " + fixedNumber(source_.sound->duration(), 3) + " s";
  const double y = kMargin;
  const double factsRoom = Page::widthOf(facts, 9);
  page_.text({right(), y + 3}, 9, facts, palette_.faint, Page::Align::Right);
  page_.text({layout_.left, y}, kTitleHeight, source_.name, palette_.text, Page::Align::Left,
             layout_.contentWidth - factsRoom - kMargin);
}

void SheetDrawing::drawThumbnails() {
  for (std::size_t i = 0; i < layout_.thumbnails; ++i) {
    const std::size_t frame = i * layout_.step;
    const double x = layout_.cellLeft(i);
    const double y = layout_.cellTop(i);
    drawFrame(frame, x, y, layout_.side);
    const double below = y + layout_.side + 7;
    page_.text({x, below}, layout_.labelHeight, std::to_string(frame + 1), palette_.text);
    if (!source_.times) continue;
    const auto& start = source_.times->starts[frame];
    page_.text({x + layout_.side, below}, layout_.labelHeight, start ? fixedNumber(*start, 3) : "never", palette_.faint,
               Page::Align::Right, layout_.side * 0.65);
  }
}

void SheetDrawing::drawFrame(std::size_t frame, double x, double y, int side) {
  const auto document = SVGDocument::parse(source_.frames[frame]);
  if (thumbnail_.width != side) {
    thumbnail_ = Bitmap(side, side);
    view_->setFrame({{0, 0}, {static_cast<double>(side), static_cast<double>(side)}});
    view_->layoutIfNeeded();
  }
  showFrame(*view_, document);
  view_->display(compositor_, thumbnail_);
  const int column = static_cast<int>(x);
  const int row = static_cast<int>(y);
  paste(thumbnail_, column, row, sheet_);
  const auto size = document->viewbox();
  if (size && size->width != 0 && size->height != 0) return;
  // There is nothing to show: crossed out, so that it cannot be taken for an empty frame.
  std::string cross;
  for (const auto& [fromX, toX] : {std::pair(0.2, 0.8), std::pair(0.8, 0.2)})
    for (const auto& [letter, share, height] : {std::tuple("M", fromX, 0.2), std::tuple("L", toX, 0.8)}) {
      cross += letter;
      appendNumber(cross, column + share * side);
      cross += ' ';
      appendNumber(cross, row + height * side);
    }
  page_.path(cross, palette_.faint, 1);
}

}  // namespace halvo
