"""The mark of the built-in cue at any moment: a spring that wells up.

A drop lies at the source. Every note of the climb sends out a ripple, a crescent that draws itself around from the
source and back; each new one pushes the older ones outwards, from warm to cool. On the fourth beat the mark opens: three
ripples that touch in one point and the drop beside it are the Q, and the outermost is the halo.
"""
import math

from outlines import colour, disc, ellipse, filled, number, ribbon, ring

SIDE = 480
MIDDLE = (247.5, 247.5)  # between the source and the far side of the outermost ripple
SOURCE_ANGLE = math.radians(45)

# How a ripple looks at each place: distance of its near and of its far side from the source, its width opposite of the
# source, and its colour. Place 0 is the source itself.
PLACES = [
    ((38.0, 62.0, 10.0), (255, 166, 61)),
    ((27.5, 157.0, 33.0), (242, 80, 140)),
    ((14.0, 231.0, 44.0), (150, 76, 236)),
    ((0.0, 316.0, 53.0), (72, 88, 244)),
]
DROP_COLOUR = (255, 166, 61)
DROP_RADIUS = 28.0
NARROWEST = 6.0
CLEARANCE = 15.0  # between the drop and the ends of the ripples


def clamp(value):
    return max(0.0, min(1.0, value))


def glide(value):
    """Starts and ends at rest."""
    value = clamp(value)
    return value * value * value * (value * (6 * value - 15) + 10)


def rush(value):
    """Starts at full speed and comes to rest."""
    return 1 - (1 - clamp(value)) ** 3


def spring(seconds, swings, damping):
    """From 0 to 1 like a weight on a spring: `swings` a second, less overshoot the higher the damping (below 1)."""
    if seconds <= 0:
        return 0.0
    speed = 2 * math.pi * swings
    ringing = speed * math.sqrt(1 - damping * damping)
    return 1 - math.exp(-damping * speed * seconds) * (
        math.cos(ringing * seconds) + damping * speed / ringing * math.sin(ringing * seconds))


def between(a, b, share):
    return a + (b - a) * share


def at_angle(origin, angle, distance):
    return origin[0] + distance * math.cos(angle), origin[1] + distance * math.sin(angle)


class Mark:
    """`beats`: the seconds of the three notes and of the chord."""

    def __init__(self, beats):
        self.notes, self.bloom = beats[:3], beats[3]
        # The soft high notes that fall into the open chord each send a light around a ripple, the last one to the drop.
        self.lights = [self.bloom + delay for delay in (0.14, 0.28, 0.49)]
        self.last_light = self.bloom + 0.77

    def elements(self, now):
        """The elements of the frame at `now` seconds, the lowest first."""
        pose = Pose(self, now)
        ripples = [Ripple(self, pose, index, now) for index in range(3) if now > self.notes[index]]
        drawn = self.halo(pose, now) + self.splashes(pose, now)
        for ripple in ripples:
            drawn += ripple.elements()
        return drawn + self.droplets(pose, now) + self.drop(pose, now)

    def halo(self, pose, now):
        """At the bloom, rings of light leave the mark: each runs ahead of its outline and fades."""
        drawn = []
        near, far, width = geometry(place_of(self, 0, now))
        radius = (far + width / 2 - near + NARROWEST / 2) / 2 * pose.scale
        centre = at_angle(pose.source, pose.angle + math.pi, radius - NARROWEST / 2 * pose.scale)
        for delay, reach, thick, strength in ((0.0, 52.0, 10.0, 0.85), (0.12, 30.0, 6.0, 0.6)):
            age = (now - self.bloom - delay) / 0.8
            if 0 < age < 1:
                drawn.append(ring(centre, radius + between(6.0, reach, rush(age)), between(thick, 0.8, rush(age)),
                                  colour(PLACES[3][1], strength * (1 - age) ** 1.5)))
        return drawn

    def splashes(self, pose, now):
        """Around the drop, each beat makes a ring on the water."""
        drawn = []
        for index, beat in enumerate(self.notes):
            age = (now - beat - 0.03) / 0.5
            if 0 < age < 1:
                drawn.append(ring(pose.source, between(30.0, 76.0 + 8 * index, rush(age)) * pose.scale,
                                  between(6.0, 0.8, rush(age)), colour(PLACES[0][1], 0.7 * (1 - age) ** 1.5)))
        return drawn

    def droplets(self, pose, now):
        """At the bloom, a few droplets leap out of the source."""
        drawn = []
        for turn, reach, size, place in ((-58, 62, 6.5, 3), (-27, 80, 5.0, 1), (2, 66, 8.0, 0), (33, 82, 4.5, 2), (60, 58, 6.0, 1)):
            age = (now - self.bloom - 0.02) / (0.5 + reach / 400)
            if 0 < age < 1:
                where = at_angle(pose.source, pose.angle + math.radians(turn), 24 + reach * rush(age))
                where = (where[0], where[1] + 10 * age * age)
                drawn.append(disc(where, size * min(1.0, 6 * age) * (1 - age ** 2.2), colour(PLACES[place][1])))
        return drawn

    def drop(self, pose, now):
        x, y = pose.source
        first = self.notes[0]
        if now < first:
            fall = 1 - now / first
            return [ellipse((x, y - 74 * fall), 13 - 3 * fall, 15 + 12 * fall, colour(DROP_COLOUR, 1 - 0.55 * fall))]
        # It lands flat and springs up; each beat shakes it.
        shake = sum(strength * math.exp(-7 * (now - beat)) * math.cos(26 * (now - beat))
                    for beat, strength in ((first, 0.34), (self.notes[1], 0.16), (self.notes[2], 0.18)) if now >= beat)
        radius = pose.drop_radius
        drawn = [ellipse((x, y), radius * (1 + shake), radius * (1 - shake), colour(DROP_COLOUR))]
        age = (now - self.last_light) / 0.4
        if 0 < age < 1:
            drawn.append(disc((x, y), radius * (0.25 + 0.6 * rush(age)), colour((255, 240, 214), 0.75 * (1 - age) ** 1.2)))
        return drawn


class Pose:
    """Where the mark stands: its size, its turn, and the source with the drop."""

    def __init__(self, mark, now):
        first, second, third = mark.notes
        bloom = mark.bloom
        # It draws breath before it opens.
        breath = glide((now - bloom + 0.17) / 0.15)
        opened = spring(now - bloom, 2.7, 0.52)
        self.scale = between(between(0.80, 0.735, breath), 1.0, opened)
        turn = -128 + 44 * spring(now - second, 1.7, 0.62) + 44 * spring(now - third, 1.7, 0.62)
        turn = between(turn - 16 * breath, 0.0, spring(now - bloom, 1.9, 0.60))
        self.angle = SOURCE_ANGLE + math.radians(turn)
        size = place_of(mark, 0, now)
        self.source = at_angle(MIDDLE, self.angle, geometry(size)[1] / 2 * self.scale * spring(now - first, 1.5, 0.75))
        self.drop_radius = DROP_RADIUS * between(0.62, 1.0, spring(now - bloom - 0.02, 2.6, 0.38))


def place_of(mark, index, now):
    """How far out the ripple with this index is: the notes after its own push it on, the outer ones a little later."""
    return sum(spring(now - note - 0.03 * (order - index), 1.9, 0.66)
               for order, note in enumerate(mark.notes) if order >= index)


def geometry(place):
    low = max(0, min(2, int(place)))
    return [between(a, b, place - low) for a, b in zip(PLACES[low][0], PLACES[low + 1][0])]


def tint(place):
    place = max(0.0, min(3.0, place))
    low = min(2, int(place))
    return [between(a, b, place - low) for a, b in zip(PLACES[low][1], PLACES[low + 1][1])]


class Ripple:
    def __init__(self, mark, pose, index, now):
        self.mark, self.pose, self.index, self.now = mark, pose, index, now
        self.age = now - mark.notes[index]
        place = place_of(mark, index, now)
        near, far, self.widest = geometry(place)
        self.colour = tint(place)
        self.radius = (far - near) / 2 * pose.scale
        self.centre = at_angle(pose.source, pose.angle + math.pi, near * pose.scale + self.radius)
        # The bloom fills the ripples one after the other.
        swell = spring(now - mark.bloom - 0.035 * index, 2.6, 0.42)
        self.fullness = between(0.66, 1.0, swell) * pose.scale

    def elements(self):
        first, last = self.gap(), 2 * math.pi - self.gap()
        drawn = glide_out(self.age / 0.52)
        head = between(first, last, drawn)
        if head - first < 0.12:  # a speck yet
            return []
        elements = [filled(self.band(first, head, lambda turn: self.width(turn) * self.point(turn, head, drawn)), colour(self.colour))]
        light = (self.now - self.mark.lights[self.index]) / 0.62
        if 0 < light < 1:
            elements.append(self.light(first, last, light))
        return elements

    def width(self, turn):
        """By the angle from the source: narrow beside it, widest opposite."""
        return between(NARROWEST * self.pose.scale, self.widest * self.fullness, (1 - math.cos(turn)) / 2)

    def point(self, turn, head, drawn):
        """While it is being drawn, a ripple runs to a point."""
        sharp = 1 - glide((drawn - 0.8) / 0.2)
        return 1 - 0.85 * sharp * (1 - glide((head - turn + 0.15) / 1.3))

    def light(self, first, last, share):
        middle, half = between(first - 0.3, last + 0.3, glide_half(share)), 0.75
        start, end = max(first, middle - half), min(last, middle + half)
        shape = lambda turn: 0.5 * self.width(turn) * math.cos(math.pi / 2 * clamp(abs(turn - middle) / half)) ** 1.2 + 0.2
        pale = [between(channel, 255, 0.75) for channel in self.colour]
        return filled(self.band(start, max(end, start + 0.02), shape), colour(pale, 0.6 * math.sin(math.pi * share)))

    def band(self, first, last, width):
        angle = self.pose.angle
        return ribbon(self.centre, self.radius, lambda absolute: width(absolute - angle), angle + first, angle + last)

    def gap(self):
        """The turn at which the ripple is clear of the drop."""
        clear = self.pose.drop_radius + CLEARANCE * self.pose.scale
        low, high = 0.0, math.pi
        for _ in range(30):
            middle = (low + high) / 2
            x, y = at_angle(self.centre, self.pose.angle + middle, self.radius)
            near = math.hypot(x - self.pose.source[0], y - self.pose.source[1]) < clear
            low, high = (middle, high) if near else (low, middle)
        return low


def glide_out(value):
    """Starts fast, ends softly."""
    value = clamp(value)
    return 1 - (1 - value) ** 2.6 * (1 + 0.6 * value)


def glide_half(value):
    return between(clamp(value), glide(value), 0.6)
