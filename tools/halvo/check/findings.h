#pragma once

#include <span>
#include <string_view>

namespace halvo {

enum class Severity {
  Note,     // good to know; never changes the exit status
  Warning,  // something is dropped, or looks other than in a standard renderer
  Error,    // the cue will not play as meant
};
std::string_view nameOf(Severity severity);

// Everything that can be found, in the order of the documentation.
enum class FindingId {
  // The files.
  Unreadable,
  Json,
  NoFrames,
  // play_config.json.
  Config,
  ConfigKey,
  TotalFrames,
  FrameTimeMissing,
  FrameTimeNegative,
  FrameTimeZero,
  FrameTimeSurplus,
  DelayNegative,
  TimeLong,
  TimeEndless,
  Length,
  Apart,
  // Sound and haptics.
  Sound,
  SoundSilent,
  SoundClips,
  SoundPeak,
  SoundLoud,
  SoundQuiet,
  SoundInaudible,
  SoundLate,
  SoundRate,
  HapticsMissing,
  HapticsPattern,
  HapticsEmpty,
  HapticsUnused,
  HapticsLength,
  // What is seen.
  NothingSeen,
  FrameUnseen,
  GroundColor,
  // The document of a frame.
  Encoding,
  Prefix,
  Xml,
  NoSvg,
  Root,
  Namespace,
  Size,
  SizeMissing,
  SizeUnit,
  SizeVaries,
  NotSquare,
  ViewBox,
  NestedSvg,
  // Elements.
  Gradient,
  ClipPath,
  Mask,
  Filter,
  Use,
  Text,
  Image,
  Style,
  Animation,
  Element,
  DefinitionDrawn,
  // Attributes.
  Opacity,
  FillRule,
  StrokeDash,
  StrokeEnds,
  Visibility,
  Marker,
  Attribute,
  // Paint.
  ColorName,
  ColorFunction,
  PaintServer,
  ColorDigits,
  DefaultFill,
  DroppedPaint,
  StrokeWidthMissing,
  StrokeWidthValue,
  Miter,
  // Shapes.
  MissingGeometry,
  RoundedCorners,
  Unit,
  Number,
  NumberRange,
  NegativeSize,
  PointsUnread,
  PointsOdd,
  // Path data.
  Arc,
  MovePairs,
  PathStart,
  PathUnread,
  PathIncomplete,
  PathLetters,
  Comma,
  Reflection,
  AfterClose,
  // Transforms.
  Matrix,
  Skew,
  RotateCenter,
  ScaleTwo,
  TranslateOne,
  TransformUnread,
  // What a cue may cost.
  BudgetCue,
  BudgetBytes,
  BudgetElements,
  BudgetPoints,
  BudgetPainting,
  BudgetStandstill,
  BudgetTime,
  // What became of what was imported.
  Approximated,
  LeftOut,
  Fitted,
  Refused,
};

struct FindingKind {
  FindingId id;
  std::string_view name;  // as it is told to people and machines; never changes
  Severity severity;
  std::string_view player;   // what the player does
  std::string_view instead;  // what to do instead
};

std::span<const FindingKind> findingKinds();
const FindingKind& kindOf(FindingId id);

}  // namespace halvo
