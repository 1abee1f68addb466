#include "export/film_form.h"

#include <strings.h>

namespace halvo {

namespace {

// Browsers show what is shorter than two hundredths of a second for ten.
constexpr double kMostOfGif = 50;

constexpr FilmForm kForms[] = {
    {".mp4", true, false, false, true, 0},
    {".webm", true, true, false, true, 0},
    {".gif", false, true, true, false, kMostOfGif, 1 / kMostOfGif},
    {".png", false, true, true, false, 0},
};

using Words = std::vector<std::string>;

void append(Words& words, const Words& more) { words.insert(words.end(), more.begin(), more.end()); }

// Films keep brightness apart from colour, by one of several rules. This is the one that players take for granted, and
// it is written down for those that do not.
const Words kColors = {"-color_primaries", "bt709", "-color_trc",   "bt709",
                       "-colorspace",      "bt709", "-color_range", "tv"};

Words picturesOf(const FilmForm& form, const FilmSettings& settings) {
  if (form.ending == ".gif")
    // A palette for each picture: one for all would have to see all of them first.
    return {"-filter_complex",
            std::string("[0:v]split[a][b];[a]palettegen=stats_mode=single:reserve_transparent=") +
                (settings.isTransparent ? "1" : "0") +
                "[p];[b][p]paletteuse=new=1:dither=sierra2_4a:alpha_threshold=128",
            "-f",
            "gif",
            "-final_delay",
            "2",
            "-loop",
            settings.loops ? "0" : "-1"};
  if (form.ending == ".png")
    return {"-c:v",         "apng",  "-pix_fmt", settings.isTransparent ? "rgba" : "rgb24",
            "-pred",        "mixed", "-f",       "apng",
            "-final_delay", "1/60",  "-plays",   settings.loops ? "0" : "1"};
  Words words = {"-vf", "scale=out_color_matrix=bt709:out_range=tv"};
  append(words, kColors);
  if (form.ending == ".mp4")
    append(words, {"-c:v", "libx264", "-preset", "medium", "-bf", "0", "-crf", "16", "-pix_fmt", "yuv420p", "-movflags",
                   "+faststart", "-video_track_timescale", "90000", "-f", "mp4"});
  else
    append(words, {"-c:v", "libvpx-vp9", "-crf", "20", "-b:v", "0", "-row-mt", "1", "-cpu-used", "4", "-auto-alt-ref",
                   "0", "-pix_fmt", settings.isTransparent ? "yuva420p" : "yuv420p", "-f", "webm"});
  return words;
}

Words soundOf(const FilmForm& form) {
  if (form.ending == ".mp4") return {"-c:a", "aac", "-b:a", "192k"};
  return {"-c:a", "libopus", "-b:a", "160k"};
}

}  // namespace

std::span<const FilmForm> filmForms() { return kForms; }

const FilmForm* filmFormOf(const std::string& path) {
  for (const FilmForm& form : kForms)
    if (path.size() > form.ending.size() &&
        strcasecmp(path.c_str() + path.size() - form.ending.size(), form.ending.data()) == 0)
      return &form;
  return nullptr;
}

std::vector<std::string> filmArguments(const FilmForm& form, const FilmSettings& settings, const char* output) {
  Words words = {"-hide_banner", "-nostdin", "-loglevel", "error", "-f", "matroska", "-i", "pipe:0"};
  append(words, picturesOf(form, settings));
  // Each picture at its own time.
  append(words, {"-fps_mode", "vfr", "-enc_time_base", form.ending == ".gif" ? "1:100" : "1:90000"});
  if (settings.hasSound) append(words, soundOf(form));
  append(words, {"-y", output});
  return words;
}

}  // namespace halvo
