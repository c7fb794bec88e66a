#version 450

layout(constant_id = 0) const uint deviceKind = 99;
layout(location = 0) out uvec4 outColor;

void main() { outColor = uvec4(deviceKind, 0, 0, 7); }
