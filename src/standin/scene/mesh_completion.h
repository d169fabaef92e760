// Gives primitives the normals and tangents that their files left out.
#pragma once

#include "standin/scene/description.h"

namespace standin::scene {

// Flat normals: every triangle gets three vertices of its own, so all vertex arrays change length.
void addFlatNormals(Primitive& primitive);

// Brings normals to unit length; those without a direction take that of the triangles around them.
void repairNormals(Primitive& primitive);

// Tangents along the rising u of a texture coordinate set, at right angles to the normals. `uv` is as long as the
// positions.
void addTangents(Primitive& primitive, const std::vector<Vec2>& uv);

}  // namespace standin::scene
