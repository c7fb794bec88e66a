// A smooth slope of the height image from two gathers, which hold seven of the 3 x 3 texels around the sampled one.
// The including shader declares `heightTexture` and `clampingSampler`.
//
//     a b .        The slope is that of a quadratic B-spline: linear across the centre texel c, from the difference
//     d c e        on its near side to that on its far side. How it twists between the rows and columns is known
//     . f g        towards a and g only, and fades in towards those two corners.

struct HeightSlope {
    float height;  // of the centre texel
    vec2 slope;    // per texel, y down
};

HeightSlope heightSlopeAt(vec2 position, vec2 texel) {
    vec2 texelIndex = floor(position / texel);
    vec2 toFar = position / texel - texelIndex;  // 0 to 1 across the centre texel
    vec2 toNear = 1.0 - toFar;

    // A gather yields the texels (0, 1), (1, 1), (1, 0), (0, 0) of the four around a corner.
    vec4 near = textureGather(sampler2D(heightTexture, clampingSampler), texelIndex * texel);         // d c b a
    vec4 far = textureGather(sampler2D(heightTexture, clampingSampler), (texelIndex + 1.0) * texel);  // f g e c
    float a = near.w, b = near.z, c = near.y, d = near.x;
    float e = far.z, f = far.x, g = far.y;

    vec2 nearDifference = vec2(c - d, c - b);
    vec2 farDifference = vec2(e - c, f - c);
    vec2 straight = mix(nearDifference, farDifference, toFar);

    // How the x difference grows with y, and the y difference with x: the same number, known on either side.
    float nearTwist = (b - a) - (c - d);
    float farTwist = (g - f) - (e - c);
    vec2 nearShare = 0.5 * toNear.yx * toNear.yx * toNear;
    vec2 farShare = 0.5 * toFar.yx * toFar.yx * toFar;

    return HeightSlope(c, straight + nearShare * nearTwist + farShare * farTwist);
}
