#version 450
#extension GL_GOOGLE_include_directive : require

#include "QuadCorner.glsl"
