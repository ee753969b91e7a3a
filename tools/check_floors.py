#!/usr/bin/env python3
"""Refuses an include that goes up a floor, and any circle of includes.

Floors, lowest first; a room includes itself, rooms of lower floors and sdk/.
"""
import pathlib
import re
import sys

FLOORS = {
    "foundation": 1, "propertylist": 1, "platform": 2, "state": 3, "facade": 4, "fontmanager": 5,
    "fonts": 6, "dialogs": 6, "documents": 7, "manager": 7, "activation": 8, "panels": 8,
    "coreagent": 9, "photoshop": 10,
}
# Same floor, one direction.
ALLOWED_SIDEWAYS = {("propertylist", "foundation")}
# Outside src/: which tops of the tree may be included beside sdk/ and src/ rooms.
OUTSIDE = {
    "sdk": {"sdk"},
    "agent": {"sdk", "agent"},
    "frameworks": {"sdk", "agent", "frameworks"},
    "bundle": {"sdk"},
    "host": {"sdk", "agent", "host", "tools"},
}
# Rooms of src/ that these may use.
OUTSIDE_ROOMS = {
    "sdk": set(),
    "agent": {"foundation"},
    "frameworks": {"foundation", "propertylist"},
    "bundle": {"photoshop"},
    "host": set(FLOORS),
}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def home(path):
    return path.parts[1] if path.parts[0] == "src" else path.parts[0]


def resolve(root, name):
    for base in (pathlib.Path("src"), pathlib.Path(".")):
        if (root / base / name).is_file():
            return base / name
    return None


def may_include(source, target):
    if target.parts[0] == "sdk":
        return True
    if source.parts[0] == "src":
        if target.parts[0] != "src":
            return False
        a, b = home(source), home(target)
        return a == b or FLOORS[b] < FLOORS[a] or (a, b) in ALLOWED_SIDEWAYS
    if target.parts[0] == "src":
        return home(target) in OUTSIDE_ROOMS[source.parts[0]]
    return target.parts[0] in OUTSIDE[source.parts[0]]


def find_circle(graph):
    state, trail = {}, []

    def visit(node):
        state[node] = 1
        trail.append(node)
        for neighbour in graph.get(node, ()):
            if state.get(neighbour) == 1:
                return trail[trail.index(neighbour):] + [neighbour]
            if neighbour not in state:
                circle = visit(neighbour)
                if circle:
                    return circle
        state[node] = 2
        trail.pop()
        return None

    for node in graph:
        if node not in state:
            circle = visit(node)
            if circle:
                return circle
    return None


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
    graph, faults = {}, []
    for top in ("src", *OUTSIDE):
        for file in sorted((root / top).rglob("*")):
            if file.suffix not in (".h", ".cpp", ".c"):
                continue
            source = file.relative_to(root)
            for name in INCLUDE.findall(file.read_text(encoding="utf-8")):
                target = resolve(root, name)
                if target is None:
                    faults.append(f"{source}: no such file in the house: {name}")
                    continue
                graph.setdefault(source, set()).add(target)
                if not may_include(source, target):
                    faults.append(f"{source} includes {target}: that goes up")
    circle = find_circle(graph)
    if circle:
        faults.append("circle: " + " -> ".join(str(step) for step in circle))
    print("\n".join(faults) if faults else f"{len(graph)} files, every include goes down")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
