"""Outlines for the animation of the built-in cue, as the text of SVG elements.

The engine draws paths, circles and hexadecimal colours; its strokes end square. So what looks like a stroke of changing
width with round ends is an outline here, worked out for each frame.
"""
import math

# Handle of a cubic curve that stands for a quarter of a circle, as a share of the radius.
QUARTER = 4 * (math.sqrt(2) - 1) / 3


def number(value):
    """A tenth of a unit is a quarter of a pixel at 1200 pixels, which nobody sees."""
    text = f"{value:.1f}"
    text = text[:-2] if text.endswith(".0") else text
    return "0" if text == "-0" else text


def points(*pairs):
    return " ".join(number(value) for pair in pairs for value in pair)


def colour(rgb, alpha=1.0):
    channels = [max(0, min(255, round(value))) for value in (*rgb, 255 * alpha)]
    return "#" + "".join(f"{channel:02x}" for channel in (channels[:3] if channels[3] == 255 else channels))


def filled(outline, paint):
    return f'<path d="{outline}" fill="{paint}" stroke="none" stroke-width="0"/>'


def disc(centre, radius, paint):
    x, y = centre
    return (f'<circle cx="{number(x)}" cy="{number(y)}" r="{number(radius)}" fill="{paint}" stroke="none"'
            ' stroke-width="0"/>')


def ring(centre, radius, width, paint):
    x, y = centre
    return (f'<circle cx="{number(x)}" cy="{number(y)}" r="{number(radius)}" fill="none" stroke="{paint}"'
            f' stroke-width="{width:.2f}"/>')


def ellipse(centre, rx, ry, paint):
    x, y = centre
    return (f'<ellipse cx="{number(x)}" cy="{number(y)}" rx="{number(rx)}" ry="{number(ry)}" fill="{paint}"'
            ' stroke="none" stroke-width="0"/>')


def ribbon(centre, radius, width, first, last):
    """A band along a circle from angle `first` to `last`, `width(angle)` wide, with round ends."""
    pieces = max(5, math.ceil((last - first) / 0.36))
    step = (last - first) / pieces
    angles = [first + step * i for i in range(pieces + 1)]

    def edge(angle, side):
        reach = radius + side * width(angle) / 2
        return centre[0] + reach * math.cos(angle), centre[1] + reach * math.sin(angle)

    def curves(angles, side, step):
        text = ""
        for a, b in zip(angles, angles[1:]):
            handles = [_slope(edge, a, side, step), _slope(edge, b, side, step)]
            p, q = edge(a, side), edge(b, side)
            text += "C" + points(_moved(p, handles[0], 1 / 3), _moved(q, handles[1], -1 / 3), q)
        return text

    def end(angle, direction):
        tip = (centre[0] + radius * math.cos(angle) - direction * width(angle) / 2 * math.sin(angle),
               centre[1] + radius * math.sin(angle) + direction * width(angle) / 2 * math.cos(angle))
        outward = (math.cos(angle) * direction, math.sin(angle) * direction)
        arriving = _unit(_slope(edge, angle, direction, direction))
        leaving = _unit(_slope(edge, angle, -direction, -direction))
        return _round_end(edge(angle, direction), arriving, tip, outward, edge(angle, -direction), leaving,
                          QUARTER * width(angle) / 2)

    return ("M" + points(edge(first, 1)) + curves(angles, 1, step) + end(last, 1) +
            curves(angles[::-1], -1, -step) + end(first, -1) + "Z")


def _moved(point, vector, share):
    return point[0] + vector[0] * share, point[1] + vector[1] * share


def _slope(edge, angle, side, step):
    """How far the edge goes while the angle grows by `step`."""
    tiny = 1e-5
    a, b = edge(angle - tiny, side), edge(angle + tiny, side)
    return (b[0] - a[0]) / (2 * tiny) * step, (b[1] - a[1]) / (2 * tiny) * step


def _unit(vector):
    length = math.hypot(*vector)
    return vector[0] / length, vector[1] / length


def _round_end(a, arriving, tip, outward, b, leaving, reach):
    """From one edge around the tip to the other, without a knob where the edges run together."""
    return ("C" + points(_moved(a, arriving, reach), _moved(tip, outward, reach), tip) +
            "C" + points(_moved(tip, outward, -reach), _moved(b, leaving, -reach), b))
