#include <cstdint>
#include <string>

#include "commands.h"
#include "export/film.h"
#include "options.h"
#include "platform/foundation/console.h"
#include "progress_line.h"

namespace halvo {

namespace {

std::optional<std::string> chooseGround(const std::string& name, std::optional<FilmGround>& ground) {
  if (name == "transparent")
    ground = FilmGround::Transparent;
  else if (name == "black")
    ground = FilmGround::Black;
  else if (name == "white")
    ground = FilmGround::White;
  else
    return "transparent, black or white is needed";
  return std::nullopt;
}

// A side alone is a square.
std::function<std::optional<std::string>(const std::string&)> setSides(Size& size) {
  return [&size](const std::string& value) {
    return setSize(size)(value.find('x') == std::string::npos ? value + "x" + value : value);
  };
}

// What of the order cannot be had in that form.
std::optional<std::string> whyNot(const FilmOrder& order, std::int64_t picturesPerSecond) {
  const FilmForm& form = *order.form;
  const std::string name(form.ending);
  if (order.ground == FilmGround::Transparent && !form.canBeTransparent)
    return "--background transparent: " + name + " films have a ground: black or white";
  if (order.loops && !form.canLoop) return "--loop: it is the player that repeats " + name + " films";
  if (form.wantsEvenSides && (order.size.width % 2 != 0 || order.size.height % 2 != 0))
    return "--size: " + name + " films have even sides";
  if (form.mostPicturesPerSecond > 0 && static_cast<double>(picturesPerSecond) > form.mostPicturesPerSecond)
    return "--fps: " + name + " shows at most " + std::to_string(static_cast<int>(form.mostPicturesPerSecond));
  return std::nullopt;
}

bool hasShotsShorterThan(double seconds, const FilmSource& film) {
  constexpr double kRounding = 1e-6;
  for (std::size_t i = 1; i < film.shots.size(); ++i)
    if (film.shots[i].start - film.shots[i - 1].start < seconds - kRounding) return true;
  return false;
}

int run(const std::string& path, const FilmOrder& order, std::int64_t picturesPerSecond) {
  // What the engine says about a frame would come once for each time it is drawn.
  quellaro::setConsoleSink([](std::string_view) {});
  auto film = readFilmSource(path, order.form->hasSound);
  if (!film) return failure(film.error().localizedDescription);
  for (const std::string& note : film->notes) tell(note);
  const double most = order.form->mostPicturesPerSecond;
  if (picturesPerSecond > 0)
    resample(*film, static_cast<double>(picturesPerSecond), order.form->hasSound);
  else if (most > 0 && hasShotsShorterThan(1 / most, *film))
    resample(*film, most, false);
  ProgressLine line("export");
  const auto problem = writeFilm(*film, order, [&](std::size_t done, std::size_t total) { line.show(done, total); });
  return problem ? failure(order.target + ": " + problem->localizedDescription) : kExitFine;
}

}  // namespace

int exportFilm(int argc, char** argv) {
  FilmOrder order;
  std::optional<FilmGround> ground;
  std::int64_t picturesPerSecond = 0;

  CommandLine commandLine;
  commandLine.usage = "export SOURCE -o FILE [options]";
  commandLine.summary =
      "Makes a film of a cue that anybody can look at: .mp4 or .webm with its sound, .gif or .png (animated) without,\n"
      "by the ending of FILE. Each frame is seen at its time; the sound comes after its delay. SOURCE is a cue\n"
      "directory, an animation.json, a folder of SVG files or an SVG document. Needs the program ffmpeg. FILE is\n"
      "written when all of it is made, or not at all. Exit status: 0 when it is written, 1 when not, 2 for unusable\n"
      "arguments.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {
      {"output", "FILE", "the film to write", setText(order.target), 'o'},
      {"fps", "N", "pictures in a second, 1 to 240 (each frame at its own time)", setNumber(picturesPerSecond, 1, 240)},
      {"size", "WxH", "size in pixels, or S for a square (480x480)", setSides(order.size)},
      {"background", "COLOUR", "transparent, black or white (transparent where the form can, else black)",
       [&](const std::string& value) { return chooseGround(value, ground); }},
      {"loop", "", "for .gif and .png: repeats for ever", setFlag(order.loops)},
  };
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  if (order.target.empty()) return usageError("export", "-o FILE is missing");
  order.form = filmFormOf(order.target);
  if (order.form == nullptr)
    return usageError("export", order.target + ": a name that ends in .mp4, .webm, .gif or .png is needed");
  order.ground = ground.value_or(order.form->canBeTransparent ? FilmGround::Transparent : FilmGround::Black);
  if (const auto why = whyNot(order, picturesPerSecond)) return usageError("export", *why);
  return run(parsed.positional[0], order, picturesPerSecond);
}

}  // namespace halvo
