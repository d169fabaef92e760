#!/usr/bin/env python3
"""Makes orrery.gltf, the example scene: a brass orrery on an inlaid table under the stars, 48 frames.

Deterministic; needs nothing but Python 3. Usage: make_orrery.py [FOLDER]
"""

import math
import os
import sys

from gltf_writer import (Mesh, Scene, disc, gear, lathe, look_at, normalize, numbers, png, sphere, torus,
                         turn)

FRAMES, RATE = 48, 24
LAST = (FRAMES - 1) / RATE  # seconds
EYE_LEVEL = 0.56            # height of the sun above the table

# name, distance from the sun, radius, where it stands at the start and how far it goes, in degrees
PLANETS = (
    ("Mercury", 0.25, 0.032, 40, 170),
    ("Venus", 0.37, 0.052, 205, 110),
    ("Earth", 0.52, 0.064, 308, 80),
    ("Mars", 0.66, 0.044, 118, 60),
    ("Jupiter", 0.82, 0.106, 236, 34),
    ("Saturn", 1.02, 0.082, 12, 24),
)

SETTINGS = {
    "frameRate": RATE,
    "animationRange": [0, FRAMES - 1],
    "render": {"width": 640, "height": 360, "samples": 16, "output": "out/orrery.exr"},
    "elements": [
        {"name": "Depth", "type": "depth", "output": "out/orrery_depth.exr"},
        {"name": "Normal", "type": "normal", "output": "out/orrery_normal.exr"},
        {"name": "Albedo", "type": "albedo", "output": "out/orrery_albedo.exr"},
        {"name": "ObjectId", "type": "objectId", "output": "out/orrery_objectId.exr"},
        {"name": "DirectLight", "type": "directLight", "output": "out/orrery_directLight.exr"},
        {"name": "Emission", "type": "emission", "output": "out/orrery_emission.exr"},
    ],
    "viewports": [{"camera": "Camera01"}, {"camera": "CloseUp"}, {"eye": [0, 4, 0.01], "target": [0, 0, 0], "fov": 40}],
}


def chance(x, y, seed):
    """A number from 0 to 1 that looks random, the same on every machine."""
    h = (x * 374761393 + y * 668265263 + seed * 974634667) & 0xFFFFFFFF
    h = ((h ^ (h >> 13)) * 1274126177) & 0xFFFFFFFF
    return ((h ^ (h >> 16)) & 0xFFFF) / 65535


def noise(x, y, seed, width):
    """Smooth noise; it repeats after `width` in x."""
    x0, y0 = math.floor(x), math.floor(y)
    fx, fy = x - x0, y - y0
    fx, fy = fx * fx * (3 - 2 * fx), fy * fy * (3 - 2 * fy)
    corner = [[chance((x0 + i) % width, y0 + j, seed) for i in (0, 1)] for j in (0, 1)]
    low = corner[0][0] + (corner[0][1] - corner[0][0]) * fx
    high = corner[1][0] + (corner[1][1] - corner[1][0]) * fx
    return low + (high - low) * fy


def clouds(u, v, seed, cells, octaves=4):
    """Noise over noise, about 0 to 1; repeats in u."""
    total, weight = 0.0, 0.0
    for octave in range(octaves):
        size = cells << octave
        total += noise(u * size, v * size / 2, seed + octave, size) / (1 << octave)
        weight += 1 / (1 << octave)
    return total / weight


def mix(a, b, t):
    t = max(0.0, min(1.0, t))
    return tuple(p + (q - p) * t for p, q in zip(a, b))


def planet_texture(width, color_at):
    height = width // 2
    return png(width, height, lambda x, y: color_at((x + 0.5) / width, (y + 0.5) / height))


def sun_color(u, v):
    return mix((1.0, 0.62, 0.16), (1.0, 0.93, 0.66), (clouds(u, v, 3, 12, 3) - 0.3) * 2.2)


def mercury_color(u, v):
    return mix((0.36, 0.33, 0.31), (0.68, 0.64, 0.60), (clouds(u, v, 7, 10) - 0.3) * 2.4)


def venus_color(u, v):
    swirl = clouds(u + 0.08 * math.sin(9 * v), v * 2.5, 11, 6)
    return mix((0.78, 0.58, 0.32), (0.97, 0.90, 0.72), (swirl - 0.3) * 2.4)


def earth_color(u, v):
    land, latitude = clouds(u, v, 29, 5, 5), abs(v - 0.5) * 2
    if land + 0.10 * (latitude > 0.88) < 0.53:
        color = mix((0.04, 0.13, 0.36), (0.10, 0.36, 0.60), (land - 0.33) * 5)
    else:
        color = mix((0.16, 0.40, 0.14), (0.62, 0.52, 0.30),
                    (clouds(u, v, 41, 8) - 0.35) * 3 + 0.5 * (1 - latitude) - 0.3)
    if latitude > 0.82 + 0.12 * clouds(u, v, 5, 12):
        color = (0.93, 0.96, 0.98)
    return mix(color, (1.0, 1.0, 1.0), (clouds(u + 0.03 * math.sin(14 * v), v * 1.6, 53, 7, 5) - 0.56) * 5)


def mars_color(u, v):
    if abs(v - 0.5) > 0.45:
        return (0.94, 0.90, 0.86)
    return mix((0.45, 0.17, 0.08), (0.84, 0.46, 0.24), (clouds(u, v, 67, 7) - 0.3) * 2.4)


def banded_color(u, v, bands, colors, seed, wobble):
    at = v * bands + wobble * (clouds(u, v * 3, seed, 9) - 0.5)
    index = math.floor(at)
    return mix(colors[index % len(colors)], colors[(index + 1) % len(colors)], (at - index - 0.5) * 3 + 0.5)


def jupiter_color(u, v):
    spot = math.hypot((u - 0.31) * 2.1, v - 0.64) / 0.075
    bands = ((0.86, 0.76, 0.62), (0.70, 0.45, 0.28), (0.93, 0.88, 0.78), (0.60, 0.38, 0.25))
    color = banded_color(u, v, 11, bands, 83, 0.9)
    return mix((0.72, 0.25, 0.13), color, (spot - 0.75) * 4)


def saturn_color(u, v):
    return banded_color(u, v, 9, ((0.90, 0.80, 0.58), (0.80, 0.67, 0.44), (0.95, 0.88, 0.70)), 97, 0.25)


def ring_color(x):
    """Along the radius of Saturn's rings: colour and opacity."""
    shade = 0.62 + 0.38 * chance(int(x * 42), 0, 5)
    gap = 0.60 < x < 0.68
    edge = min(1.0, x * 9, (1 - x) * 12)
    return (0.93 * shade, 0.83 * shade, 0.66 * shade, 0.0 if gap else 0.92 * edge * (0.75 if x < 0.3 else 1.0))


WOODS = ((0.24, 0.115, 0.055), (0.42, 0.235, 0.11), (0.60, 0.40, 0.21))


def grain(x, y, kind, seed):
    """Wood with its grain along y."""
    rings = 0.5 + 0.5 * math.sin(60 * x + 14 * noise(3 * x + 5, 1.3 * y + 9, seed, 4096))
    fibre = noise(150 * x, 7 * y, seed + 1, 4096)
    return mix((0, 0, 0), WOODS[kind], 0.80 + 0.13 * rings + 0.16 * (fibre - 0.5))


def table(size):
    def pixel(px, py):
        # Four samples, so that the inlay has no stairs.
        samples = [table_color(2 * (px + i) / size - 1, 2 * (py + j) / size - 1)
                   for i in (0.25, 0.75) for j in (0.25, 0.75)]
        return tuple(sum(c) / 4 for c in zip(*samples))

    return png(size, size, pixel)


def table_color(x, y):
    """The table top from above, -1 to 1: walnut planks, a double ring of inlay and a wind rose."""
    radius, angle = math.hypot(x, y), math.atan2(y, x)
    if 0.885 < radius < 0.90 or 0.765 < radius < 0.775:
        return (0.80, 0.66, 0.36)
    if 0.775 <= radius <= 0.885:  # a border of alternating woods
        tile = math.floor(angle / (2 * math.pi) * 48) + (radius > 0.83)
        return grain(radius * 3, angle * 2, 0 if tile % 2 else 2, 5)
    rose = 0.0
    for points, reach, turned in ((4, 0.70, 0.0), (4, 0.50, math.pi / 4), (8, 0.32, math.pi / 8)):
        sector = 2 * math.pi / points
        off = (angle - turned + sector / 2) % sector - sector / 2
        # A kite from the middle to `reach`, as wide as it is far from both ends.
        half = 0.055 * (1 - radius / reach) / 0.35 * (reach / 0.70) if radius > 0.12 else 1
        if radius < reach and abs(radius * math.sin(off)) < half * min(1.0, radius / 0.1):
            rose = 1 if off > 0 else 2
            break
    if rose:
        return grain(x, y, 2 if rose == 1 else 0, 9)
    plank = math.floor((x + 1) * 5)
    seam = abs((x + 1) * 5 - round((x + 1) * 5)) < 0.014
    wood = grain(x + 0.37 * plank, y + 3 * chance(plank, 1, 3), 1, 20 + plank)
    wood = mix((0, 0, 0), wood, 0.86 + 0.2 * chance(plank, 2, 3))
    return mix(wood, (0, 0, 0), 0.45) if seam else wood


def hammered(size):
    """A normal map that repeats: shallow dents side by side."""
    dents = [((i + 0.5 * (j % 2) + 0.5 * chance(i, j, 71)) / 8, (j + 0.4 * chance(i, j, 72)) / 8)
             for i in range(8) for j in range(8)]

    def height(x, y):
        nearest = 9.0
        for cx, cy in dents:
            dx, dy = abs(x - cx) % 1.0, abs(y - cy) % 1.0
            nearest = min(nearest, math.hypot(min(dx, 1 - dx), min(dy, 1 - dy)))
        return nearest * nearest * 5

    heights = [[height(x / size, y / size) for x in range(size)] for y in range(size)]

    def pixel(x, y):
        across = heights[y][(x + 1) % size] - heights[y][x - 1]
        down = heights[(y + 1) % size][x] - heights[y - 1][x]
        n = normalize((-across * size / 8, down * size / 8, 1.0))
        return tuple(0.5 + 0.5 * c for c in n)

    return png(size, size, pixel)


def night_sky():
    """The inside of a large sphere, from the glow at the horizon to the dark above."""
    dome = sphere(48, 32)
    for position in dome.positions:
        up = position[1]
        glow = math.exp(-((up + 0.06) / 0.22) ** 2)
        color = mix((0.005, 0.009, 0.028), (0.003, 0.005, 0.018), up)
        color = mix(color, (0.009, 0.016, 0.045), glow)
        side = 0.5 + 0.5 * math.cos(math.atan2(position[2], position[0]) - 3.9)
        dome.colors.append(mix(color, (0.060, 0.026, 0.038), 0.9 * glow * side ** 2) + (1.0, ))
    dome.normals = [tuple(-c for c in n) for n in dome.normals]
    dome.indices = [i for t in zip(dome.indices[::3], dome.indices[2::3], dome.indices[1::3]) for i in t]
    dome.uvs = []
    return dome


def stars(count):
    """Small bright triangles on a sphere of radius 1, facing its middle; thicker along a band."""
    mesh, made, tried = Mesh(), 0, 0
    while made < count:
        tried += 1
        up = 2 * chance(tried, 0, 11) - 1
        around = 2 * math.pi * chance(tried, 1, 11)
        flat = math.sqrt(1 - up * up)
        p = (flat * math.cos(around), up, flat * math.sin(around))
        band = abs(sum(a * b for a, b in zip(p, normalize((0.5, 0.62, -0.6)))))
        if up < -0.5 or chance(tried, 2, 11) > 0.25 + 0.75 * math.exp(-(band / 0.2) ** 2):
            continue
        made += 1
        bright = chance(tried, 3, 11) ** 5
        size = 0.0010 + 0.0016 * bright
        tint = mix((1.0, 0.78, 0.55), (0.66, 0.80, 1.0), chance(tried, 4, 11))
        color = mix((0, 0, 0), tint, 0.22 + 0.78 * bright) + (1.0, )
        right = normalize((-p[2], 0.0, p[0]))
        above = (p[1] * right[2] - p[2] * right[1], p[2] * right[0] - p[0] * right[2],
                 p[0] * right[1] - p[1] * right[0])
        for corner in (90, 330, 210):
            a, b = size * math.cos(math.radians(corner)), size * math.sin(math.radians(corner))
            mesh.indices.append(mesh.vertex(tuple(c + a * r + b * u for c, r, u in zip(p, right, above)),
                                            tuple(-c for c in p), color=color))
    return mesh


class Orrery:
    def __init__(self):
        self.scene = Scene(SETTINGS)
        self.materials()
        scene = self.scene
        self.ball = scene.geometry(sphere(48, 24))
        self.rod = scene.geometry(lathe(((0, 0), (1, 0), (1, 1), (0, 1)), 16))
        self.build()

    def texture(self, name, content):
        return self.scene.picture("orrery_textures/" + name + ".png", content)

    def materials(self):
        m = self.scene.material
        self.brass = m("Brass", (0.86, 0.60, 0.26), 1.0, 0.24)
        self.polished = m("Polished brass", (0.93, 0.70, 0.36), 1.0, 0.12)
        self.copper = m("Copper", (0.90, 0.47, 0.30), 1.0, 0.42)
        self.steel = m("Blued steel", (0.20, 0.27, 0.42), 1.0, 0.28)
        self.dents = m("Hammered brass", (0.80, 0.55, 0.24), 1.0, 0.38,
                       normalTexture={"index": self.texture("hammered", hammered(96)), "scale": 0.45,
                                      "extensions": {"KHR_texture_transform": {"scale": [6, 3]}}})
        self.wood = m("Inlaid wood", roughness=0.46, texture=self.texture("table", table(704)))
        self.walnut = m("Walnut", (0.11, 0.045, 0.02), 0.0, 0.4)
        self.sky = m("Night sky", extensions={"KHR_materials_unlit": {}})

    def build(self):
        scene = self.scene
        self.table()
        self.pedestal()
        self.sun()
        for index, planet in enumerate(PLANETS):
            self.planet(index, *planet)
        self.armillary()
        self.part("Night", scene.geometry(night_sky()), self.sky, scale=(14, 14, 14))
        self.part("Stars", scene.geometry(stars(2600)), self.sky, scale=(13.6, 13.6, 13.6))
        self.lights()
        self.cameras()

    def part(self, name, geometry, material, **where):
        return self.scene.node(name, mesh=self.scene.mesh(name, geometry, material), **where)

    def rotate(self, node, start, degrees, keys=9):
        """Evenly around y."""
        times = [LAST * k / (keys - 1) for k in range(keys)]
        turns = [turn((0, 1, 0), start + degrees * k / (keys - 1)) for k in range(keys)]
        self.scene.animate(node, "rotation", times, turns)

    def table(self):
        scene = self.scene
        self.part("TableTop", scene.geometry(disc(1.42, 96)), self.wood)
        edge = ((0.0, -0.10), (1.30, -0.10), (1.40, -0.075), (1.44, -0.04), (1.44, -0.012), (1.43, -0.001), (1.42, 0.0))
        self.part("TableEdge", scene.geometry(lathe(edge, 96)), self.walnut)
        self.part("TableRim", scene.geometry(torus(1.425, 0.013, 128, 12)), self.polished)

    def pedestal(self):
        scene = self.scene
        foot = ((0.0, 0.0), (0.22, 0.0), (0.22, 0.012), (0.21, 0.022), (0.17, 0.034), (0.12, 0.06), (0.085, 0.10),
                (0.07, 0.13), (0.07, 0.14), (0.0, 0.14))
        self.part("Foot", scene.geometry(lathe(foot, 64)), self.dents)
        column = ((0.03, 0.13), (0.045, 0.15), (0.03, 0.17), (0.022, 0.20), (0.020, 0.40), (0.034, 0.415),
                  (0.020, 0.43), (0.016, 0.44), (0.016, EYE_LEVEL - 0.10))
        self.part("Column", scene.geometry(lathe(column, 32)), self.brass)
        drive = self.part("DriveWheel", scene.geometry(gear(0.205, 0.185, 60, 0.022)), self.copper, at=(0, 0.158, 0))
        self.rotate(drive, 0, 60)
        # The small wheel meshes with the big one: 60 teeth against 20, so three times as fast the other way.
        pinion = self.part("Pinion", scene.geometry(gear(0.0745, 0.0545, 20, 0.014)), self.steel,
                           at=(0.258, 0.165, 0.055))
        self.rotate(pinion, 6, -180)
        self.part("PinionShaft", self.rod, self.brass, at=(0.258, 0, 0.055), scale=(0.012, 0.20, 0.012))
        # A pointer that ticks: four steps a second.
        pointer = scene.node("Pointer", at=(0.258, 0.195, 0.055))
        self.part("PointerHand", self.rod, self.polished, parent=pointer, rotation=turn((0, 0, 1), -90),
                  scale=(0.004, 0.10, 0.004))
        times = [k / 4 for k in range(8)]
        scene.animate(pointer, "rotation", times, [turn((0, 1, 0), -15 * k) for k in range(8)], "STEP")

    def sun(self):
        scene = self.scene
        texture = self.texture("sun", planet_texture(256, sun_color))
        material = scene.material("Sun", (0, 0, 0), 1.0, 1.0, emissiveFactor=[1, 1, 1],
                                  emissiveTexture={"index": texture},
                                  extensions={"KHR_materials_emissive_strength": {"emissiveStrength": 2.6}})
        sun = self.part("Sun", self.ball, material, at=(0, EYE_LEVEL, 0), scale=(0.13, 0.13, 0.13))
        self.rotate(sun, 0, 30)
        cup = ((0.016, 0.0), (0.07, 0.012), (0.085, 0.035), (0.078, 0.035), (0.0, 0.01))
        self.part("SunCup", scene.geometry(lathe(cup, 32)), self.polished, at=(0, EYE_LEVEL - 0.135, 0))
        # Lights around the ball stand for its light, which then comes from all of it and not from its middle.
        glow = dict(type="point", color=numbers((1.0, 0.72, 0.42)), intensity=0.5)
        light = scene.light(name="Sunlight", **glow)
        for i in range(3):
            angle = math.radians(30 + 120 * i)
            scene.node("Sunlight%d" % (i + 1), extensions=light,
                       at=(0.16 * math.cos(angle), EYE_LEVEL + 0.04, 0.16 * math.sin(angle)))

    def planet(self, index, name, distance, radius, start, degrees):
        scene, height = self.scene, 0.205 + 0.032 * index
        arm = scene.node(name + "Arm", at=(0, height, 0))
        self.rotate(arm, start, degrees)
        metal = (self.brass, self.copper, self.polished)[index % 3]
        self.part(name + "Collar", self.rod, metal, parent=arm, at=(0, -0.010, 0), scale=(0.033, 0.02, 0.033))
        level = turn((0, 0, 1), -90)  # the rod's length along x
        self.part(name + "Rod", self.rod, metal, parent=arm, rotation=level, scale=(0.0075, distance, 0.0075))
        self.part(name + "Pin", self.rod, self.steel, parent=arm, at=(distance, -0.015, 0),
                  scale=(0.006, EYE_LEVEL - height, 0.006))
        self.part(name + "Knob", self.ball, self.polished, parent=arm, at=(distance, 0, 0), scale=(0.016, 0.016, 0.016))
        color = {"Mercury": mercury_color, "Venus": venus_color, "Earth": earth_color, "Mars": mars_color,
                 "Jupiter": jupiter_color, "Saturn": saturn_color}[name]
        size = 384 if name in ("Earth", "Jupiter") else 192
        texture = self.texture(name.lower(), planet_texture(size, color))
        material = scene.material(name, roughness=0.55, texture=texture)
        tilt = scene.node(name + "Axis", parent=arm, at=(distance, EYE_LEVEL - height, 0),
                          rotation=turn((1, 0, 0.4), 22 if name in ("Earth", "Mars", "Saturn") else 3))
        ball = self.part(name, self.ball, material, parent=tilt, scale=(radius, radius, radius))
        self.rotate(ball, 70 * index, 180)
        if name == "Saturn":
            self.saturn_rings(tilt, radius)
        if name == "Earth":
            moon = scene.node("MoonArm", parent=arm, at=(distance, EYE_LEVEL - height - 0.075, 0))
            self.rotate(moon, 0, 300, 13)
            self.part("MoonRod", self.rod, self.steel, parent=moon, rotation=level, scale=(0.004, 0.11, 0.004))
            self.part("MoonPin", self.rod, self.steel, parent=moon, at=(0.11, 0, 0), scale=(0.003, 0.075, 0.003))
            texture = self.document_texture("mercury")
            pale = scene.material("Moon", (1.0, 1.0, 1.0), roughness=0.7, texture=texture)
            self.part("Moon", self.ball, pale, parent=moon, at=(0.11, 0.085, 0), scale=(0.017, 0.017, 0.017))

    def document_texture(self, name):
        images = [image["uri"] for image in self.scene.document["images"]]
        return images.index("orrery_textures/" + name + ".png")

    def saturn_rings(self, parent, radius):
        scene = self.scene
        texture = self.texture("rings", png(128, 1, lambda x, y: ring_color((x + 0.5) / 128), 4))
        material = scene.material("Rings", roughness=0.6, texture=texture, alphaMode="BLEND", doubleSided=True)
        self.part("Rings", scene.geometry(disc(2.25 * radius, 96, 1.28 * radius)), material, parent=parent)

    def armillary(self):
        scene = self.scene
        frame = scene.node("Armillary", at=(0, EYE_LEVEL, 0), rotation=turn((1, 0, -0.35), 17))
        self.part("EclipticRing", scene.geometry(torus(1.24, 0.014, 160, 12, 2.2)), self.polished, parent=frame)
        for i in range(12):
            angle = math.radians(30 * i)
            self.part("HourBead%d" % (i + 1), self.ball, self.steel if i % 3 else self.copper, parent=frame,
                      at=(1.24 * math.cos(angle), 0.0, 1.24 * math.sin(angle)), scale=(0.028, 0.028, 0.028))
        for i in range(3):
            angle = math.radians(90 + 120 * i)
            x, z = 1.24 * math.cos(angle), 1.24 * math.sin(angle)
            top = EYE_LEVEL + self.height_on_ring(x, z)
            self.part("Post%d" % (i + 1), scene.geometry(lathe(((0.03, 0), (0.03, 0.012), (0.012, 0.03), (0.009, 0.06),
                                                              (0.009, top)), 20)), self.brass, at=(x, 0, z))

    @staticmethod
    def height_on_ring(x, z):
        axis, angle = normalize((1, 0, -0.35)), math.radians(17)
        # The height of a point of the plane after a turn about a level axis.
        return math.sin(angle) * (axis[2] * x - axis[0] * z)

    def lights(self):
        scene = self.scene
        key_at, rim_at = (2.6, 3.4, 2.2), (-3.4, 1.7, -3.0)
        key = scene.light(name="Key", type="spot", color=numbers((1.0, 0.86, 0.68)), intensity=72,
                          spot={"innerConeAngle": 0.30, "outerConeAngle": 0.50})
        rim = scene.light(name="Rim", type="spot", color=numbers((0.42, 0.62, 1.0)), intensity=19,
                          spot={"innerConeAngle": 0.30, "outerConeAngle": 0.55})
        scene.node("KeyLight", at=key_at, rotation=look_at(key_at, (0, 0.1, 0)), extensions=key)
        scene.node("RimLight", at=rim_at, rotation=look_at(rim_at, (0, 0.3, 0)), extensions=rim)

    def cameras(self):
        scene = self.scene
        lens = scene.add("cameras", {"name": "Wide", "type": "perspective",
                                     "perspective": {"yfov": 0.50, "znear": 0.05, "aspectRatio": 16 / 9}})
        close = scene.add("cameras", {"name": "Close", "type": "perspective",
                                      "perspective": {"yfov": 0.36, "znear": 0.02, "aspectRatio": 16 / 9}})
        # The rig turns around the table while the camera on it sinks and comes closer.
        rig = scene.node("CameraRig")
        self.rotate(rig, 18, 34)
        begin, end, target = (0, 1.50, 3.85), (0, 1.12, 3.45), (0, 0.36, 0)
        camera = scene.node("Camera01", parent=rig, at=begin, rotation=look_at(begin, target), camera=lens)
        still = (0.0, 0.0, 0.0)
        scene.animate(camera, "translation", (0, LAST), [still, begin, still, still, end, still], "CUBICSPLINE")
        scene.animate(camera, "rotation", (0, LAST), [look_at(begin, target), look_at(end, target)])
        eye, aim = (1.62, 0.72, 1.02), (1.0, EYE_LEVEL, -0.22)
        focus = math.dist(eye, aim)
        effect = {"effect": "depthOfField", "passes": 8, "focusDistance": round(focus, 3), "aperture": 0.012}
        scene.node("CloseUp", at=eye, rotation=look_at(eye, aim), camera=close,
                   extras={"standin": {"multipass": effect}})


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.abspath(__file__))
    Orrery().scene.write(os.path.join(folder, "orrery.gltf"))


if __name__ == "__main__":
    main()
