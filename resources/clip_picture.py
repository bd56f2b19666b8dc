#!/usr/bin/env python3
"""Draws clip.bmp, the picture of the about box: a strip of film, three frames of a day. usage: clip_picture.py FILE"""
import math
import struct
import sys

WIDTH, HEIGHT = 160, 64
FILM = (34, 32, 38)
HOLE = (224, 222, 216)
# Sky above, sky at the horizon, sun, land: morning, noon, evening.
FRAMES = (
    ((92, 110, 168), (246, 190, 150), (255, 236, 190), (58, 66, 74)),
    ((64, 132, 206), (190, 222, 240), (255, 252, 232), (70, 104, 72)),
    ((52, 40, 92), (226, 96, 66), (255, 186, 104), (38, 30, 48)),
)
SUNS = ((12, 24), (22, 9), (33, 26))
FRAME_WIDTH, FRAME_HEIGHT, FRAME_TOP = 44, 38, 13


def blend(a, b, share):
    share = min(max(share, 0.0), 1.0)
    return tuple(x + (y - x) * share for x, y in zip(a, b))


def frame_colour(index, x, y):
    top, horizon, sun, land = FRAMES[index]
    sun_x, sun_y = SUNS[index]
    colour = blend(top, horizon, y / 29)
    colour = blend(sun, colour, (math.hypot(x - sun_x, y - sun_y) - 4.5) / 1.5)
    hill = 29 - 4 * math.sin((x + 15 * index) / 9) - 2 * math.sin((x + 15 * index) / 4)
    return blend(colour, land, y - hill)


def colour_at(x, y):
    for index in range(3):
        left = 7 + index * 51
        if left <= x < left + FRAME_WIDTH and FRAME_TOP <= y < FRAME_TOP + FRAME_HEIGHT:
            return frame_colour(index, x - left, y - FRAME_TOP)
    in_hole_row = 4 <= y < 9 or HEIGHT - 9 <= y < HEIGHT - 4
    return HOLE if in_hole_row and x % 10 in (2, 3, 4, 5, 6, 7) else FILM


def bitmap():
    rows = b"".join(
        bytes(round(channel) for x in range(WIDTH) for channel in reversed(colour_at(x, y)))
        for y in reversed(range(HEIGHT)))
    header = struct.pack("<IiiHHIIiiII", 40, WIDTH, HEIGHT, 1, 24, 0, len(rows), 2835, 2835, 0, 0)
    return struct.pack("<2sIHHI", b"BM", 54 + len(rows), 0, 0, 54) + header + rows


with open(sys.argv[1], "wb") as file:
    file.write(bitmap())
