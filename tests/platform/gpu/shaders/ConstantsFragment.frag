#version 450

layout(constant_id = 0) const uint deviceKind = 99;
layout(constant_id = 1) const uint first = 98;
layout(constant_id = 2) const uint second = 97;
layout(location = 0) out uvec4 outColor;

void main() { outColor = uvec4(deviceKind, first, second, 7); }
