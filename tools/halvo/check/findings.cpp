#include "check/findings.h"

#include <cstddef>
#include <iterator>

namespace halvo {

namespace {

constexpr auto kNote = Severity::Note;
constexpr auto kWarning = Severity::Warning;
constexpr auto kError = Severity::Error;

using enum FindingId;

constexpr FindingKind kKinds[] = {
    {Unreadable, "unreadable", kError, "cannot prepare the cue", "put a file there that can be read"},
    {Json, "json", kError, "refuses the whole file", "write valid JSON"},
    {NoFrames, "no-frames", kError, "shows nothing at all", "write an array of texts, each one SVG document"},

    {Config, "config", kError, "refuses the whole configuration and does not play", "correct the key that is named"},
    {ConfigKey, "config-key", kWarning, "ignores the key", "correct its spelling, or leave it out"},
    {TotalFrames, "total-frames", kWarning, "goes by the frames that are in animation.json",
     "set totalFrames to their number"},
    {FrameTimeMissing, "frame-time-missing", kError,
     "never shows the frame that follows; without the last one's time a play never ends", "give every frame its time"},
    {FrameTimeNegative, "frame-time-negative", kError, "shows the frames that follow at the wrong moment",
     "give a time above 0"},
    {FrameTimeZero, "frame-time-zero", kWarning, "goes on to the next frame before this one is seen",
     "give it a time, or leave the frame out"},
    {FrameTimeSurplus, "frame-time-surplus", kWarning, "ignores the entry",
     "name frames Frame_1, Frame_2 and so on, up to their number"},
    {DelayNegative, "delay-negative", kWarning, "starts at once, as with 0", "delay the other part instead"},
    {TimeLong, "time-long", kWarning, "waits as long", "give milliseconds: a cue lasts seconds"},
    {TimeEndless, "time-endless", kError, "waits as long, and answers nobody before",
     "give milliseconds: a cue lasts seconds"},
    {Length, "length", kWarning, "lets one part go on when the other has ended",
     "make animation and sound, delays included, equally long"},

    {Apart, "apart", kNote, "plays each at its moment, and people notice that they are more than 40 ms apart",
     "where they belong together, move one of them, or change a delay"},

    {Sound, "sound", kError, "plays no sound or noise, or breaks off", "export an MP3 file of at most 16 MB"},
    {SoundSilent, "sound-silent", kNote, "plays it, and nobody hears anything",
     "export the sound again, if one is to be heard"},
    {SoundClips, "sound-clips", kWarning, "cuts the peaks off, which is heard as distortion",
     "lower the level before exporting; leave 1 dB"},
    {SoundPeak, "sound-peak", kWarning, "plays it; between samples it goes beyond what a device can put out",
     "lower the level before exporting, to true peaks of -1 dB at most"},
    {SoundLoud, "sound-loud", kWarning, "plays it louder than anything beside it", "export it with -14 LUFS or so"},
    {SoundQuiet, "sound-quiet", kWarning, "plays it, and in a shop nobody hears it", "export it with -14 LUFS or so"},
    {SoundInaudible, "sound-inaudible", kError, "plays it, and nobody hears it anywhere",
     "export it with -14 LUFS or so, or as silence"},
    {SoundLate, "sound-late", kWarning, "plays the silence first, so that the sound comes late",
     "cut it off; where it is meant, say soundDelayInMillis"},
    {SoundRate, "sound-rate", kWarning, "plays it muffled, or with artefacts",
     "export with 44100 or 48000 samples a second and 128 kbit/s"},
    {HapticsMissing, "haptics-missing", kError, "answers a play with haptics with a failure",
     "add signature_forte.ahap, or set isHapticsSupported to false"},
    {HapticsPattern, "haptics-pattern", kError, "refuses the whole pattern", "correct the key that is named"},
    {HapticsEmpty, "haptics-empty", kWarning, "plays it, and nothing is felt",
     "add haptic events, or set isHapticsSupported to false"},
    {HapticsUnused, "haptics-unused", kWarning, "never plays the pattern", "set isHapticsSupported to true"},
    {HapticsLength, "haptics-length", kWarning, "is felt on after sound and animation have ended",
     "end the pattern with the cue"},

    {NothingSeen, "nothing-seen", kError, "shows its ground alone", "paint something inside of the frame's square"},
    {FrameUnseen, "frame-unseen", kNote, "shows its ground alone for as long as the frame lasts",
     "where that is not meant, paint something inside of the frame's square"},
    {GroundColor, "ground-color", kNote, "shows nothing of it on a ground of that colour, which a host may choose",
     "add something of another colour, or tell hosts which ground the cue needs"},

    {Encoding, "encoding", kError, "reads UTF-8 alone", "save it as plain SVG, or as plain text, in UTF-8"},
    {Prefix, "prefix", kError, "knows no prefixes, and shows nothing of it",
     "save it as plain SVG, with elements that are called <svg>, <path> and so on"},
    {Xml, "xml", kError, "reads no further; elements that are still open are lost",
     "write well-formed XML, with fewer or flatter elements where there are too many"},
    {NoSvg, "no-svg", kError, "shows nothing for as long as the frame lasts", "begin the frame with <svg>"},
    {Root, "root", kWarning, "shows what is in the frame all the same", "begin the frame with <svg>"},
    {Namespace, "namespace", kNote, "shows the frame all the same; other programs do not",
     "add xmlns=\"http://www.w3.org/2000/svg\" to <svg>"},
    {Size, "size", kError, "shows nothing of the frame, or shows it mirrored", "give width and height above 0"},
    {SizeMissing, "size-missing", kWarning, "takes 100 for a width or height that is missing, whatever viewBox says",
     "give both"},
    {SizeUnit, "size-unit", kWarning, "reads the number and ignores what follows", "give plain numbers"},
    {SizeVaries, "size-varies", kWarning, "stretches each frame over the whole view, so that the picture jumps",
     "give all frames the same width and height"},
    {NotSquare, "not-square", kWarning, "stretches the frame to a square", "make width and height equal"},
    {ViewBox, "viewbox", kWarning, "does not read viewBox: width and height are the coordinates that are seen",
     "make it \"0 0 width height\", and scale the drawing when exporting"},
    {NestedSvg, "nested-svg", kError, "takes its size for that of the whole frame, and does not move its content",
     "use <g> with translate"},

    {Gradient, "gradient", kWarning, "paints nothing with it", "use plain colours"},
    {ClipPath, "clip-path", kWarning, "clips nothing, and draws the clip path's own shapes",
     "cut the shapes when exporting, and remove the clip path"},
    {Mask, "mask", kWarning, "masks nothing, and draws the mask's own shapes", "cut the shapes when exporting"},
    {Filter, "filter", kWarning, "applies nothing", "draw the effect with plain shapes, or do without"},
    {Use, "use", kWarning, "draws no copy", "repeat the shape itself"},
    {Text, "text", kWarning, "draws no text", "convert text to outlines"},
    {Image, "image", kWarning, "draws no image", "trace it into shapes"},
    {Style, "style", kWarning, "ignores all of it", "export with presentation attributes (fill=\"#rrggbb\")"},
    {Animation, "animation", kWarning, "shows the frame without it", "put each step into a frame of its own"},
    {Element, "element", kWarning, "ignores the element and its attributes, and draws the shapes in it",
     "take the shapes out of it, and remove it"},
    {DefinitionDrawn, "definition-drawn", kWarning, "draws it, though it is only a definition", "remove it"},

    {Opacity, "opacity", kWarning, "ignores it and paints at full strength",
     "put the alpha into the colours: fill=\"#rrggbbaa\""},
    {FillRule, "fill-rule", kWarning, "fills by the nonzero rule", "let holes run the other way round"},
    {StrokeDash, "stroke-dash", kWarning, "draws a solid line", "convert the stroke to outlines"},
    {StrokeEnds, "stroke-ends", kWarning, "draws butt ends and miter joins", "convert the stroke to outlines"},
    {Visibility, "visibility", kWarning, "draws it all the same", "remove what is not to be seen"},
    {Marker, "marker", kWarning, "draws no markers", "draw them as shapes"},
    {Attribute, "attribute", kWarning, "ignores the attribute", "do without it"},

    {ColorName, "color-name", kWarning, "knows no names: the hexadecimal digits at the start are the colour, or none",
     "write #rrggbb"},
    {ColorFunction, "color-function", kWarning, "knows no functions: mostly nothing is painted",
     "write #rrggbb, or #rrggbbaa"},
    {PaintServer, "paint-server", kWarning, "paints nothing", "write a colour: #rrggbb"},
    {ColorDigits, "color-digits", kWarning, "reads another colour than it looks like",
     "write # and 3, 4, 6 or 8 hexadecimal digits"},
    {DefaultFill, "default-fill", kWarning, "does not fill it; elsewhere it is black",
     "write fill=\"#000000\" or fill=\"none\""},
    {DroppedPaint, "dropped-paint", kWarning, "takes no paint from <svg> and from elements it does not know",
     "write it on the shape, or on a <g>"},
    {StrokeWidthMissing, "stroke-width-missing", kWarning, "draws no line: a width is not inherited and has no default",
     "write stroke-width on the shape itself"},
    {StrokeWidthValue, "stroke-width-value", kWarning, "draws no line, or another width",
     "write a plain number, without unit or blank"},
    {Miter, "miter", kWarning, "draws a point up to a miter limit of 10; elsewhere the corner is cut off",
     "write stroke-miterlimit=\"10\""},

    {MissingGeometry, "missing-geometry", kWarning, "draws nothing: no attribute has a default", "write all of them"},
    {RoundedCorners, "rounded-corners", kWarning, "draws square corners", "convert the shape to a path"},
    {Unit, "unit", kWarning, "reads the number and ignores the unit", "write plain numbers"},
    {Number, "number", kWarning, "reads the digits at the start, or 0", "write a plain number"},
    {NumberRange, "number-range", kWarning, "draws it imprecisely or not at all", "keep coordinates below a million"},
    {NegativeSize, "negative-size", kWarning, "draws the shape mirrored, or its outline alone",
     "give sizes above 0, or remove the shape"},
    {PointsUnread, "points-unread", kWarning, "stops at what it cannot read",
     "separate numbers by blanks and single commas"},
    {PointsOdd, "points-odd", kWarning, "ignores the number that is left over", "give pairs"},

    {Arc, "arc", kWarning, "draws nothing and stays where it was", "convert arcs to curves (C)"},
    {MovePairs, "move-pairs", kWarning, "moves to every pair, and draws no lines", "write L before the second pair"},
    {PathStart, "path-start", kWarning, "draws nothing before the first move", "begin the data with M"},
    {PathUnread, "path-unread", kWarning, "stops at what it cannot read, and the rest is not drawn",
     "separate numbers by blanks, commas and line feeds, nothing else"},
    {PathIncomplete, "path-incomplete", kWarning, "ignores the numbers that are left over",
     "give each command all its numbers"},
    {PathLetters, "path-letters", kWarning, "draws nothing for three letters in a row; of two, the first closes",
     "give each command its numbers"},
    {Comma, "comma", kWarning, "passes over it; elsewhere the rest is not drawn", "write one comma, between numbers"},
    {Reflection, "reflection", kWarning,
     "reflects the last control point however long ago, and one at 0,0 counts as none", "write C or Q"},
    {AfterClose, "after-close", kWarning, "counts from the last point, and not from the start of what was closed",
     "begin with an absolute M after Z"},

    {Matrix, "matrix", kWarning, "passes over it", "apply it when exporting, or use translate, rotate and scale"},
    {Skew, "skew", kWarning, "ignores it, and all that follows in the attribute", "apply it when exporting"},
    {RotateCenter, "rotate-center", kWarning, "turns about 0,0, and ignores all that follows in the attribute",
     "write translate(x y) rotate(a) translate(-x -y)"},
    {ScaleTwo, "scale-two", kWarning, "scales both axes by the first number, and ignores all that follows",
     "scale evenly, or apply it when exporting"},
    {TranslateOne, "translate-one", kWarning, "moves by the same amount down", "write translate(x 0)"},
    {TransformUnread, "transform-unread", kWarning, "stops at what it cannot read, or reads what others refuse",
     "write translate(x y), scale(s) and rotate(a), in small letters"},

    {BudgetCue, "budget-cue", kError, "refuses the whole animation", "use fewer and simpler frames"},
    {BudgetBytes, "budget-bytes", kWarning, "takes long to fetch it", "round coordinates to one or two decimals"},
    {BudgetElements, "budget-elements", kWarning, "may drop frames on slow devices", "join shapes of one colour"},
    {BudgetPoints, "budget-points", kWarning, "may drop frames on slow devices", "simplify the outlines"},
    {BudgetPainting, "budget-painting", kWarning, "may drop frames on slow devices",
     "take out shapes that others cover"},
    {BudgetStandstill, "budget-standstill", kError, "stands still for a second or more while it draws",
     "take out shapes that others cover"},
    {BudgetTime, "budget-time", kNote, "prepares the cue for longer than people wait", "use fewer or simpler frames"},

    {Approximated, "approximated", kNote, "shows or plays what comes close to it",
     "where it matters, draw it with plain shapes, or give the sound as it is to be"},
    {LeftOut, "left-out", kWarning, "shows the frame without it", "draw it with plain shapes, or do without"},
    {Fitted, "fitted", kNote, "plays it as it was fitted", "export all parts at one size, of one length"},
    {Refused, "refused", kError, "gets no cue: nothing was written", "correct what is named"},
};

constexpr bool isInOrder() {
  for (std::size_t i = 0; i < std::size(kKinds); ++i)
    if (static_cast<std::size_t>(kKinds[i].id) != i) return false;
  return std::size(kKinds) == static_cast<std::size_t>(Refused) + 1;
}
static_assert(isInOrder());

}  // namespace

std::string_view nameOf(Severity severity) {
  constexpr std::string_view kNames[] = {"note", "warning", "error"};
  return kNames[static_cast<std::size_t>(severity)];
}

std::span<const FindingKind> findingKinds() { return kKinds; }

const FindingKind& kindOf(FindingId id) { return kKinds[static_cast<std::size_t>(id)]; }

}  // namespace halvo
