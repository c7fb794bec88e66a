#version 450
#extension GL_GOOGLE_include_directive : require

// Places the colour pass's quad. Its texture positions lie on the noise plane, in noise-texture widths, y up.
//
// Seen from near, the region would hold less than one cloud, and from far so many that they turn into a texture. So clouds
// grow and shrink a little with the region: around its centre, so that it still drifts over the plane as it should.

#include "Quad.glsl"

layout(location = 1) flat out float regionHeight;  // in noise-texture widths, with that
layout(location = 2) flat out float fineness;      // how much of fine detail to show: more from near, less from far

const float usualHeight = 0.124;  // of the region at the usual zoom
const float growth = 0.42;        // as powers of how much nearer than usual the region is seen
const float gainOfDetail = 0.30;

void main() {
    placeCorner();
    vec2 center = 0.5 * (quad.corners[0].zw + quad.corners[3].zw);
    float height = quad.corners[3].w - quad.corners[0].w;
    float nearness = usualHeight / height;
    float scale = pow(nearness, growth);

    texturePosition = center + scale * (texturePosition - center);
    regionHeight = scale * height;
    fineness = pow(nearness, gainOfDetail);
}
