// The four corners of a quad that is drawn as a triangle strip, given as the draw's vertex bytes.

layout(push_constant) uniform Quad {
    vec4 corners[4];  // xy: position in clip space, y up; zw: position in the texture
} quad;

layout(location = 0) out vec2 texturePosition;

void placeCorner() {
    vec4 corner = quad.corners[gl_VertexIndex];
    texturePosition = corner.zw;
    gl_Position = vec4(corner.xy, 0.0, 1.0);
}
