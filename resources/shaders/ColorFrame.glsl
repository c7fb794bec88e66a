// What the colour pass's vertex function hands to its fragment function. All that is the same for every pixel is worked
// out once a corner: software drivers would fetch and compute it for each pixel.
// `VARYING` is `out` in the one and `in` in the other.

layout(location = 0) noperspective VARYING vec2 cellPosition;  // on the noise plane, in cells of the first octave, y up
layout(location = 1) flat VARYING mat2 octaveTransform;        // from a sample position to that of the next octave
layout(location = 3) flat VARYING vec4 octaveShares;           // of the second octave to the wisps in the clouds' mass
layout(location = 4) flat VARYING float slopeGain;             // from a height's change per cell to a slope
layout(location = 5) flat VARYING float fullColor;             // 1 - darkening
layout(location = 6) flat VARYING float darkening;             // how much of the depths' light is taken away, 0 to 0.8
layout(location = 7) flat VARYING int salt;                    // of what is hashed; another one for each noise texture
layout(location = 8) flat VARYING Palette palette;
