// The corners of a quad, given as the draw's vertex bytes: position in clip space, y up, and in the texture.
layout(push_constant) uniform Quad {
    vec4 corners[4];
} quad;

layout(location = 0) out vec2 texturePosition;

void main() {
    vec4 corner = quad.corners[gl_VertexIndex];
    texturePosition = corner.zw;
    gl_Position = vec4(corner.xy, 0.0, 1.0);
}
