#version 450

layout(location = 0) in vec2 texturePosition;
layout(location = 0) out vec4 outColor;
layout(location = 1) out float outHeight;

void main() {
    outColor = vec4(texturePosition.x, 0.0, 1.0, 1.0);
    outHeight = texturePosition.y;
}
