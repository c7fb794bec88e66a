// What the light pass's vertex function hands to its fragment function. All that is the same for every pixel, or
// changes evenly over them, is worked out once a corner: software drivers would fetch and compute it for each pixel.
// `VARYING` is `out` in the one and `in` in the other.

layout(location = 0) noperspective VARYING vec2 texturePosition;  // in the intermediate images, v down
layout(location = 1) noperspective VARYING vec2 texelPosition;    // the same in texels
layout(location = 2) flat VARYING vec2 texel;                     // size of one, in texture coordinates
layout(location = 3) flat VARYING float slopeGain;                // from a height's change per texel to a slope
layout(location = 4) flat VARYING float fade;                     // 0 to 1
