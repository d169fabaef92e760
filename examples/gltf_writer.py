"""Writes glTF scenes from plain numbers: meshes, pictures, nodes, animation. Standard library only."""

import base64
import json
import math
import os
import struct
import zlib

FLOAT, SHORT, INT = 5126, 5123, 5125


class Mesh:
    """Vertices and triangles while they are being made."""

    def __init__(self):
        self.positions, self.normals, self.uvs, self.colors, self.indices = [], [], [], [], []

    def vertex(self, position, normal=None, uv=None, color=None):
        self.positions.append(position)
        if normal is not None:
            self.normals.append(normal)
        if uv is not None:
            self.uvs.append(uv)
        if color is not None:
            self.colors.append(color)
        return len(self.positions) - 1

    def quad(self, a, b, c, d):
        """Counter-clockwise from the front."""
        self.indices += [a, b, c, a, c, d]


def normalize(v):
    length = math.sqrt(sum(c * c for c in v)) or 1.0
    return tuple(c / length for c in v)


def lathe(profile, segments, crease=math.radians(35)):
    """Turns (radius, height) points, from the bottom up on the outside, around y. Sharp corners stay sharp."""
    edges = []
    for (r0, y0), (r1, y1) in zip(profile, profile[1:]):
        edges.append(normalize((y1 - y0, r0 - r1)))

    def corner(edge, neighbour):
        if 0 <= neighbour < len(edges):
            dot = sum(p * q for p, q in zip(edges[edge], edges[neighbour]))
            if math.acos(max(-1, min(1, dot))) < crease:
                return normalize(tuple(p + q for p, q in zip(edges[edge], edges[neighbour])))
        return edges[edge]

    lengths = [0.0]
    for (r0, y0), (r1, y1) in zip(profile, profile[1:]):
        lengths.append(lengths[-1] + math.hypot(r1 - r0, y1 - y0))
    mesh = Mesh()
    for i in range(len(edges)):
        rings = []
        for end, normal in ((i, corner(i, i - 1)), (i + 1, corner(i, i + 1))):
            radius, height = profile[end]
            ring = []
            for s in range(segments + 1):
                angle = 2 * math.pi * s / segments
                c, d = math.cos(angle), math.sin(angle)
                ring.append(mesh.vertex((radius * c, height, radius * d), (normal[0] * c, normal[1], normal[0] * d),
                                        (s / segments, 1 - lengths[end] / lengths[-1])))
            rings.append(ring)
        low, high = rings
        for s in range(segments):
            mesh.quad(low[s + 1], low[s], high[s], high[s + 1])
    return mesh


def sphere(segments, rings):
    """Of radius 1. The texture's u runs eastwards around y, v from the north pole down."""
    mesh = Mesh()
    for r in range(rings + 1):
        polar = math.pi * r / rings
        for s in range(segments + 1):
            around = 2 * math.pi * s / segments
            p = (math.sin(polar) * math.cos(around), math.cos(polar), -math.sin(polar) * math.sin(around))
            mesh.vertex(p, p, (s / segments, r / rings))
    row = segments + 1
    for r in range(rings):
        for s in range(segments):
            a = r * row + s
            mesh.quad(a, a + row, a + row + 1, a + 1)
    return mesh


def torus(radius, thickness, segments, sides, flatten=1.0):
    """Around y; `flatten` scales the tube's height."""
    mesh = Mesh()
    for s in range(segments + 1):
        around = 2 * math.pi * s / segments
        c, d = math.cos(around), math.sin(around)
        for t in range(sides + 1):
            turn = 2 * math.pi * t / sides
            out, up = math.cos(turn), math.sin(turn)
            reach = radius + thickness * out
            normal = normalize((out * c, up / flatten, out * d))
            mesh.vertex((reach * c, thickness * up * flatten, reach * d), normal, (s / segments, t / sides))
    row = sides + 1
    for s in range(segments):
        for t in range(sides):
            a = s * row + t
            mesh.quad(a, a + 1, a + row + 1, a + row)
    return mesh


def disc(radius, segments, inner=0.0):
    """Facing up. Texture coordinates are seen from above; those of a ring run from its inner to its outer edge."""
    mesh = Mesh()
    for s in range(segments + 1):
        angle = 2 * math.pi * s / segments
        c, d = math.cos(angle), math.sin(angle)
        for r in (inner, radius):
            uv = (0.5 + 0.5 * c * r / radius, 0.5 + 0.5 * d * r / radius) if inner == 0 else (float(r == radius), 0.5)
            mesh.vertex((r * c, 0.0, r * d), (0.0, 1.0, 0.0), uv)
    for s in range(segments):
        mesh.quad(2 * s, 2 * s + 2, 2 * s + 3, 2 * s + 1)
    return mesh


def gear(outer, root, teeth, thickness):
    """A toothed wheel around y, without normals: its edges are to be sharp."""
    outline = []
    for t in range(teeth):
        for share, radius in ((0.0, root), (0.3, root), (0.42, outer), (0.68, outer), (0.8, root)):
            angle = 2 * math.pi * (t + share) / teeth
            outline.append((radius * math.cos(angle), radius * math.sin(angle)))
    mesh = Mesh()
    top = [mesh.vertex((x, thickness, z)) for x, z in outline]
    bottom = [mesh.vertex((x, 0.0, z)) for x, z in outline]
    middle = mesh.vertex((0.0, thickness, 0.0))
    for i in range(len(outline)):
        j = (i + 1) % len(outline)
        mesh.indices += [middle, top[j], top[i]]
        mesh.quad(top[i], top[j], bottom[j], bottom[i])
    return mesh


def box(x, y, z):
    """Centred, with texture coordinates on every side."""
    mesh = Mesh()
    for axis in range(3):
        for sign in (1, -1):
            normal = tuple(float(sign) if i == axis else 0.0 for i in range(3))
            right = tuple(float(i == (axis + 1) % 3) * sign for i in range(3))
            up = tuple(float(i == (axis + 2) % 3) for i in range(3))
            corners = []
            for u, v in ((-1, -1), (1, -1), (1, 1), (-1, 1)):
                p = tuple((n + u * r + v * w) * h for n, r, w, h in zip(normal, right, up, (x, y, z)))
                corners.append(mesh.vertex(p, normal, ((u + 1) / 2, (1 - v) / 2)))
            mesh.quad(*corners)
    return mesh


def png(width, height, pixel, channels=3):
    """pixel(x, y) gives `channels` numbers from 0 to 1 as they are stored."""
    rows, above = bytearray(), bytearray(width * channels)
    for y in range(height):
        line = bytearray()
        for x in range(width):
            line += bytes(max(0, min(255, int(c * 255 + 0.5))) for c in pixel(x, y))
        left = bytes(channels) + line[:-channels]
        by_left = bytes((a - b) & 255 for a, b in zip(line, left))
        by_above = bytes((a - b) & 255 for a, b in zip(line, above))
        # The filter whose differences are smallest packs best.
        candidates = ((0, bytes(line)), (1, by_left), (2, by_above))
        kind, best = min(candidates, key=lambda c: sum(min(b, 256 - b) for b in c[1]))
        rows += bytes([kind]) + best
        above = line

    def chunk(name, content):
        return struct.pack(">I", len(content)) + name + content + struct.pack(">I", zlib.crc32(name + content))

    header = struct.pack(">IIBBBBB", width, height, 8, {3: 2, 4: 6}[channels], 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(rows), 9)) + chunk(
        b"IEND", b"")


def turn(axis, degrees):
    """A rotation as a quaternion."""
    half = math.radians(degrees) / 2
    return tuple(c * math.sin(half) for c in normalize(axis)) + (math.cos(half), )


def multiply(a, b):
    """Rotation a after b."""
    ax, ay, az, aw = a
    bx, by, bz, bw = b
    return (aw * bx + ax * bw + ay * bz - az * by, aw * by - ax * bz + ay * bw + az * bx,
            aw * bz + ax * by - ay * bx + az * bw, aw * bw - ax * bx - ay * by - az * bz)


def look_at(eye, target):
    """The rotation that makes -z point from eye to target, y up."""
    dx, dy, dz = (t - e for t, e in zip(target, eye))
    yaw = math.degrees(math.atan2(-dx, -dz))
    pitch = math.degrees(math.atan2(dy, math.hypot(dx, dz)))
    return multiply(turn((0, 1, 0), yaw), turn((1, 0, 0), pitch))


def extensions_in(value):
    """The names of all extensions that a part of a document uses."""
    names = set()
    if isinstance(value, dict):
        names |= set(value.get("extensions", {}))
        value = list(value.values())
    if isinstance(value, list):
        for element in value:
            names |= extensions_in(element)
    return names


def numbers(values):
    return [round(v, 6) for v in values]


class Scene:
    """A glTF document with one buffer."""

    def __init__(self, settings):
        self.buffer = bytearray()
        self.files = {}
        self.samplers_of_tracks = []
        self.channels = []
        self.document = {
            "asset": {"version": "2.0", "generator": "Corvantis examples"},
            "scene": 0,
            "scenes": [{"nodes": [], "extras": {"standin": settings}}],
        }

    def add(self, what, element):
        elements = self.document.setdefault(what, [])
        elements.append(element)
        return len(elements) - 1

    def accessor(self, rows, kind, component=FLOAT, bounds=False):
        flat = [c for row in rows for c in row]
        code = {FLOAT: "f", SHORT: "H", INT: "I"}[component]
        content = struct.pack("<%d%s" % (len(flat), code), *flat)
        view = self.add("bufferViews", {"buffer": 0, "byteOffset": len(self.buffer), "byteLength": len(content)})
        self.buffer += content + bytes(-len(content) % 4)
        accessor = {"bufferView": view, "componentType": component, "count": len(rows), "type": kind}
        if bounds:
            columns = list(zip(*rows))
            accessor["min"] = [struct.unpack("<f", struct.pack("<f", min(c)))[0] for c in columns]
            accessor["max"] = [struct.unpack("<f", struct.pack("<f", max(c)))[0] for c in columns]
        return self.add("accessors", accessor)

    def geometry(self, mesh):
        """The shape alone, which several meshes may share under different materials."""
        attributes = {"POSITION": self.accessor(mesh.positions, "VEC3", bounds=True)}
        for name, kind, rows in (("NORMAL", "VEC3", mesh.normals), ("TEXCOORD_0", "VEC2", mesh.uvs),
                                 ("COLOR_0", "VEC4", mesh.colors)):
            if rows:
                attributes[name] = self.accessor(rows, kind)
        component = SHORT if len(mesh.positions) < 65536 else INT
        return {"attributes": attributes, "indices": self.accessor([(i, ) for i in mesh.indices], "SCALAR", component)}

    def mesh(self, name, geometry, material):
        return self.add("meshes", {"name": name, "primitives": [dict(geometry, material=material)]})

    def picture(self, name, content):
        self.files[name] = content
        if "samplers" not in self.document:
            self.add("samplers", {"magFilter": 9729, "minFilter": 9987, "wrapS": 10497, "wrapT": 10497})
        return self.add("textures", {"source": self.add("images", {"uri": name}), "sampler": 0})

    def material(self, name, color=(1, 1, 1), metallic=0.0, roughness=0.6, texture=None, **more):
        surface = {"baseColorFactor": numbers(color) + [1.0], "metallicFactor": metallic, "roughnessFactor": roughness}
        if texture is not None:
            surface["baseColorTexture"] = {"index": texture}
        return self.add("materials", dict({"name": name, "pbrMetallicRoughness": surface}, **more))

    def light(self, **light):
        lights = self.document.setdefault("extensions", {}).setdefault("KHR_lights_punctual", {"lights": []})["lights"]
        lights.append(light)
        return {"KHR_lights_punctual": {"light": len(lights) - 1}}

    def node(self, name, parent=None, at=None, rotation=None, scale=None, **more):
        node = {"name": name}
        if at is not None:
            node["translation"] = numbers(at)
        if rotation is not None:
            node["rotation"] = numbers(rotation)
        if scale is not None:
            node["scale"] = numbers(scale)
        index = self.add("nodes", dict(node, **more))
        holder = self.document["scenes"][0]["nodes"] if parent is None else \
            self.document["nodes"][parent].setdefault("children", [])
        holder.append(index)
        return index

    def animate(self, node, path, times, values, interpolation="LINEAR"):
        """One value a time; three (in-tangent, value, out-tangent) with CUBICSPLINE."""
        kind = "VEC4" if path == "rotation" else "VEC3"
        sampler = {"input": self.accessor([(t, ) for t in times], "SCALAR", bounds=True),
                   "output": self.accessor(values, kind), "interpolation": interpolation}
        self.samplers_of_tracks.append(sampler)
        self.channels.append({"sampler": len(self.samplers_of_tracks) - 1, "target": {"node": node, "path": path}})

    def write(self, path, embed=False):
        """Writes the scene and what belongs to it beside it; with `embed` one file holds everything."""
        folder, stem = os.path.dirname(path), os.path.splitext(os.path.basename(path))[0]
        if self.channels:
            self.add("animations", {"name": stem, "samplers": self.samplers_of_tracks, "channels": self.channels})
        uri = stem + ".bin"
        if embed:
            uri = "data:application/octet-stream;base64," + base64.b64encode(self.buffer).decode()
            for image in self.document.get("images", []):
                image["uri"] = "data:image/png;base64," + base64.b64encode(self.files[image["uri"]]).decode()
        else:
            self.files[uri] = bytes(self.buffer)
            for name, content in self.files.items():
                os.makedirs(os.path.dirname(os.path.join(folder, name)), exist_ok=True)
                with open(os.path.join(folder, name), "wb") as out:
                    out.write(content)
        self.document["extensionsUsed"] = sorted(extensions_in(self.document))
        self.document["buffers"] = [{"byteLength": len(self.buffer), "uri": uri}]
        with open(path, "w") as out:
            json.dump(self.document, out, indent=1)
            out.write("\n")
