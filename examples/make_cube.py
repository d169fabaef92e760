#!/usr/bin/env python3
"""Makes cube.gltf, the smallest useful scene: a textured cube turning before one camera and one light, 8 frames.

Everything is in the one file. Usage: make_cube.py [FOLDER]
"""

import os
import sys

from gltf_writer import Scene, box, look_at, png, turn

SETTINGS = {
    "frameRate": 24,
    "animationRange": [0, 7],
    "render": {"width": 64, "height": 48, "samples": 4, "output": "out/cube.exr"},
    "viewports": [{"camera": "Camera01"}],
}


def checks(x, y):
    return (0.85, 0.30, 0.20) if (x // 4 + y // 4) % 2 else (0.95, 0.90, 0.80)


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.abspath(__file__))
    scene = Scene(SETTINGS)
    paint = scene.material("Checks", roughness=0.5, texture=scene.picture("checks.png", png(16, 16, checks)))
    cube = scene.node("Cube", mesh=scene.mesh("Cube", scene.geometry(box(0.5, 0.5, 0.5)), paint))
    scene.animate(cube, "rotation", (0, 7 / 24), (turn((0, 1, 0), 0), turn((0, 1, 0), 70)))
    eye, lamp = (1.4, 1.2, 2.2), (0.5, 2.0, 3.0)
    lens = scene.add("cameras", {"type": "perspective", "perspective": {"yfov": 0.7, "znear": 0.05}})
    scene.node("Camera01", at=eye, rotation=look_at(eye, (0, 0, 0)), camera=lens)
    light = scene.light(name="Lamp", type="point", color=[1.0, 1.0, 1.0], intensity=30)
    scene.node("Lamp", at=lamp, extensions=light)
    scene.write(os.path.join(folder, "cube.gltf"), embed=True)


if __name__ == "__main__":
    main()
