#version 450
#extension GL_GOOGLE_include_directive : require

// Places the light pass's quad. Its texture positions are normalised coordinates of the intermediate images, v down.

#include "Quad.glsl"

void main() {
    placeCorner();
}
