#version 450

// A quad as a triangle strip. xy of a corner: position in clip space; zw: position in the texture.

layout(push_constant) uniform Quad { vec4 corners[4]; } quad;
layout(location = 0) out vec2 texturePosition;

void main() {
    vec4 corner = quad.corners[gl_VertexIndex];
    texturePosition = corner.zw;
    gl_Position = vec4(corner.xy, 0.0, 1.0);
}
