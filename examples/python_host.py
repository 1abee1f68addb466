#!/usr/bin/python3
"""A host in Python without a window: plays the built-in cue and counts the pictures.

  python_host.py              plays on the machine's sound server
  python_host.py --simulated  plays on nothing: the sound takes its time, and nobody hears it

Exit status: 0 when the cue has played, 1 when not, 2 for unusable arguments.
"""
import asyncio
import sys

import quellaro_halvo as halvo

SIDE = 480


async def play():
    pictures = 0
    pixels = bytearray(SIDE * SIDE * 4)

    # A host with a screen would hand it the pixels now.
    def draw(view):
        nonlocal pictures
        view.draw(pixels)
        pictures += 1

    with halvo.Controller() as controller, halvo.View(SIDE, SIDE) as view:
        view.on_needs_display = draw
        status = await controller.prepare("quellaro", halvo.Merchant("Corner Shop", "US", ["5411"], city="San Francisco"))
        if status == halvo.Status.SUCCESS:
            status = await controller.play(view)
    return status, pictures


def main(arguments):
    if arguments == ["--simulated"]:
        halvo.use_simulated_devices()
    elif arguments:
        print(f"usage: {sys.argv[0]} [--simulated]", file=sys.stderr)
        return 2
    status, pictures = asyncio.run(play())
    # The exit waits for nothing: a report of the plays, when one is due, goes out after the answer.
    halvo.loop.run_until_idle()
    print(f"{status} {halvo.status_name(status)}, {pictures} pictures", flush=True)
    return 0 if status == halvo.Status.SUCCESS else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
