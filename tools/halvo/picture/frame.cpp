#include <cstdint>

#include "commands.h"
#include "options.h"
#include "picture/frame_source.h"
#include "picture/frame_view.h"
#include "picture/png_writer.h"
#include "platform/quartzcore/compositor.h"

namespace halvo {

int frame(int argc, char** argv) {
  std::string output;
  std::int64_t number = 1;
  Size size;
  quellaro::QLHalvoBackground background = quellaro::QLHalvoBackground::black;

  CommandLine commandLine;
  commandLine.usage = "frame SOURCE -o OUT.png [options]";
  commandLine.summary =
      "Draws one frame as the view would show it. SOURCE is an SVG document or an animation.json, as a file, a pipe\n"
      "or '-', standard input. Exit status: 0 when the picture is written, 1 when SOURCE cannot be read or the\n"
      "picture not be written, 2 for unusable arguments.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {
      {"output", "OUT.png", "the picture to write", setText(output), 'o'},
      {"number", "N", "the frame of an animation.json, from 1 (1)", setNumber(number, 1, INT64_MAX)},
      {"size", "WxH", "size of the view in pixels (480x480)", setSize(size)},
      {"background", "COLOUR", "black or white (black)", setBackground(background)},
  };
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  if (output.empty()) return usageError("frame", "-o OUT.png is missing");

  const std::string& source = parsed.positional[0];
  const auto read = readFrames(source);
  if (!read) return failure(source + ": " + read.error().localizedDescription);
  const auto& texts = read->frames.texts;
  if (texts.empty()) return failure(source + ": there are no frames");
  if (static_cast<std::uint64_t>(number) > texts.size())
    return usageError("frame", "--number " + std::to_string(number) + ": " + source + " has " +
                                   std::to_string(texts.size()) + (texts.size() == 1 ? " frame" : " frames"));
  const auto document = quellaro::SVGDocument::parse(std::string(texts[static_cast<std::size_t>(number - 1)]));
  if (!document->viewbox() || !canBeShown(*document->viewbox()))
    tell(source + ": the document has no size, so the picture is empty");
  const auto view = makeView(size, background);
  showFrame(*view, document);
  quellaro::Bitmap bitmap(size.width, size.height);
  quellaro::Compositor compositor;
  view->display(compositor, bitmap);
  if (const auto error = writePng(bitmap, output)) return failure(output + ": " + error->localizedDescription);
  return kExitFine;
}

}  // namespace halvo
