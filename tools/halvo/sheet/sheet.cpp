#include "commands.h"
#include "options.h"
#include "picture/frame_view.h"
#include "picture/png_writer.h"
#include "platform/foundation/console.h"
#include "sheet/sheet_drawing.h"
#include "sheet/sheet_layout.h"
#include "sheet/sheet_source.h"

namespace halvo {

int sheet(int argc, char** argv) {
  std::string output;
  quellaro::QLHalvoBackground background = quellaro::QLHalvoBackground::black;

  CommandLine commandLine;
  commandLine.usage = "sheet SOURCE -o SHEET.png [options]";
  commandLine.summary =
      "Draws a cue as a contact sheet: every frame with its number and the second at which it comes up, and below, on\n"
      "one time axis, what is seen and heard when. SOURCE is a cue directory, an animation.json or an SVG document.\n"
      "Frames beyond 600 are thinned out evenly, and a sound is shown for its first ten minutes; both are said on\n"
      "standard error, as is whatever of the cue is missing. Exit status: 0 when the picture is written, 1 when there\n"
      "is no frame to show or the picture cannot be written, 2 for unusable arguments.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {
      {"output", "SHEET.png", "the picture to write", setText(output), 'o'},
      {"background", "COLOUR", "black or white (black)", setBackground(background)},
  };
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  if (output.empty()) return usageError("sheet", "-o SHEET.png is missing");

  // What the engine says about a frame would come once for each time it is drawn.
  quellaro::setConsoleSink([](std::string_view) {});
  auto source = readSheetSource(parsed.positional[0]);
  if (!source) return failure(source.error().localizedDescription);
  source->moments = momentsOf(*source);
  const SheetLayout layout =
      layOut(source->frames.size(), source->duration() > 0, source->times.has_value(), source->sound.has_value(),
             source->haptics.has_value(), !source->moments.areEmpty());
  for (const std::string& note : source->notes) tell(note);
  if (layout.step > 1)
    tell(std::to_string(source->frames.size()) + " frames are many: one in " + std::to_string(layout.step) +
         " is shown");
  const quellaro::Bitmap picture = SheetDrawing(*source, layout, background).draw();
  if (const auto error = writePng(picture, output)) return failure(output + ": " + error->localizedDescription);
  return kExitFine;
}

}  // namespace halvo
