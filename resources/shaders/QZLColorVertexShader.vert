#version 450
#extension GL_GOOGLE_include_directive : require

// Places the colour pass's quad. Its texture positions lie on the noise plane, in noise-texture widths, y up.

#include "Quad.glsl"

void main() {
    placeCorner();
}
