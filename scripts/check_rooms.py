#!/usr/bin/env python3
"""Checks how the rooms of the tree stand to each other.

- No file includes a file of a room above its own, nor of one that its room has no business with.
- No includes run in a circle.
- Outside platform/ no `_WIN32`, no wide literals, no std::wstring and its relatives.

usage: check_rooms.py [ROOT]; prints a line for each fault and exits 1 when there is one.
"""

import os
import re
import sys

# Who may include whom, besides itself. The longest prefix of a path names its room.
ROOMS = {
    "platform": [],
    "kernel": ["platform"],
    "kernel/runtime": ["platform", "kernel", "perf", "uikit"],
    "perf": ["platform", "kernel"],
    "uikit": ["platform", "kernel"],
    "audio": ["platform", "kernel"],
    "chunks": ["platform", "kernel", "audio"],
    "audio/files": ["platform", "kernel", "audio", "chunks"],
    "isomedia": ["platform"],
    "fileutil": ["platform"],
    "esds": ["platform"],
    "id3meta": ["platform"],
    "r3dsdk": ["platform"],
    "settings": ["platform", "kernel", "uikit", "r3dsdk"],
    "reader": ["platform", "kernel", "kernel/runtime", "audio", "r3dsdk", "settings"],
    "resources": [],
    "substitutes": ["platform", "r3dsdk"],
    "host": ["platform"],
}
# Of the module's rooms the host sees only what any host sees; of the substitute decoder the maker of clips, which is a
# library of its own, with the digits of its test picture.
HOST_MAY_SEE = {
    "audio/wave_format.h",
    "reader/host_interfaces.h",
    "reader/host_records.h",
    "reader/memory_token.h",
    "reader/plugin_exports.h",
    "settings/properties_panel.h",
    "settings/properties_sink.h",
    "settings/property_table.h",
    "substitutes/decoder/clip_writer.h",
    "substitutes/decoder/digit_font.h",
    "substitutes/decoder/test_pattern.h",
    "substitutes/decoder/timecode.h",
    "substitutes/decoder/wav_input.h",
}
# These look into everything, and nothing looks into them.
OUTSIDE = ["tests", "bench", "fuzz"]

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*"([^"]+)"', re.MULTILINE)
# Comments and literals, so that words in them do not count; a wide literal keeps its prefix.
NOISE = re.compile(r'//[^\n]*|/\*.*?\*/|R"([^()\\\s]{0,16})\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<![0-9a-fA-F])\'(?:\\.|[^\'\\\n])+\'',
                   re.DOTALL)
FORBIDDEN = [
    (re.compile(r"\b_WIN32\b"), "_WIN32"),
    (re.compile(r"""(?<![A-Za-z0-9_])L["']"""), "a wide literal; use W(\"...\")"),
    (re.compile(r"\bw(?:string|string_view|ostringstream|stringstream|ifstream|ofstream)\b"), "a wide std text; use WString"),
    (re.compile(r"\bwchar_t\b"), "wchar_t; use WCHAR"),
]


def room_of(path):
    fits = [room for room in ROOMS if path.startswith(room + "/")]
    return max(fits, key=len) if fits else None


def blank(match):
    text = match.group(0)
    if text.startswith("/"):
        return " " + "\n" * text.count("\n")
    return text[0] + "\n" * text.count("\n") + text[0] if text[0] in "\"'" else '""' + "\n" * text.count("\n")


def sources(root):
    for top in sorted({room.split("/")[0] for room in ROOMS} | set(OUTSIDE)):
        for folder, _, names in os.walk(os.path.join(root, top)):
            for name in sorted(names):
                if name.endswith((".h", ".cpp")):
                    yield os.path.relpath(os.path.join(folder, name), root).replace(os.sep, "/")


def resolve(root, path, include):
    """The file that an include means, from the root; None when it is none of ours."""
    for base in ("", "platform/include/", "tests/", "platform/linux/", os.path.dirname(path) + "/"):
        candidate = os.path.normpath(base + include).replace(os.sep, "/")
        if os.path.isfile(os.path.join(root, candidate)):
            return candidate
    return None


def check_include(path, room, target):
    other = room_of(target)
    if other is None:
        return f"{path}: includes {target}, which lies in no room"
    if other == room or other in ROOMS[room]:
        return None
    if room == "host" and target in HOST_MAY_SEE:
        return None
    return f"{path}: {room} may not include {target}"


def find_circle(graph):
    done = set()
    for start in sorted(graph):
        trail, stack = [], [(start, iter(graph[start]))]
        if start in done:
            continue
        trail.append(start)
        while stack:
            node, rest = stack[-1]
            following = next(rest, None)
            if following is None:
                done.add(node)
                trail.pop()
                stack.pop()
            elif following in trail:
                return trail[trail.index(following):] + [following]
            elif following not in done:
                trail.append(following)
                stack.append((following, iter(graph[following])))
    return None


def check(root):
    faults, graph = [], {}
    for path in sources(root):
        with open(os.path.join(root, path), encoding="utf-8") as file:
            text = file.read()
        room = room_of(path)
        outside = path.split("/")[0] in OUTSIDE
        targets = []
        for include in INCLUDE.findall(text):
            target = resolve(root, path, include)
            if target is None:
                faults.append(f"{path}: there is no {include} to include")
                continue
            targets.append(target)
            if not outside and (fault := check_include(path, room, target)):
                faults.append(fault)
        graph[path] = targets
        if room != "platform":
            bare = NOISE.sub(blank, text)
            for number, line in enumerate(bare.split("\n"), 1):
                faults.extend(f"{path}:{number}: {what}" for pattern, what in FORBIDDEN if pattern.search(line))
    known = {path: [t for t in targets if t in graph] for path, targets in graph.items()}
    if circle := find_circle(known):
        faults.append("includes run in a circle: " + " -> ".join(circle))
    return faults


def main():
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
    faults = check(root)
    for fault in faults:
        print(fault)
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
